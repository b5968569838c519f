#include "host/audit/line_limit.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kalvo::test {
namespace {

using namespace audit;

TEST(LineLimit, LetsOneLineThroughASecondAndKey) {
  LineLimit limit;
  EXPECT_EQ(limit.Take("a", 100), 0u);
  EXPECT_EQ(limit.Take("a", 100), std::nullopt);
  EXPECT_EQ(limit.Take("a", 100), std::nullopt);
  EXPECT_EQ(limit.Take("a", 101), 2u);
  EXPECT_EQ(limit.Take("a", 102), 0u);
}

TEST(LineLimit, LetsAsManyThroughAsItIsMadeFor) {
  LineLimit limit(3);
  int through = 0;
  for (int i = 0; i < 10; ++i) through += limit.Take("", 7).has_value() ? 1 : 0;
  EXPECT_EQ(through, 3);
  EXPECT_EQ(limit.Take("", 8), 7u);
}

TEST(LineLimit, CountsForAllProcesses) {
  LineLimit limit;
  const pid_t process = fork();
  if (process == 0) _exit(limit.Take("a", 5) ? 0 : 1);
  int status = -1;
  waitpid(process, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(limit.Take("a", 5), std::nullopt);
}

TEST(LineLimit, CountsANetworkAsOneAddress) {
  EXPECT_EQ(NetworkOf("127.0.0.1"), "127.0.0.1");
  EXPECT_EQ(NetworkOf("2001:db8:1:2:3:4:5:6"), "2001:db8:1:2");
  EXPECT_EQ(NetworkOf("::1"), "::1");
  EXPECT_EQ(NetworkOf(""), "");
}

}  // namespace
}  // namespace kalvo::test
