#include "base/percent.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace base;

TEST(Percent, WritesAByteWithCapitals) {
  std::string out = "a";
  for (const char byte : {' ', '\xFF', '\0'}) AppendPercent(out, byte);
  EXPECT_EQ(out, "a%20%FF%00");
}

TEST(Percent, IsReadWholeOrNotAtAll) {
  const struct {
    const char* why;
    std::string_view text;
    std::optional<std::string> plain;
  } kCases[] = {
      {"nothing written so", "a+b", "a+b"},
      {"digits in either case", "%2f%2F", "//"},
      {"at the end", "a%20", "a "},
      {"a byte that is no text by itself", "%C3%A9", "\xC3\xA9"},
      {"a sign that is written so itself", "%2541", "%41"},
      {"one digit alone", "%4", std::nullopt},
      {"no digit", "100%", std::nullopt},
      {"another character among the digits", "%4x", std::nullopt},
      {"two signs", "%%41", std::nullopt},
      {"", "", ""},
  };
  for (const auto& c : kCases) EXPECT_EQ(FromPercent(c.text), c.plain) << c.why;
}

TEST(Percent, IsFoundAtAPlace) {
  EXPECT_EQ(PercentAt("a%41", 1), 'A');
  EXPECT_EQ(PercentAt("a%41", 0), std::nullopt);
  EXPECT_EQ(PercentAt("a%4", 1), std::nullopt);
}

}  // namespace
}  // namespace kalvo::test
