#include <algorithm>
#include <string>

#include "adapters/sql/shape.h"
#include "adapters/sql/statements.h"
#include "adapters/sql/token.h"
#include "fuzz/targets.h"
#include "kalvo/platform/error.h"

namespace kalvo::test {
namespace {

bool IsWithin(std::string_view part, std::string_view whole) {
  return part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size();
}

bool LeavesOpen(std::string_view sql, sql::Placeholders placeholders) {
  const std::vector<sql::Token> tokens = sql::Tokenize(sql, placeholders);
  return std::ranges::find(tokens, sql::TokenKind::Unterminated, &sql::Token::kind) != tokens.end();
}

void HoldsTokens(std::string_view sql) {
  for (const auto placeholders : {sql::Placeholders::Read, sql::Placeholders::Ignore}) {
    const std::vector<sql::Token> tokens = sql::Tokenize(sql, placeholders);
    const char* end = sql.data();
    for (const sql::Token& token : tokens) {
      Require(!token.text.empty() && IsWithin(token.text, sql), "a token is a piece of the text");
      Require(token.text.data() >= end, "tokens stand in the order of the text");
      end = token.text.data() + token.text.size();
    }
    for (const auto statement : sql::SplitStatements(tokens)) {
      Require(!statement.empty() && IsWithin(sql::StatementText(statement), sql), "a statement is a piece of the text");
    }
  }
}

}  // namespace

// Bytes up to the first NUL are a table's own text, what is behind it the completed one.
void SqlTokens(std::string_view bytes) {
  HoldsTokens(bytes);
  const std::string_view pattern = bytes.substr(0, bytes.find('\0'));
  const std::string_view completed = bytes.substr(std::min(pattern.size() + 1, bytes.size()));
  try {
    for (const std::string_view statement : sql::CheckedStatements({completed, pattern, "Name"})) {
      Require(IsWithin(statement, completed), "a statement that runs is a piece of the completed text");
      Require(LeavesOpen(pattern, sql::Placeholders::Read) || !LeavesOpen(statement, sql::Placeholders::Ignore),
              "nothing that runs is left open, unless the table's own text is");
    }
  } catch (const Error& error) {
    Require(!error.Description().empty(), "a text that is refused says why");
  }
}

}  // namespace kalvo::test
