#include "kalvo/platform/text_tools.h"

#include <algorithm>

#include "kalvo/platform/append.h"

namespace kalvo {

std::string_view Trimmed(std::string_view text, std::string_view blanks) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

void ReplaceAll(std::string& text, std::string_view what, std::string_view with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

void AppendSqlQuoted(std::string& out, std::string_view text) {
  out += '\'';
  for (const char c : text) {
    if (c == '\'') out += '\'';
    out += c;
  }
  out += '\'';
}

std::string SqlQuoted(std::string_view text) {
  return Built([&](std::string& out) { AppendSqlQuoted(out, text); });
}

void AppendHexadecimal(std::string& out, std::span<const std::uint8_t> bytes, HexLetters letters) {
  for (const std::uint8_t byte : bytes) Append(out, HexDigit(byte >> 4u, letters), HexDigit(byte & 15u, letters));
}

std::string Hexadecimal(std::span<const std::uint8_t> bytes) {
  return Built([&](std::string& out) { AppendHexadecimal(out, bytes); });
}

int HexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

bool IsHexadecimal(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return HexValue(c) >= 0 && (c < 'A' || c > 'F'); });
}

}  // namespace kalvo
