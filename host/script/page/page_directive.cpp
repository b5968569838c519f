#include "host/script/page/page_directive.h"

#include <algorithm>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kBetweenWords = ", \t\r\n";
constexpr std::size_t kMostWords = 100;

bool IsAsciiLetterOrDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool IsSortWord(std::string_view word) {
  return word.size() <= 128 &&
         std::all_of(word.begin(), word.end(), [](char c) { return IsAsciiLetterOrDigit(c) || c == '_' || c == '.'; });
}

// "sha256-" and the hash in base64, as content policies have it.
bool IsHash(std::string_view word) {
  const struct {
    std::string_view name;
    std::size_t length;
  } kHashes[] = {{"sha256-", 44}, {"sha384-", 64}, {"sha512-", 88}};
  for (const auto& hash : kHashes) {
    if (!word.starts_with(hash.name) || word.size() != hash.name.size() + hash.length) continue;
    word.remove_prefix(hash.name.size());
    const std::size_t end = word.find_last_not_of('=') + 1;
    return word.size() - end <= 2 &&
           std::all_of(word.begin(), word.begin() + static_cast<std::ptrdiff_t>(end),
                       [](char c) { return IsAsciiLetterOrDigit(c) || c == '+' || c == '/'; });
  }
  return false;
}

bool IsOwn(std::string_view word) { return EqualsIgnoringCase(word, "own"); }

struct Attribute {
  std::string_view name;
  bool (*taken)(std::string_view word);
  void (*take)(PageDirective& directive, std::string_view word);
  std::string_view right;
};

// clang-format off
constexpr Attribute kAttributes[] = {
  {"SortWords",   IsSortWord, [](PageDirective& to, std::string_view word) { to.sortWords.emplace_back(word); }, "names of letters, digits, \"_\" and \".\", with commas between them"},
  {"Handlers",    IsHash,     [](PageDirective& to, std::string_view word) { to.handlers.emplace_back(word); },  "hashes such as sha256-..., with blanks between them"},
  {"Styles",      IsHash,     [](PageDirective& to, std::string_view word) { to.styles.emplace_back(word); },    "hashes such as sha256-..., with blanks between them"},
  {"Identifiers", IsOwn,      [](PageDirective& to, std::string_view) { to.ownIdentifiers = true; },             "the word own"},
};
// clang-format on

[[noreturn]] void Refuse(const Attribute& attribute) {
  throw DirectiveFault{Built(
      [&](std::string& out) { Append(out, attribute.name, " of the page's first line takes ", attribute.right); })};
}

void TakeWords(PageDirective& directive, const Attribute& attribute, std::string_view value) {
  std::size_t words = 0;
  for (std::size_t from = value.find_first_not_of(kBetweenWords); from != std::string::npos;) {
    const std::size_t to = std::min(value.find_first_of(kBetweenWords, from), value.size());
    const std::string_view word = value.substr(from, to - from);
    if (++words > kMostWords || !attribute.taken(word)) Refuse(attribute);
    attribute.take(directive, word);
    from = value.find_first_not_of(kBetweenWords, to);
  }
  if (words == 0) Refuse(attribute);
}

// The attributes of the line one after the other: a name, and what stands behind its "=".
class Attributes {
 public:
  explicit Attributes(std::string_view line) : rest_(line) {}

  bool Next() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
    if (rest_.empty()) return false;
    name = Take(rest_.find_first_of(" \t\r\n="));
    value = {};
    const std::size_t equals = rest_.find_first_not_of(kBlanks);
    if (equals == std::string::npos || rest_[equals] != '=') return true;
    rest_.remove_prefix(equals + 1);
    rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
    const bool quoted = rest_.starts_with('"') || rest_.starts_with('\'');
    const char quote = quoted ? rest_.front() : ' ';
    if (quoted) rest_.remove_prefix(1);
    value = Take(quoted ? rest_.find(quote) : rest_.find_first_of(kBlanks));
    if (quoted && !rest_.empty()) rest_.remove_prefix(1);
    return true;
  }

  std::string_view name, value;

 private:
  std::string_view Take(std::size_t length) {
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(taken.size());
    return taken;
  }

  std::string_view rest_;
};

}  // namespace

PageDirective ParseDirective(std::string_view line) {
  line.remove_prefix(std::min<std::size_t>(line.size(), 3));
  line.remove_suffix(std::min<std::size_t>(line.size(), 2));
  PageDirective directive;
  Attributes attributes(line);
  while (attributes.Next()) {
    for (const Attribute& known : kAttributes) {
      if (EqualsIgnoringCase(attributes.name, known.name)) TakeWords(directive, known, attributes.value);
    }
  }
  return directive;
}

}  // namespace kalvo::host
