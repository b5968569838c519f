#include "adapters/sql/shape.h"

#include <algorithm>
#include <span>
#include <string>

#include "adapters/sql/diagnostics.h"
#include "adapters/sql/statements.h"
#include "adapters/sql/token.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::sql {

namespace {

using Tokens = std::span<const Token>;

constexpr std::size_t kShownText = 60;  // of an offending text, in its error

Error Refusal(std::string_view reason, std::string_view shown) {
  const bool whole = shown.size() <= kShownText;
  return DatabaseError("42000", Built([&](std::string& out) {
                         Append(out, reason, ": \"", shown.substr(0, kShownText), whole ? "\"" : "...\"");
                       }));
}

bool IsDirection(const Token& token) { return IsKeyword(token, "ASC") || IsKeyword(token, "DESC"); }

// What ends a quoted name differs from database to database, so one that comes from outside holds nothing that
// could mean something outside of its quotes.
bool IsHarmless(std::string_view quotedName) {
  const auto content = quotedName.substr(1, quotedName.size() - 2);
  return !content.empty() && std::all_of(content.begin(), content.end(), [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == ' ' ||
           c == '.' || c == '$' || static_cast<unsigned char>(c) >= 0x80;
  });
}

// Beyond ASCII there are characters that one database takes for a letter and another for a blank.
bool IsPlain(std::string_view name) {
  return std::none_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

bool IsName(const Token& token) {
  return (token.kind == TokenKind::Word && IsPlain(token.text)) ||
         (token.kind == TokenKind::QuotedName && IsHarmless(token.text));
}

// Nothing for a token that is no name.
std::string NameOf(const Token& token) {
  if (token.kind == TokenKind::Word) return ToLowerAscii(token.text);
  return token.kind == TokenKind::QuotedName ? std::string(token.text.substr(1, token.text.size() - 2)) : "";
}

// "s.Name desc, [Total Size], Id": names with dots between their parts, each with a direction or none.
bool IsNameList(Tokens tokens) {
  std::size_t i = 0;
  const auto next = [&](std::string_view symbol) { return i < tokens.size() && tokens[i].text == symbol; };
  while (true) {
    do {
      if (i == tokens.size() || !IsName(tokens[i])) return false;
      ++i;
    } while (next(".") && ++i);
    if (i < tokens.size() && IsDirection(tokens[i])) ++i;
    if (i == tokens.size()) return true;
    if (!next(",")) return false;
    ++i;
  }
}

// A string, quoted name or comment that holds placeholders: the text around them stays.
bool FitsAround(std::string_view own, std::string_view completed) {
  std::size_t first = 0;
  while (first < own.size() && PlaceholderAt(own.substr(first)).empty()) ++first;
  if (first == own.size()) return own == completed;
  std::size_t last = own.size();
  for (std::size_t i = first; i < own.size(); ++i) {
    const auto placeholder = PlaceholderAt(own.substr(i));
    if (!placeholder.empty()) last = i + placeholder.size();
  }
  return completed.size() >= first + (own.size() - last) && completed.starts_with(own.substr(0, first)) &&
         completed.ends_with(own.substr(last));
}

bool Fits(const Token& own, const Token& completed) {
  if (own.kind == TokenKind::Scope) return completed.kind == TokenKind::String;
  return own.kind == completed.kind && FitsAround(own.text, completed.text);
}

bool IsOwnOrderBy(Tokens sort, Tokens orderBy) {
  if (sort.size() == orderBy.size() + 1 && IsDirection(sort.back())) sort = sort.first(orderBy.size());
  return std::equal(orderBy.begin(), orderBy.end(), sort.begin(), sort.end(), Fits);
}

// The same text stands for every "%SORT%", so each takes the same number of tokens.
std::size_t SortLength(Tokens own, Tokens completed) {
  const auto places = static_cast<std::size_t>(
      std::count_if(own.begin(), own.end(), [](const Token& token) { return token.kind == TokenKind::Sort; }));
  const auto fixed = own.size() - places;
  return places == 0 || completed.size() < fixed ? 0 : (completed.size() - fixed) / places;
}

std::string_view TextFrom(Tokens tokens) { return tokens.empty() ? std::string_view() : StatementText(tokens); }

void CheckSort(Tokens sort, Tokens orderBy, Tokens from) {
  if (sort.empty() || IsNameList(sort) || IsOwnOrderBy(sort, orderBy)) return;
  throw Refusal("The sort text is not a list of names, each with ASC or DESC or neither, from", TextFrom(from));
}

// Calls `visit` with each sort text of the completed one, which has the tokens of its own.
template <typename Visit>
void ForEachSort(Tokens own, Tokens completed, Visit&& visit) {
  const std::size_t length = SortLength(own, completed);
  std::size_t at = 0;
  for (const Token& token : own) {
    if (token.kind == TokenKind::Sort) visit(completed.subspan(at, length));
    at += token.kind == TokenKind::Sort ? length : 1;
  }
}

void CheckTokens(Tokens own, Tokens completed, Tokens orderBy) {
  const std::size_t sortLength = SortLength(own, completed);
  std::size_t at = 0;
  for (const Token& token : own) {
    const Tokens rest = completed.subspan(at);
    if (token.kind == TokenKind::Sort) {
      CheckSort(rest.first(std::min(sortLength, rest.size())), orderBy, rest);
      at += std::min(sortLength, rest.size());
      continue;
    }
    if (rest.empty()) throw Refusal("The completed SQL ends before its table's own text does, at", token.text);
    if (!Fits(token, rest[0])) {
      throw token.kind == TokenKind::Scope
          ? Refusal("A scope value is not one string literal, from", TextFrom(rest))
          : Refusal("The completed SQL differs from its table's own text, from", TextFrom(rest));
    }
    ++at;
  }
  if (at < completed.size()) {
    throw Refusal("The completed SQL goes on where its table's own text ends, from", TextFrom(completed.subspan(at)));
  }
}

}  // namespace

std::vector<std::string_view> CheckedStatements(const Batch& batch) {
  if (batch.sql.find('\0') != std::string::npos) throw DatabaseError("42000", "The SQL holds a zero byte.");
  const auto own = Tokenize(batch.pattern, Placeholders::Read);
  const auto completed = Tokenize(batch.sql, Placeholders::Ignore);
  const auto orderBy = Tokenize(batch.orderBy, Placeholders::Read);
  CheckTokens(own, completed, orderBy);

  const auto statements = SplitStatements(completed);
  if (statements.size() != SplitStatements(own).size()) {
    throw Refusal("The completed SQL has another number of statements than its table's own text", batch.sql);
  }
  if (statements.empty()) throw DatabaseError("42000", "The table has no SQL.");
  std::vector<std::string_view> texts;
  for (const auto& statement : statements) texts.push_back(StatementText(statement));
  return texts;
}

std::vector<std::string> NamesOf(std::string_view pattern) {
  std::vector<std::string> names;
  for (const Token& token : Tokenize(pattern, Placeholders::Read)) {
    std::string name = NameOf(token);
    if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end()) names.push_back(std::move(name));
  }
  return names;
}

std::vector<std::string> ForeignSortNames(const Batch& batch) {
  std::vector<std::string> known = NamesOf(batch.pattern), foreign;
  for (std::string& name : NamesOf(batch.orderBy)) known.push_back(std::move(name));
  const auto own = Tokenize(batch.pattern, Placeholders::Read);
  const auto completed = Tokenize(batch.sql, Placeholders::Ignore);
  ForEachSort(own, completed, [&](Tokens sort) {
    for (std::size_t i = 1; i < sort.size(); ++i) {
      if (sort[i - 1].text != ".") continue;
      std::string name = NameOf(sort[i]);
      const auto isName = [&](const std::string& other) { return other == name; };
      if (std::none_of(known.begin(), known.end(), isName) && std::none_of(foreign.begin(), foreign.end(), isName)) {
        foreign.push_back(std::move(name));
      }
    }
  });
  return foreign;
}

}  // namespace kalvo::sql
