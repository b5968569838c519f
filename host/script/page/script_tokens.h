#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace kalvo::host {

enum class TokenKind { Word, Number, Text, Template, Pattern, Mark };

// One token of page code, where it stands.
struct ScriptToken {
  TokenKind kind = TokenKind::Mark;
  std::string_view text;  // as it is written, quotation marks and slashes among it
  std::size_t at = 0;
};

// The tokens of a script, comments left out. Whatever is ill-formed is taken as it comes: it is the compiler that
// refuses.
std::vector<ScriptToken> TokensOf(std::string_view script);

}  // namespace kalvo::host
