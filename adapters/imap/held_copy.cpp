#include "adapters/imap/held_copy.h"

#include <algorithm>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::imap {

namespace {

constexpr std::size_t kPieceBytes = 900;  // of the record on one line
constexpr std::string_view kEnd = ";end=1";

std::string CheckOf(std::string_view record, const mail::IdentifierKey& key) {
  return Hexadecimal(mail::KeyedHash(key, record));
}

// The lines' pieces put together, up to the last; `length` is where that ends.
std::string Joined(std::string_view text, std::size_t& length) {
  std::string joined;
  std::size_t at = 0;
  while (at < text.size() && !joined.ends_with(kEnd)) {
    const std::size_t end = std::min(text.find('\n', at), text.size());
    std::string_view line = text.substr(at, end - at);
    at = std::min(end + 1, text.size());
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.size() <= kHeldField.size() || !EqualsIgnoringCase(line.substr(0, kHeldField.size()), kHeldField) ||
        line[kHeldField.size()] != ':') {
      return {};
    }
    line.remove_prefix(kHeldField.size() + 1);
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    joined += line;
  }
  length = at;
  return joined.ends_with(kEnd) ? joined : std::string();
}

}  // namespace

std::string HeldLines(const mail::HeldMessage& held, const mail::IdentifierKey& key) {
  std::string record = mail::WriteHeldRecord(held);
  record = CheckOf(record, key) + " " + record;
  std::replace(record.begin(), record.end(), ' ', ';');  // a blank at a line's end would not stay
  std::string lines;
  for (std::size_t at = 0; at < record.size(); at += kPieceBytes) {
    Append(lines, kHeldField, ": ", std::string_view(record).substr(at, kPieceBytes), kCrLf);
  }
  return lines;
}

std::optional<mail::HeldMessage> ReadHeldLines(std::string_view text, const mail::IdentifierKey& key) {
  std::size_t length = 0;
  std::string record = Joined(text, length);
  std::replace(record.begin(), record.end(), ';', ' ');
  const std::size_t blank = record.find(' ');
  if (blank == std::string::npos) return std::nullopt;
  const std::string check = record.substr(0, blank);
  record.erase(0, blank + 1);
  if (check != CheckOf(record, key)) return std::nullopt;
  return mail::ReadHeldRecord(record);
}

std::size_t HeldLinesLength(std::string_view text) {
  std::size_t length = 0;
  return Joined(text, length).empty() ? 0 : length;
}

}  // namespace kalvo::imap
