#include "kalvo/platform/text_tools.h"

#include <gtest/gtest.h>

#include <array>

namespace kalvo::test {
namespace {

TEST(Text, IsTrimmedOfWhatStandsAroundIt) {
  const struct {
    const char* why;
    std::string_view text, trimmed;
  } kCases[] = {
      {"nothing around it", "a b", "a b"}, {"blanks of every kind", " \t\r\na b\n ", "a b"},
      {"nothing else", " \t ", ""},        {"nothing", "", ""},
      {"another character", "\va", "\va"},
  };
  for (const auto& c : kCases) EXPECT_EQ(Trimmed(c.text), c.trimmed) << c.why;
  EXPECT_EQ(Trimmed(" \ta ", " "), "\ta") << "what is asked for alone";
}

TEST(Text, HasEveryPlaceReplacedButNoneOfWhatWasPutIn) {
  const struct {
    const char* why;
    std::string_view text, what, with, replaced;
  } kCases[] = {
      {"every place", "a-b-c", "-", "+", "a+b+c"},
      {"by a longer one that holds it", "a-b-", "-", "--", "a--b--"},
      {"by nothing", "xax", "x", "", "a"},
      {"none", "abc", "d", "e", "abc"},
  };
  for (const auto& c : kCases) {
    std::string text(c.text);
    ReplaceAll(text, c.what, c.with);
    EXPECT_EQ(text, c.replaced) << c.why;
  }
}

TEST(Text, IsAStringOfSqlInSingleQuotes) {
  EXPECT_EQ(SqlQuoted("O'Brien \"x\" \\'"), "'O''Brien \"x\" \\'''");
  EXPECT_EQ(SqlQuoted(""), "''");
  std::string out = "where a = ";
  AppendSqlQuoted(out, "'");
  EXPECT_EQ(out, "where a = ''''");
}

TEST(Hexadecimal, IsTwoDigitsAByte) {
  const std::array<std::uint8_t, 4> bytes{0x00, 0x0F, 0xA0, 0xFF};
  EXPECT_EQ(Hexadecimal(bytes), "000fa0ff");
  std::string out = "0x";
  AppendHexadecimal(out, bytes, HexLetters::Capital);
  EXPECT_EQ(out, "0x000FA0FF");
}

TEST(Hexadecimal, IsReadDigitByDigit) {
  std::string_view digits = "0123456789abcdef";
  for (int value = 0; value < 16; ++value) EXPECT_EQ(HexValue(digits[static_cast<std::size_t>(value)]), value);
  EXPECT_EQ(HexValue('A'), 10);
  EXPECT_EQ(HexValue('F'), 15);
  for (const char no : {'/', ':', '@', 'G', '`', 'g', '\0', '\xFF'}) EXPECT_EQ(HexValue(no), -1) << no;
}

TEST(Hexadecimal, IsKnownByItsSmallDigits) {
  EXPECT_TRUE(IsHexadecimal("09af"));
  EXPECT_TRUE(IsHexadecimal(""));
  for (const char* no : {"0A", "0g", "0 ", "-1"}) EXPECT_FALSE(IsHexadecimal(no)) << no;
}

}  // namespace
}  // namespace kalvo::test
