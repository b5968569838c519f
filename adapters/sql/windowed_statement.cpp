#include "adapters/sql/windowed_statement.h"

#include <algorithm>
#include <span>

#include "adapters/sql/statements.h"
#include "adapters/sql/token.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::sql {

namespace {

using Tokens = std::span<const Token>;

// What may stand behind an order, or says something about it that a window would contradict.
constexpr std::string_view kEndsOrder[] = {"LIMIT",  "OFFSET",    "FETCH", "FOR",  "INTO",   "NULLS",  "UNION",
                                           "EXCEPT", "INTERSECT", "MINUS", "LOCK", "OPTION", "WINDOW", "PROCEDURE"};

// What makes of the rows of a FROM something else than themselves.
constexpr std::string_view kReshapes[] = {"DISTINCT",  "GROUP", "HAVING", "UNION", "EXCEPT",
                                          "INTERSECT", "MINUS", "WINDOW", "LIMIT", "ORDER"};

template <std::size_t count>
bool IsOneOf(const Token& token, const std::string_view (&keywords)[count]) {
  return std::any_of(std::begin(keywords), std::end(keywords), [&](auto word) { return IsKeyword(token, word); });
}

// Calls `visit` with the place of each token outside of parentheses.
template <typename Visit>
void ForEachOuter(Tokens tokens, Visit&& visit) {
  int depth = 0;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind == TokenKind::Close) --depth;
    if (depth == 0) visit(i);
    if (tokens[i].kind == TokenKind::Open) ++depth;
  }
}

// The place of the last order outside of parentheses.
std::optional<std::size_t> OrderOf(Tokens tokens) {
  std::optional<std::size_t> order;
  ForEachOuter(tokens, [&](std::size_t i) {
    if (IsKeyword(tokens[i], "ORDER") && i + 1 < tokens.size() && IsKeyword(tokens[i + 1], "BY")) order = i;
  });
  return order;
}

// The place of the first FROM outside of parentheses, in a SELECT that gives each of its rows as one.
std::optional<std::size_t> PlainFrom(Tokens tokens) {
  if (tokens.empty() || !IsKeyword(tokens[0], "SELECT")) return std::nullopt;
  std::optional<std::size_t> from;
  bool plain = true;
  ForEachOuter(tokens, [&](std::size_t i) {
    if (IsOneOf(tokens[i], kReshapes)) plain = false;
    if (!from && IsKeyword(tokens[i], "FROM")) from = i;
  });
  return plain ? from : std::nullopt;
}

bool SameText(Tokens left, Tokens right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const Token& a, const Token& b) { return a.kind == b.kind && a.text == b.text; });
}

}  // namespace

std::optional<WindowedStatement> WindowedStatement::Of(std::string_view statement, NullOrder nulls) {
  const std::vector<Token> all = Tokenize(statement, Placeholders::Ignore);
  const Tokens tokens(all);
  const bool begins = !tokens.empty() && (IsKeyword(tokens[0], "SELECT") || IsKeyword(tokens[0], "WITH"));
  const auto order = OrderOf(tokens);
  if (!begins || !order || SplitStatements(tokens).size() != 1) return std::nullopt;

  WindowedStatement windowed;
  windowed.nulls_ = nulls;
  windowed.body_ = StatementText(tokens.first(*order));
  bool plain = std::none_of(tokens.begin(), tokens.end(), [](auto& t) { return t.kind == TokenKind::Comment; });
  const Tokens sort = tokens.subspan(*order + 2);
  std::size_t begin = 0;
  const auto endTerm = [&](std::size_t end) {
    Tokens term = sort.subspan(begin, end - begin);
    begin = end + 1;
    const bool descending = !term.empty() && IsKeyword(term.back(), "DESC");
    if (descending || (!term.empty() && IsKeyword(term.back(), "ASC"))) term = term.first(term.size() - 1);
    if (term.empty()) return void(plain = false);
    windowed.terms_.push_back({std::string(StatementText(term)), descending});
  };
  ForEachOuter(sort, [&](std::size_t i) {
    if (IsOneOf(sort[i], kEndsOrder)) plain = false;
    if (sort[i].text == ",") endTerm(i);
  });
  endTerm(sort.size());
  if (!plain) return std::nullopt;
  return windowed;
}

void WindowedStatement::AppendTerm(std::string& out, std::string_view text, bool descending) const {
  Append(out, text, descending ? " desc" : " asc");
  if (nulls_ == NullOrder::Said) out += descending ? " nulls last" : " nulls first";
}

std::string WindowedStatement::Ordered(bool backward) const {
  std::string out = body_ + " order by ";
  for (const Term& term : terms_) {
    AppendTerm(out, term.text, term.descending != backward);
    out += ", ";
  }
  for (std::int32_t column = 1; column <= columns_; ++column) {
    AppendTerm(out, Built([&](std::string& number) { Append(number, column); }), backward);
    if (column < columns_) out += ", ";
  }
  return out;
}

std::string WindowedStatement::Whole() const { return Ordered(false); }

std::string WindowedStatement::Forward(std::int64_t first, std::int64_t count) const {
  std::string out = Ordered(false);
  Append(out, " limit ", count, " offset ", first);
  return out;
}

std::string WindowedStatement::Backward(std::int64_t first, std::int64_t count) const {
  std::string out = Ordered(true);
  Append(out, " limit ", count, " offset ", first);
  return out;
}

std::string WindowedStatement::Count() const {
  return Built([&](std::string& out) { Append(out, "select count(*) as Counted from (", body_, ") Counted"); });
}

std::optional<std::string> WindowedStatement::CountWithTotals(std::string_view totals) const {
  const auto own = Tokenize(body_, Placeholders::Ignore);
  const auto sums = Tokenize(totals, Placeholders::Ignore);
  const auto from = PlainFrom(own);
  const auto sumsFrom = PlainFrom(sums);
  if (!from || !sumsFrom || !SameText(Tokens(own).subspan(*from), Tokens(sums).subspan(*sumsFrom))) return std::nullopt;
  return Built(
      [&](std::string& out) { Append(out, "select count(*) as Counted, ", StatementText(Tokens(sums).subspan(1))); });
}

}  // namespace kalvo::sql
