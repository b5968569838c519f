#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "adapters/sql/token.h"

namespace kalvo::sql {

// The statements of a batch, each the tokens it is made of. A SELECT or a WITH outside of parentheses begins a
// statement, but for the SELECT that a WITH introduces and those behind a set operator; a semicolon ends one.
std::vector<std::span<const Token>> SplitStatements(std::span<const Token> tokens);

// The text from the first token of a statement to its last.
std::string_view StatementText(std::span<const Token> statement);

}  // namespace kalvo::sql
