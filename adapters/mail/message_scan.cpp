#include "adapters/mail/message_scan.h"

#include <algorithm>
#include <utility>

#include "kalvo/platform/conversion.h"

namespace kalvo::mail {

namespace {

// clang-format off
constexpr struct { std::string_view name; std::string_view Head::*field; } kFields[] = {
  {"From",                      &Head::from},
  {"Subject",                   &Head::subject},
  {"Date",                      &Head::date},
  {"Content-Type",              &Head::contentType},
  {"Content-Disposition",       &Head::contentDisposition},
  {"Content-Transfer-Encoding", &Head::contentEncoding},
};
// clang-format on

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view WithoutEnd(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Keeps a field's text where it is one of ours and the first of its name.
void Keep(std::string_view field, Head& head) {
  const std::size_t colon = field.find(':');
  if (colon == std::string::npos) return;
  std::string_view name = field.substr(0, colon);
  while (!name.empty() && IsBlank(name.back())) name.remove_suffix(1);
  for (const auto& each : kFields) {
    if (EqualsIgnoringAsciiCase(each.name, name) && !(head.*each.field).data()) {
      head.*each.field = field.substr(colon + 1);
    }
  }
}

}  // namespace

MessageScan::MessageScan(std::string_view message, AskMultipart askMultipart)
    : text_(message), askMultipart_(std::move(askMultipart)) {
  // Some programs put a mark of the encoding, or blanks and empty lines, before the first field.
  if (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
  text_.remove_prefix(std::min(text_.find_first_not_of(" \t\r\n"), text_.size()));
  top_ = head_ = ReadHead();
}

// The line at the present place, with its end.
std::string_view MessageScan::Line() const {
  const std::size_t end = text_.find('\n', at_);
  return text_.substr(at_, end == std::string::npos ? std::string::npos : end + 1 - at_);
}

// Up to and with the empty line behind it; to a delimiter where that is missing.
Head MessageScan::ReadHead() {
  Head head;
  std::size_t field = at_, most = at_ + kLongestField;  // where the field that is being read begins, and is cut
  int lines = 0;                                        // of it
  const auto keep = [&] {
    Keep(WithoutEnd(text_.substr(field, std::min(at_, most) - field)), head);
    field = at_, most = at_ + kLongestField, lines = 0;
  };
  while (at_ < text_.size()) {
    const std::string_view line = Line();
    const bool isEmpty = WithoutEnd(line).empty();
    const bool ends = isEmpty || DelimiterAt(line).level != std::string::npos;
    if (ends || !IsBlank(line.front())) keep();
    if (isEmpty) at_ += line.size();
    if (ends) return head;
    if (lines++ == kMostFieldLines) most = std::min(most, at_);
    at_ += line.size();
  }
  keep();
  return head;
}

MessageScan::Delimiter MessageScan::DelimiterAt(std::string_view line) const {
  Delimiter none;
  if (open_.empty() || !line.starts_with("--")) return none;
  line = WithoutEnd(line);
  while (!line.empty() && IsBlank(line.back())) line.remove_suffix(1);
  line.remove_prefix(std::min<std::size_t>(2, line.size()));
  for (std::size_t level = open_.size(); level-- > 0;) {
    const std::string& boundary = open_[level].boundary;
    const bool closes = line.size() == boundary.size() + 2;
    if ((!closes && line.size() != boundary.size()) || !line.starts_with(boundary)) continue;
    if (closes && !line.ends_with("--")) continue;
    return {at_, level, closes};
  }
  return none;
}

// Moves to the next delimiter, or to the end.
MessageScan::Delimiter MessageScan::FindDelimiter() {
  while (at_ < text_.size()) {
    const std::string_view line = Line();
    const Delimiter found = DelimiterAt(line);
    if (found.level != std::string::npos) return found;
    at_ += line.size();
  }
  return {at_, std::string::npos, false};
}

// Goes behind a delimiter and closes what it ends: the parts below its level, and with "--" the level itself.
void MessageScan::Pass(const Delimiter& delimiter) {
  hasHead_ = false;
  if (delimiter.level == std::string::npos) return open_.clear();
  at_ += Line().size();
  open_.resize(delimiter.level + (delimiter.closes ? 0 : 1));
  if (delimiter.closes) return;
  isMessage_ = open_.back().isDigest;
  head_ = ReadHead();
  hasHead_ = true;
}

// The line end before a delimiter belongs to it.
std::string_view MessageScan::Content(std::size_t begin, const Delimiter& delimiter) const {
  const std::string_view content = text_.substr(begin, delimiter.start - begin);
  return delimiter.level == std::string::npos ? content : WithoutEnd(content);
}

std::optional<Leaf> MessageScan::Next() {
  for (;;) {
    if (hasHead_) {
      if (parts_++ >= kMostParts) return std::nullopt;
      const auto multipart = askMultipart_(head_);
      if (!multipart) {
        Leaf leaf{head_, {}, isMessage_};
        const std::size_t begin = at_;
        const Delimiter delimiter = FindDelimiter();
        leaf.content = Content(begin, delimiter);
        Pass(delimiter);
        return leaf;
      }
      // One without a boundary has no parts, and of one that is nested too deep they are not looked at.
      if (!multipart->boundary.empty() && open_.size() < kDeepestParts) open_.push_back(*multipart);
    } else if (open_.empty()) {
      return std::nullopt;
    }
    Pass(FindDelimiter());
  }
}

}  // namespace kalvo::mail
