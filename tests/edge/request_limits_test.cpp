#include "host/edge/request_limits.h"

#include <gtest/gtest.h>

#include "host/script/page/page_request.h"

namespace kalvo::test {
namespace {

using namespace edge;

std::string Times(int count, const std::string& part) {
  std::string text;
  for (int i = 0; i < count; ++i) text += part;
  return text;
}

// "k0=&k1=&..."
std::string Keys(int count) {
  std::string text;
  for (int i = 0; i < count; ++i) text += "k" + std::to_string(i) + "&";
  return text;
}

TEST(LimitsTest, SayHowMuchIsTaken) {
  const std::optional<std::string> kTaken;
  const struct {
    const char* why;
    std::string query, form;
    std::optional<std::string> answer;
  } kCases[] = {
      {"nothing", "", "", kTaken},
      {"8 KiB of query", "k=" + std::string(8190, 'x'), "", kTaken},
      {"more", "k=" + std::string(8191, 'x'), "", "The query of an address has at most 8192 bytes."},
      {"1000 parameters, and empty parts that are none", "&&" + Keys(1000) + "&&", "", kTaken},
      {"1001", Keys(1001), "", "The query of an address has at most 1000 parameters."},
      {"64 values of a key", Times(64, "k=1&"), "", kTaken},
      {"65 of a key in any spelling", Times(32, "k=1&") + Times(33, "%4B&"), "",
       "A parameter of an address has at most 64 values."},
      {"a form repeats its boxes", "", Times(100'000, "k&"), kTaken},
      {"without end", "", Times(100'001, "k&"), "A form has at most 100000 fields."},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    host::PageRequest request;
    request.queryString = c.query;
    request.form = c.form;
    EXPECT_EQ(BeyondLimits(request), c.answer);
  }
}

}  // namespace
}  // namespace kalvo::test
