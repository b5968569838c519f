#include "adapters/imap/list_answer.h"

#include <algorithm>
#include <charconv>
#include <string>

#include "kalvo/platform/conversion.h"

namespace kalvo::imap {

namespace {

std::optional<std::size_t> Number(std::string_view text) {
  std::size_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool whole = !text.empty() && read.ec == std::errc{} && read.ptr == text.data() + text.size();
  return whole ? std::optional(number) : std::nullopt;
}

// Takes words from the front of a line.
class Words {
 public:
  explicit Words(std::string_view line) : left_(line) {}

  // A word, a quoted text or a literal; nothing where there is none.
  std::optional<std::string> Text() {
    SkipBlanks();
    if (left_.starts_with('"')) return Quoted();
    if (left_.starts_with('{')) return Literal();
    const std::size_t end = std::min(left_.find_first_of(" ()"), left_.size());
    if (end == 0) return std::nullopt;
    return std::string(Cut(end));
  }

  // What stands in parentheses, without them.
  std::optional<std::string_view> List() {
    SkipBlanks();
    const std::size_t end = left_.find(')');
    if (!left_.starts_with('(') || end == std::string::npos) return std::nullopt;
    const std::string_view list = Cut(end + 1);
    return list.substr(1, list.size() - 2);
  }

 private:
  void SkipBlanks() { left_.remove_prefix(std::min(left_.find_first_not_of(' '), left_.size())); }

  std::string_view Cut(std::size_t bytes) {
    const std::string_view cut = left_.substr(0, bytes);
    left_.remove_prefix(cut.size());
    return cut;
  }

  std::optional<std::string> Quoted() {
    std::string text;
    for (std::size_t i = 1; i < left_.size(); ++i) {
      if (left_[i] == '"') return Cut(i + 1), text;
      if (left_[i] == '\\') ++i;
      if (i < left_.size()) text += left_[i];
    }
    return std::nullopt;
  }

  std::optional<std::string> Literal() {
    const std::size_t end = left_.find("}\r\n");
    const auto size = end == std::string::npos ? std::nullopt : Number(left_.substr(1, end - 1));
    if (!size || left_.size() - end - 3 < *size) return std::nullopt;
    Cut(end + 3);
    return std::string(Cut(*size));
  }

  std::string_view left_;
};

bool HasFlag(std::string_view flags, std::string_view flag) {
  return ToLowerAscii(flags).find(flag) != std::string::npos;
}

}  // namespace

void ListAnswer::Take(std::string_view line) {
  if (!line.starts_with("* ")) return;
  line.remove_prefix(2);
  const std::string kind = ToUpperAscii(line.substr(0, line.find(' ')));
  if (kind == "LIST") TakeFolder(line.substr(kind.size()));
  if (kind == "STATUS") TakeState(line.substr(kind.size()));
}

void ListAnswer::TakeFolder(std::string_view rest) {
  Words words(rest);
  const auto flags = words.List();
  const auto separator = flags ? words.Text() : std::nullopt;
  auto name = separator ? words.Text() : std::nullopt;
  if (!name) return;
  const bool isNone = HasFlag(*flags, "\\noselect") || HasFlag(*flags, "\\nonexistent");
  folders_.push_back({std::move(*name), !isNone, {}, {}});
}

void ListAnswer::TakeState(std::string_view rest) {
  Words words(rest);
  const auto name = words.Text();
  const auto items = name ? words.List() : std::nullopt;
  if (!items) return;
  const auto folder =
      std::find_if(folders_.rbegin(), folders_.rend(), [&](const Folder& each) { return each.name == *name; });
  if (folder == folders_.rend()) return;
  FolderState state;
  Words pairs(*items);
  while (const auto item = pairs.Text()) {
    const auto value = Number(pairs.Text().value_or(""));
    if (!value) return;
    if (EqualsIgnoringAsciiCase(*item, "MESSAGES")) state.messages = static_cast<std::uint32_t>(*value);
    if (EqualsIgnoringAsciiCase(*item, "UIDNEXT")) state.uidNext = static_cast<std::uint32_t>(*value);
    if (EqualsIgnoringAsciiCase(*item, "UIDVALIDITY")) state.uidValidity = static_cast<std::uint32_t>(*value);
    if (EqualsIgnoringAsciiCase(*item, "SIZE")) folder->size = static_cast<std::int64_t>(*value);
  }
  folder->state = state;
}

std::optional<std::size_t> LiteralAtEnd(std::string_view line) {
  const std::size_t begin = line.rfind('{');
  if (begin == std::string::npos || !line.ends_with('}')) return std::nullopt;
  return Number(line.substr(begin + 1, line.size() - begin - 2));
}

}  // namespace kalvo::imap
