#include "host/edge/rules.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

#include "host/edge/sort_words.h"
#include "host/script/page/page_directive.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::edge {
namespace {

constexpr std::size_t kLongestServer = 256;
constexpr std::size_t kLongestIdentifier = 4096;
constexpr std::size_t kMostDigits = 10;
constexpr std::size_t kLongestName = 40;

constexpr std::string_view kPlaceholders[] = {"%SORT%", "%NAME%", "%ORG%", "%SITE%", "%MAILBOX%"};

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetterOrDigit(char c) { return IsDigit(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool IsOfAName(char c) { return IsLetterOrDigit(c) || c == '_' || c == '.'; }

template <typename Takes>
bool AllOf(std::string_view text, Takes takes) {
  return std::all_of(text.begin(), text.end(), takes);
}

Judgement FitsIf(bool fits) { return fits ? Judgement::Fits : Judgement::Unfit; }

// Without characters that end an attribute or a tag, and without control characters: those below the blank, U+007F,
// and U+0080 to U+009F, which are two bytes.
bool IsPlain(std::string_view text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < ' ' || byte == 0x7f || byte == '<' || byte == '>' || byte == '"') return false;
    if (byte == 0xc2 && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xa0) return false;
  }
  return true;
}

Judgement Sort(std::string_view value, const Surroundings& surroundings) {
  return FitsIf(surroundings.sortWords.Take(value, surroundings.page.sortWords));
}

Judgement Order(std::string_view value, const Surroundings&) { return FitsIf(value == "ASC" || value == "DESC"); }

Judgement Number(std::string_view value, const Surroundings&) {
  const bool isSigned = value.starts_with('-') || value.starts_with('+');
  const std::string_view digits = value.substr(isSigned ? 1 : 0);
  if (digits.empty() || digits.size() > kMostDigits || !AllOf(digits, IsDigit)) return Judgement::Unfit;
  std::int64_t number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (value.starts_with('-')) number = -number;
  using Limits = std::numeric_limits<std::int16_t>;
  return number < Limits::min() || number > Limits::max() ? Judgement::TooLarge : Judgement::Fits;
}

Judgement Name(std::string_view value, const Surroundings&) { return FitsIf(IsPlain(value)); }

Judgement Server(std::string_view value, const Surroundings&) {
  return FitsIf(value.size() <= kLongestServer && IsPlain(value));
}

Judgement Identifier(std::string_view value, const Surroundings& surroundings) {
  if (value.size() > kLongestIdentifier) return Judgement::Unfit;
  if (surroundings.page.ownIdentifiers) return FitsIf(IsPlain(value));
  return FitsIf(AllOf(value, [](char c) { return IsLetterOrDigit(c) || c == '_' || c == '-'; }));
}

Judgement Word(std::string_view value, const Surroundings&) {
  return FitsIf(value.size() <= kLongestName && AllOf(value, IsOfAName));
}

// clang-format off
constexpr std::string_view kNumbers     = "a sign and up to ten digits; beyond 16 bits it is empty without a line in the log";
constexpr std::string_view kNames       = "no `<`, `>`, `\"` and control characters";
constexpr std::string_view kServers     = "at most 256 bytes without `<`, `>`, `\"` and control characters";
constexpr std::string_view kIdentifiers = "up to 4096 letters, digits, `_` and `-`, from the query only; a page with `Identifiers=\"own\"` takes names instead";
constexpr std::string_view kWords       = "up to 40 letters, digits, `_` and `.`";

constexpr Rule kRules[] = {
// parameter         sources             judge       takes
  {"Sort",           Sources::All,       Sort,       "a list of sort fields and default orders of the catalogue's tables and of words that the page declares, each with `ASC`, `DESC` or nothing"},
  {"SortOrder",      Sources::All,       Order,      "`ASC` or `DESC`"},
  {"First",          Sources::All,       Number,     kNumbers},
  {"PageSize",       Sources::All,       Number,     kNumbers},
  {"Server",         Sources::All,       Server,     kServers},
  {"ServerName",     Sources::All,       Server,     kServers},
  {"Mailbox",        Sources::All,       Name,       kNames},
  {"MailboxName",    Sources::All,       Name,       kNames},
  {"Container",      Sources::All,       Name,       kNames},
  {"ContainerId",    Sources::QueryOnly, Identifier, kIdentifiers},
  {"PublicFolderId", Sources::QueryOnly, Identifier, kIdentifiers},
  {"MessageId",      Sources::QueryOnly, Identifier, kIdentifiers},
  {"FolderId",       Sources::QueryOnly, Identifier, kIdentifiers},
  {"Flags",          Sources::All,       Number,     kNumbers},
  {"ProcessType",    Sources::All,       Word,       kWords},
  {"Continue",       Sources::All,       Name,       kNames},
  {"Debug",          Sources::All,       Word,       "up to 40 letters, digits, `_` and `.`, of an administrator where the settings say `debug = true`"},
};
// clang-format on

}  // namespace

std::span<const Rule> Rules() { return kRules; }

const Rule* FindRule(std::string_view parameter) {
  for (const Rule& rule : kRules) {
    if (EqualsIgnoringCase(rule.parameter, parameter)) return &rule;
  }
  return nullptr;
}

bool IsParameterName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestName && AllOf(name, IsOfAName);
}

bool HoldsPlaceholder(std::string_view value) {
  const std::string text = std::string(value) + '%';
  return std::any_of(std::begin(kPlaceholders), std::end(kPlaceholders),
                     [&](std::string_view placeholder) { return text.find(placeholder) != std::string::npos; });
}

}  // namespace kalvo::edge
