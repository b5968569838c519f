#include "host/script/text/text.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace host;

std::string ForEngine(std::string_view text) {
  std::string out;
  AppendForEngine(out, text);
  return out;
}

std::string FromEngine(std::string_view text) {
  std::string out;
  AppendFromEngine(out, text);
  return out;
}

constexpr const char* kReplaced = "\xEF\xBF\xBD";

TEST(Text, IllFormedSequencesBecomeReplacements) {
  const std::string r = kReplaced;
  const struct {
    const char* why;
    std::string bytes, text;
  } kCases[] = {
      {"ASCII stays", "abc", "abc"},
      {"the largest of each length stay", "\x7F\xDF\xBF\xEF\xBF\xBF\xF4\x8F\xBF\xBF",
       "\x7F\xDF\xBF\xEF\xBF\xBF\xF4\x8F\xBF\xBF"},
      {"a byte that begins nothing", "a\xFFz", "a" + r + "z"},
      {"a continuation alone", "\x80", r},
      {"an overlong slash", "\xC0\xAF", r + r},
      {"an overlong slash of three bytes", "\xE0\x80\xAF", r + r + r},
      {"a surrogate", "\xED\xA0\x80", r + r + r},
      {"beyond the last character", "\xF4\x90\x80\x80", r + r + r + r},
      {"a cut sequence is one", "\xE2\x82", r},
      {"a cut sequence before text", "\xF0\x9F\x98z", r + "z"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(WellFormed(c.bytes), c.text);
  }
}

TEST(Text, CharactersOutsideOfTheBasicPlaneAreSurrogatePairsInTheEngine) {
  EXPECT_EQ(ForEngine("\xF0\x9F\x98\x80"), "\xED\xA0\xBD\xED\xB8\x80");
  EXPECT_EQ(FromEngine("\xED\xA0\xBD\xED\xB8\x80"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(FromEngine(ForEngine("a\u00EB\u20AC\U0001F600\U0010FFFFz")), "a\u00EB\u20AC\U0001F600\U0010FFFFz");
}

TEST(Text, LoneSurrogatesOfTheEngineBecomeReplacements) {
  const std::string r = kReplaced;
  EXPECT_EQ(FromEngine("\xED\xA0\xBD"), r);
  EXPECT_EQ(FromEngine("\xED\xA0\xBDz"), r + "z");
  EXPECT_EQ(FromEngine("\xED\xB8\x80"), r);
  EXPECT_EQ(FromEngine("\xED\xB8\x80\xED\xA0\xBD"), r + r);
}

TEST(Text, NothingStartsAnEngineTextThatWouldBeASymbol) {
  for (int byte = 0x80; byte < 0x100; ++byte) {
    const std::string text = ForEngine(std::string(1, static_cast<char>(byte)) + "x");
    EXPECT_EQ(text, std::string(kReplaced) + "x") << byte;
  }
}

TEST(Text, UrlsAreDecoded) {
  const struct {
    const char* why;
    std::string text, decoded;
  } kCases[] = {
      {"blanks", "a+b%20c", "a b c"},
      {"bytes make characters", "%C3%AB%e2%82%ac", "\u00EB\u20AC"},
      {"ill-formed bytes", "a%FFb",
       "a\xEF\xBF\xBD"
       "b"},
      {"a percent sign at the end", "100%", "100%"},
      {"one digit only", "%4", "%4"},
      {"no digits", "%zz%4G", "%zz%4G"},
      {"a null byte", "a%00b", std::string("a\0b", 3)},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(UrlDecoded(c.text), c.decoded);
  }
}

}  // namespace
}  // namespace kalvo::test
