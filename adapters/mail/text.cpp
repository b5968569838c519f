#include "adapters/mail/text.h"

#include <algorithm>
#include <cstddef>
#include <ctime>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::mail {

namespace {

constexpr std::size_t kLongestText = 500;  // characters
constexpr std::string_view kReplacement = "\xEF\xBF\xBD", kEllipsis = "\xE2\x80\xA6";

struct Character {
  std::size_t length;  // bytes; 1 for a bad byte
  char32_t code;
  bool good;
};

// The character that begins at `at`: no overlong forms, no surrogates, nothing above U+10FFFF.
Character Next(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  if (lead < 0x80) return {1, lead, true};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return {1, 0, false};
  char32_t code = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return {1, 0, false};
    code = (code << 6) | (byte(at + i) & 0x3Fu);
  }
  const char32_t least = length == 4 ? 0x10000 : length == 3 ? 0x800 : 0x80;
  if (code < least || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) return {1, 0, false};
  return {length, code, true};
}

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
    const Character next = Next(raw, at);
    const std::string_view piece = next.good ? raw.substr(at, next.length) : kReplacement;
    at += next.length;
    if (next.good && IsControl(next.code)) {
      blankWanted = true;
      continue;
    }
    if (piece == " ") {
      if (blankWanted || !clean.empty()) blankWanted = false, clean += ' ', ++characters;
      continue;
    }
    if (characters >= kLongestText) {
      clean += kEllipsis;
      break;
    }
    if (blankWanted && !clean.empty() && clean.back() != ' ') clean += ' ', ++characters;
    blankWanted = false;
    clean += piece;
    ++characters;
  }
  const std::size_t last = clean.find_last_not_of(' ');
  const std::size_t first = clean.find_first_not_of(' ');
  return last == std::string::npos ? std::string() : clean.substr(first, last + 1 - first);
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
