#include "kalvo/platform/utf8.h"

#include <gtest/gtest.h>

#include "kalvo/platform/append.h"

namespace kalvo::test {
namespace {

TEST(Utf8, IsReadCharacterByCharacter) {
  const struct {
    const char* why;
    std::string_view text;
    char32_t code;
    std::size_t length;
  } kCases[] = {
      {"one byte", "aA", 'a', 1},
      {"two bytes, the first of them", "\xC2\x80", 0x80, 2},
      {"two bytes, the last of them", "\xDF\xBF", 0x7FF, 2},
      {"three bytes, the first of them", "\xE0\xA0\x80", 0x800, 3},
      {"three bytes", "\xE2\x82\xAC", 0x20AC, 3},
      {"before the surrogates", "\xED\x9F\xBF", 0xD7FF, 3},
      {"behind the surrogates", "\xEE\x80\x80", 0xE000, 3},
      {"three bytes, the last of them", "\xEF\xBF\xBF", 0xFFFF, 3},
      {"four bytes, the first of them", "\xF0\x90\x80\x80", 0x10000, 4},
      {"four bytes", "\xF1\x80\x80\x80", 0x40000, 4},
      {"the last of all", "\xF4\x8F\xBF\xBF", 0x10FFFF, 4},
      {"a byte that only continues", "\x80", 0xFFFD, 1},
      {"a first byte that is never one", "\xC1\x81", 0xFFFD, 1},
      {"a first byte beyond all", "\xF5\x80\x80\x80", 0xFFFD, 1},
      {"too long for its code", "\xE0\x9F\xBF", 0xFFFD, 1},
      {"too long for its code, four bytes", "\xF0\x8F\xBF\xBF", 0xFFFD, 1},
      {"a surrogate", "\xED\xA0\x80", 0xFFFD, 1},
      {"beyond the last", "\xF4\x90\x80\x80", 0xFFFD, 1},
      {"an end too early", "\xE2\x82", 0xFFFD, 2},
      {"an end after the first byte", "\xE2", 0xFFFD, 1},
      {"another character inside", "\xF0\x90\x80z", 0xFFFD, 3},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const Character character = CharacterAt(c.text, 0);
    EXPECT_EQ(character.code, c.code);
    EXPECT_EQ(character.length, c.length);
  }
}

// What may stand behind each first byte: nothing overlong, no surrogate, nothing beyond U+10FFFF.
TEST(Utf8, HasASecondByteOfItsFirstBytesRange) {
  const struct {
    Encoding encoding;
    int from, to;  // first bytes
    std::size_t length;
    int low, high;  // second bytes
  } kCases[] = {
      {Encoding::Utf8, 0xC2, 0xDF, 2, 0x80, 0xBF},  {Encoding::Utf8, 0xE0, 0xE0, 3, 0xA0, 0xBF},
      {Encoding::Utf8, 0xE1, 0xEC, 3, 0x80, 0xBF},  {Encoding::Utf8, 0xED, 0xED, 3, 0x80, 0x9F},
      {Encoding::Utf8, 0xEE, 0xEF, 3, 0x80, 0xBF},  {Encoding::Utf8, 0xF0, 0xF0, 4, 0x90, 0xBF},
      {Encoding::Utf8, 0xF1, 0xF3, 4, 0x80, 0xBF},  {Encoding::Utf8, 0xF4, 0xF4, 4, 0x80, 0x8F},
      {Encoding::Cesu8, 0xC2, 0xDF, 2, 0x80, 0xBF}, {Encoding::Cesu8, 0xE0, 0xE0, 3, 0xA0, 0xBF},
      {Encoding::Cesu8, 0xE1, 0xEF, 3, 0x80, 0xBF},
  };
  for (const auto& c : kCases) {
    for (int first = c.from; first <= c.to; ++first) {
      for (int second = 0; second < 0x100; ++second) {
        const char text[] = {static_cast<char>(first), static_cast<char>(second), '\x80', '\x80'};
        const bool fits = second >= c.low && second <= c.high;
        EXPECT_EQ(CharacterAt({text, sizeof text}, 0, c.encoding).length, fits ? c.length : 1)
            << first << ' ' << second;
      }
    }
  }
}

TEST(Utf8, OfUnitsHasSurrogatesAndNothingLonger) {
  EXPECT_EQ(CharacterAt("\xED\xA0\x80", 0, Encoding::Cesu8).code, 0xD800U);
  EXPECT_EQ(CharacterAt("\xED\xBF\xBF", 0, Encoding::Cesu8).code, 0xDFFFU);
  EXPECT_EQ(CharacterAt("\xF0\x90\x80\x80", 0, Encoding::Cesu8).code, 0xFFFDU);
}

TEST(Utf8, IsWrittenAsItIsRead) {
  for (const char32_t code : {0x41, 0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF}) {
    const std::string text = Built([&](std::string& out) { AppendCharacter(out, code); });
    EXPECT_EQ(CharacterAt(text, 0).code, code);
    EXPECT_EQ(CharacterAt(text, 0).length, text.size());
  }
  EXPECT_EQ(Built([](std::string& out) { AppendCharacter(out, 0xD800); }), "\xED\xA0\x80");
}

TEST(Utf8, IsAsciiUpToTheFirstByteThatIsNot) {
  EXPECT_TRUE(IsAscii(""));
  EXPECT_TRUE(IsAscii("a\x7F"));
  EXPECT_FALSE(IsAscii("a\x80"));
}

}  // namespace
}  // namespace kalvo::test
