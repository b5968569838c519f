#include "adapters/sql/statements.h"

#include <algorithm>
#include <array>

namespace kalvo::sql {

namespace {

constexpr std::array<std::string_view, 4> kSetOperators = {"UNION", "EXCEPT", "INTERSECT", "MINUS"};

bool IsAnyKeyword(const Token& token, std::span<const std::string_view> keywords) {
  return std::any_of(keywords.begin(), keywords.end(), [&](auto keyword) { return IsKeyword(token, keyword); });
}

// Walks the tokens of a batch and notes where a statement begins.
class Splitter {
 public:
  explicit Splitter(std::span<const Token> tokens) : tokens_(tokens) {}

  std::vector<std::span<const Token>> Split() {
    for (std::size_t i = 0; i < tokens_.size(); ++i) Step(i);
    EndStatement(tokens_.size());
    return std::move(statements_);
  }

 private:
  void Step(std::size_t i) {
    const Token& token = tokens_[i];
    if (token.kind == TokenKind::Open) ++depth_;
    if (token.kind == TokenKind::Close && depth_ > 0) --depth_;
    if (depth_ > 0 || token.kind == TokenKind::Comment) return;
    if (token.text == ";") {
      EndStatement(i);
      begin_ = i + 1;
    } else if (BeginsQuery(i)) {
      if (!mainSelectAwaited_ || !IsKeyword(token, "SELECT")) EndStatement(i);
      mainSelectAwaited_ = IsKeyword(token, "WITH");
    }
    beforeLast_ = last_;
    last_ = &token;
  }

  bool BeginsQuery(std::size_t i) const {
    if (FollowsSetOperator()) return false;
    return IsKeyword(tokens_[i], "SELECT") || (IsKeyword(tokens_[i], "WITH") && IntroducesTable(i + 1));
  }

  bool FollowsSetOperator() const {
    if (!last_) return false;
    if (IsAnyKeyword(*last_, kSetOperators)) return true;
    const bool quantified = IsKeyword(*last_, "ALL") || IsKeyword(*last_, "DISTINCT");
    return quantified && beforeLast_ && IsAnyKeyword(*beforeLast_, kSetOperators);
  }

  // "with x as (", "with recursive x (a, b) as (": not "with rollup", "with (nolock)" or "with time zone".
  bool IntroducesTable(std::size_t i) const {
    i = SkipComments(i);
    if (i < tokens_.size() && IsKeyword(tokens_[i], "RECURSIVE")) i = SkipComments(i + 1);
    if (i >= tokens_.size()) return false;
    if (tokens_[i].kind != TokenKind::Word && tokens_[i].kind != TokenKind::QuotedName) return false;
    i = SkipComments(i + 1);
    return i < tokens_.size() && (tokens_[i].kind == TokenKind::Open || IsKeyword(tokens_[i], "AS"));
  }

  std::size_t SkipComments(std::size_t i) const {
    while (i < tokens_.size() && tokens_[i].kind == TokenKind::Comment) ++i;
    return i;
  }

  // A statement of comments alone is none; its comments go with the next one.
  void EndStatement(std::size_t end) {
    const auto statement = tokens_.subspan(begin_, end - begin_);
    if (std::all_of(statement.begin(), statement.end(), [](auto& t) { return t.kind == TokenKind::Comment; })) return;
    statements_.push_back(statement);
    begin_ = end;
    mainSelectAwaited_ = false;
  }

  std::span<const Token> tokens_;
  std::vector<std::span<const Token>> statements_;
  std::size_t begin_ = 0;
  int depth_ = 0;
  bool mainSelectAwaited_ = false;  // a WITH has begun and its SELECT is still to come
  const Token* last_ = nullptr;     // outside of parentheses, comments left out
  const Token* beforeLast_ = nullptr;
};

}  // namespace

std::vector<std::span<const Token>> SplitStatements(std::span<const Token> tokens) { return Splitter(tokens).Split(); }

std::string_view StatementText(std::span<const Token> statement) {
  const char* begin = statement.front().text.data();
  const auto& last = statement.back().text;
  return {begin, static_cast<std::size_t>(last.data() + last.size() - begin)};
}

}  // namespace kalvo::sql
