#include "adapters/mail/shown_text.h"

#include <algorithm>
#include <cstddef>
#include <ctime>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"
#include "kalvo/platform/utf8.h"

namespace kalvo::mail {

namespace {

constexpr std::size_t kLongestText = 500;  // characters
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

// Controls, line separators, and marks that turn the direction of the text around them.
bool IsControl(char32_t code) {
  return code < 0x20 || (code >= 0x7F && code < 0xA0) || (code >= 0x2028 && code <= 0x202E) ||
         (code >= 0x2066 && code <= 0x2069) || code == 0xFEFF;
}

}  // namespace

std::string CleanText(std::string_view raw) {
  std::string clean;
  std::size_t characters = 0;
  bool blankWanted = false;
  for (std::size_t at = 0; at < raw.size();) {
    const Character next = CharacterAt(raw, at);
    at += next.length;
    if (IsControl(next.code)) {
      blankWanted = true;
      continue;
    }
    if (next.code == U' ') {
      if (blankWanted || !clean.empty()) blankWanted = false, clean += ' ', ++characters;
      continue;
    }
    if (characters >= kLongestText) {
      clean += kEllipsis;
      break;
    }
    if (blankWanted && !clean.empty() && clean.back() != ' ') clean += ' ', ++characters;
    blankWanted = false;
    AppendCharacter(clean, next.code);
    ++characters;
  }
  return std::string(Trimmed(clean, " "));
}

std::string SenderText(std::string_view name, std::string_view address) {
  if (name.empty() || name == address) return std::string(address);
  if (address.empty()) return std::string(name);
  return Built([&](std::string& out) { Append(out, name, " <", address, ">"); });
}

bool IsAttachment(std::string_view type, std::string_view disposition, bool hasFileName) {
  return hasFileName || EqualsIgnoringAsciiCase(disposition, "attachment") ||
         !(type.empty() || EqualsIgnoringAsciiCase(type, "text"));
}

std::string AttachmentName(std::string_view fileName, std::string_view type, std::string_view subtype) {
  std::string name = CleanText(fileName.substr(fileName.find_last_of("/\\") + 1));
  if (!name.empty()) return name;
  if (type.empty()) return "text/plain";
  return CleanText(ToLowerAscii(Built([&](std::string& out) { Append(out, type, "/", subtype); })));
}

Value DateValue(std::optional<std::int64_t> seconds) {
  if (!seconds) return Empty();
  const std::time_t time = static_cast<std::time_t>(*seconds);
  std::tm local{};
  if (!localtime_r(&time, &local)) return Empty();
  const auto date =
      MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec % 60);
  if (!date) return Empty();
  return *date;
}

FolderPath ParsePath(std::string_view path) {
  FolderPath names;
  while (!path.empty()) {
    const std::size_t end = std::min(path.find('\\'), path.size());
    if (end > 0) names.emplace_back(path.substr(0, end));
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return names;
}

std::string PathText(const FolderPath& path) {
  std::string text;
  for (const std::string& name : path) {
    if (!text.empty()) text += '\\';
    text += name;
  }
  return text;
}

}  // namespace kalvo::mail
