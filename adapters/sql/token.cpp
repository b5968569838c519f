#include "adapters/sql/token.h"

#include <algorithm>

#include "kalvo/platform/conversion.h"

namespace kalvo::sql {

namespace {

constexpr std::string_view kSort = "%SORT%";
constexpr std::string_view kPlaceholders[] = {kSort, "%NAME%", "%ORG%", "%SITE%", "%MAILBOX%"};

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Every byte above ASCII belongs to a name in all the databases.
bool BeginsWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || static_cast<unsigned char>(c) >= 0x80;
}
bool ContinuesWord(char c) { return BeginsWord(c) || IsDigit(c) || c == '$'; }

struct Piece {
  TokenKind kind;
  std::size_t length;
};

template <typename Test>
std::size_t LengthWhile(std::string_view text, Test&& test) {
  return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), test) - text.begin());
}

Piece UpTo(std::string_view text, TokenKind kind, std::size_t end) {
  return end > text.size() ? Piece{TokenKind::Unterminated, text.size()} : Piece{kind, end};
}

// A doubled closing quote is the quote itself.
Piece Quoted(std::string_view text, TokenKind kind, char close) {
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i] != close) continue;
    if (i + 1 == text.size() || text[i + 1] != close) return {kind, i + 1};
    ++i;
  }
  return {TokenKind::Unterminated, text.size()};
}

Piece LineComment(std::string_view text) {
  return {TokenKind::Comment, LengthWhile(text, [](char c) { return c != '\n' && c != '\r'; })};
}

Piece BlockComment(std::string_view text) {
  const auto end = text.find("*/", 2);
  return UpTo(text, TokenKind::Comment, end == std::string::npos ? text.size() + 1 : end + 2);
}

Piece Number(std::string_view text) {
  std::size_t length = LengthWhile(text, [](char c) { return IsDigit(c) || c == '.'; });
  if (length < text.size() && (text[length] == 'e' || text[length] == 'E')) {
    std::size_t exponent = length + 1;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) ++exponent;
    const auto digits = LengthWhile(text.substr(exponent), IsDigit);
    if (digits > 0) length = exponent + digits;
  }
  return {TokenKind::Number, length};
}

Piece First(std::string_view text, Placeholders placeholders) {
  const char c = text[0];
  const char next = text.size() > 1 ? text[1] : '\0';
  if (placeholders == Placeholders::Read && c == '%') {
    const auto placeholder = PlaceholderAt(text);
    if (!placeholder.empty()) return {placeholder == kSort ? TokenKind::Sort : TokenKind::Scope, placeholder.size()};
  }
  if (c == '\'') return Quoted(text, TokenKind::String, '\'');
  if (c == '"' || c == '`') return Quoted(text, TokenKind::QuotedName, c);
  if (c == '[') return Quoted(text, TokenKind::QuotedName, ']');
  if (c == '-' && next == '-') return LineComment(text);
  if (c == '/' && next == '*') return BlockComment(text);
  if (c == '(') return {TokenKind::Open, 1};
  if (c == ')') return {TokenKind::Close, 1};
  if (IsDigit(c) || (c == '.' && IsDigit(next))) return Number(text);
  if (BeginsWord(c)) return {TokenKind::Word, LengthWhile(text, ContinuesWord)};
  return {TokenKind::Symbol, 1};
}

}  // namespace

std::vector<Token> Tokenize(std::string_view sql, Placeholders placeholders) {
  std::vector<Token> tokens;
  while (true) {
    sql.remove_prefix(LengthWhile(sql, IsBlank));
    if (sql.empty()) return tokens;
    const Piece piece = First(sql, placeholders);
    tokens.push_back({piece.kind, sql.substr(0, piece.length)});
    sql.remove_prefix(piece.length);
  }
}

std::string_view PlaceholderAt(std::string_view text) {
  for (const auto placeholder : kPlaceholders) {
    if (text.starts_with(placeholder)) return placeholder;
  }
  return {};
}

bool IsKeyword(const Token& token, std::string_view keyword) {
  return token.kind == TokenKind::Word && EqualsIgnoringAsciiCase(token.text, keyword);
}

}  // namespace kalvo::sql
