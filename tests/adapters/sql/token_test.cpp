#include "adapters/sql/token.h"

#include <gtest/gtest.h>

#include <string>

namespace kalvo::test {
namespace {

using namespace sql;

// One letter a token, and the texts with blanks between them.
std::pair<std::string, std::string> Read(std::string_view sql, Placeholders placeholders) {
  static constexpr char kLetters[] = "wqsnc()yOSu";
  std::pair<std::string, std::string> read;
  for (const Token& token : Tokenize(sql, placeholders)) {
    read.first += kLetters[static_cast<int>(token.kind)];
    read.second += (read.second.empty() ? "" : " ") + std::string(token.text);
  }
  return read;
}

TEST(Token, ReadsEveryKind) {
  const struct {
    const char* why;
    const char* sql;
    const char* kinds;
    const char* texts;
  } kCases[] = {
      {"nothing", " \t\r\n", "", ""},
      {"words", "select a_1.b$", "wwyw", "select a_1 . b$"},
      {"a string with a doubled quote", "'O''Neil'x", "sw", "'O''Neil' x"},
      {"a backslash is a character", "'a\\' b", "sw", "'a\\' b"},
      {"an empty string", "''", "s", "''"},
      {"quoted names of three styles", "\"a\"\"b\" `c` [d e]", "qqq", "\"a\"\"b\" `c` [d e]"},
      {"a line comment ends with the line", "a -- b 'c\nd", "wcw", "a -- b 'c d"},
      {"a line comment ends with a carriage return", "a --b\rd", "wcw", "a --b d"},
      {"a line comment of two characters", "a--", "wc", "a --"},
      {"a block comment of two characters", "a/*", "wu", "a /*"},
      {"a block comment", "a/* ' */b", "wcw", "a /* ' */ b"},
      {"parentheses", "(a)", "(w)", "( a )"},
      {"numbers", "1 1.5 .5 1e3 1E-5 1e", "nnnnnnw", "1 1.5 .5 1e3 1E-5 1 e"},
      {"signs", "a<>-1", "wyyyn", "a < > - 1"},
      {"letters above ASCII",
       "Z\xC3\xBC"
       "rich",
       "w",
       "Z\xC3\xBC"
       "rich"},
      {"a string that does not end", "a 'b", "wu", "a 'b"},
      {"a quoted name that does not end", "[b", "u", "[b"},
      {"a comment that does not end", "/* b", "u", "/* b"},
      {"a comment is not ended by its own beginning", "/*/ b", "u", "/*/ b"},
      {"an empty comment", "/**/b", "cw", "/**/ b"},
      {"words of the first and last letters", "AZ az z09$", "www", "AZ az z09$"},
      {"signs beside the letters and digits", "/:@[]`{", "yyyqu", "/ : @ [] `{"},
      {"numbers of the first and last digits", "09 90", "nn", "09 90"},
      {"a word of the lowest byte above ASCII", "\x80z", "w", "\x80z"},
      {"the highest byte of ASCII is no letter", "\x7F", "y", "\x7F"},
      {"no placeholders in a completed text", "%SORT%", "ywy", "% SORT %"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto read = Read(c.sql, Placeholders::Ignore);
    EXPECT_EQ(read.first, c.kinds);
    EXPECT_EQ(read.second, c.texts);
  }
}

TEST(Token, ReadsPlaceholdersOutsideOfTexts) {
  const struct {
    const char* why;
    const char* sql;
    const char* kinds;
  } kCases[] = {
      {"each of the five", "%SORT% %NAME% %ORG% %SITE% %MAILBOX%", "OSSSS"},
      {"behind a letter", "x%NAME%", "wS"},
      {"in another case", "%name%", "ywy"},
      {"inside a string", "'%NAME%'", "s"},
      {"inside a quoted name", "\"%NAME%\"", "q"},
      {"inside a comment", "/* %SORT% */", "c"},
      {"a remainder", "a % b", "wyw"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Read(c.sql, Placeholders::Read).first, c.kinds);
  }
}

}  // namespace
}  // namespace kalvo::test
