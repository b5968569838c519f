#include <gtest/gtest.h>

#include "kalvo/platform/conversion.h"

namespace kalvo::test {
namespace {

TEST(Case, IsTheSimpleMappingOfEveryCharacter) {
  const struct {
    const char* why;
    const char *text, *lower, *upper;
  } kCases[] = {
      {"ASCII", "aZ[{", "az[{", "AZ[{"},
      {"the edges of the ASCII letters", "@AZ[`az{", "@az[`az{", "@AZ[`AZ{"},
      {"Latin", "\u00C4\u00E4", "\u00E4\u00E4", "\u00C4\u00C4"},
      {"a sign between Latin letters", "\u00D7\u00F7", "\u00D7\u00F7", "\u00D7\u00F7"},
      {"Greek", "\u03A9\u03C9", "\u03C9\u03C9", "\u03A9\u03A9"},
      {"a final sigma stays one, and has a capital", "\u03C2", "\u03C2", "\u03A3"},
      {"Cyrillic", "\u0416\u0436", "\u0436\u0436", "\u0416\u0416"},
      {"letters in pairs", "\u0100\u0101\u0102", "\u0101\u0101\u0103", "\u0100\u0100\u0102"},
      {"outside of the basic plane", "\U00010400\U00010428", "\U00010428\U00010428", "\U00010400\U00010400"},
      {"the last capital of all, and what follows", "\U0001E921\U0001E922", "\U0001E943\U0001E922",
       "\U0001E921\U0001E900"},
      {"a sharp s has no single capital", "\u00DF", "\u00DF", "\u00DF"},
      {"a capital sharp s", "\u1E9E", "\u00DF", "\u1E9E"},
      {"a long s is small, and its capital is S", "\u017F", "\u017F", "S"},
      {"a Kelvin sign", "\u212A", "k", "\u212A"},
      {"a dotted capital I", "\u0130", "i", "\u0130"},
      {"a dotless i", "\u0131", "\u0131", "I"},
      {"a letter that is longer in the other case", "\u023A", "\u2C65", "\u023A"},
      {"no letters", "1 \u20AC\u4E2D\U0001F600", "1 \u20AC\u4E2D\U0001F600", "1 \u20AC\u4E2D\U0001F600"},
      {"bytes that are no character", "A\xFFz\xC3", "a\xFFz\xC3", "A\xFFZ\xC3"},
      {"a replacement character", "\uFFFD", "\uFFFD", "\uFFFD"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ToLower(c.text), c.lower);
    EXPECT_EQ(ToUpper(c.text), c.upper);
  }
}

TEST(Case, IsNoDifferenceWhereItIsIgnored) {
  const struct {
    const char* why;
    const char *a, *b;
    bool equal;
  } kCases[] = {
      {"ASCII", "Sort", "sORT", true},
      {"a longer text", "Sort", "Sort1", false},
      {"a shorter text", "Sort", "Sor", false},
      {"nothing", "", "", true},
      {"nothing and something", "", "a", false},
      {"neighbours of letters", "[", "{", false},
      {"letters beyond ASCII", "DOM\\\u00C4RZTE", "dom\\\u00E4rzte", true},
      {"a letter with its mark and without", "\u00E4rzte", "arzte", false},
      {"a long s is no s", "u\u017Fer", "user", false},
      {"a Kelvin sign is a k", "\u212Aen", "ken", true},
      {"as long as the other, and longer", "\u00C4a", "\u00E4", false},
      {"the same bad bytes", "a\xFF", "A\xFF", true},
      {"a bad byte is no replacement character", "\xFF", "\uFFFD", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(EqualsIgnoringCase(c.a, c.b), c.equal);
    EXPECT_EQ(EqualsIgnoringCase(c.b, c.a), c.equal);
  }
}

TEST(Case, OfAWordOfAProtocolIsThatOfAsciiLetters) {
  EXPECT_EQ(ToLowerAscii("ABCxyz[\u00C4\u212A"), "abcxyz[\u00C4\u212A");
  EXPECT_EQ(ToUpperAscii("abcXYZ{\u00E4\u017F"), "ABCXYZ{\u00E4\u017F");
  EXPECT_TRUE(EqualsIgnoringAsciiCase("Content-Type", "content-tYPE"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("Sort", "Sort1"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("[", "{"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("coo\u212Aie", "cookie"));
  EXPECT_FALSE(EqualsIgnoringAsciiCase("\u00C4", "\u00E4"));
}

}  // namespace
}  // namespace kalvo::test
