#pragma once

#include <string_view>
#include <vector>

namespace kalvo::sql {

enum class TokenKind {
  Word,        // a keyword or a plain name
  QuotedName,  // "x", `x` or [x]
  String,      // 'x'
  Number,
  Comment,  // -- x, or /* x */
  Open,
  Close,
  Symbol,        // any other character
  Sort,          // %SORT%
  Scope,         // %NAME%, %ORG%, %SITE% or %MAILBOX%
  Unterminated,  // a string, a quoted name or a comment that never ends
};

// A piece of an SQL text, as a view into it.
struct Token {
  TokenKind kind;
  std::string_view text;
};

// Whether "%SORT%" and its kin are placeholders, as in a table's own text, or what they are in SQL.
enum class Placeholders { Read, Ignore };

// The tokens of an SQL text without the blanks between them. A placeholder inside a string, a quoted name or a
// comment is part of that.
std::vector<Token> Tokenize(std::string_view sql, Placeholders placeholders);

// The placeholder that the text begins with; empty when it begins with none.
std::string_view PlaceholderAt(std::string_view text);

// True for a word token that is this keyword, in any case. `keyword` is in upper case.
bool IsKeyword(const Token& token, std::string_view keyword);

}  // namespace kalvo::sql
