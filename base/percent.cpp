#include "base/percent.h"

#include "kalvo/platform/text_tools.h"

namespace kalvo::base {

void AppendPercent(std::string& out, char byte) {
  const auto code = static_cast<unsigned char>(byte);
  const char written[] = {'%', HexDigit(code >> 4u, HexLetters::Capital), HexDigit(code & 15u, HexLetters::Capital)};
  out.append(written, sizeof written);
}

std::optional<char> PercentAt(std::string_view text, std::size_t at) {
  if (at + 2 >= text.size() || text[at] != '%') return std::nullopt;
  const int high = HexValue(text[at + 1]), low = HexValue(text[at + 2]);
  if (high < 0 || low < 0) return std::nullopt;
  return static_cast<char>(high * 16 + low);
}

std::optional<std::string> FromPercent(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = text[at] == '%' ? PercentAt(text, at) : std::optional(text[at]);
    if (!byte) return std::nullopt;
    if (text[at] == '%') at += 2;
    plain += *byte;
  }
  return plain;
}

}  // namespace kalvo::base
