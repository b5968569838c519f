#include "base/steady_clock.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace base;

TEST(SteadyClock, OnlyGrows) {
  const std::int64_t before = Milliseconds();
  std::int64_t now = before;
  while (now == before) now = Milliseconds();
  EXPECT_GT(now, before);
}

}  // namespace
}  // namespace kalvo::test
