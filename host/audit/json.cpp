#include "host/audit/json.h"

#include <array>
#include <cstdint>

#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::audit {
namespace {

void AppendUnit(std::string& out, unsigned unit) {
  out += "\\u";
  AppendHexadecimal(out, std::array{static_cast<std::uint8_t>(unit >> 8), static_cast<std::uint8_t>(unit)});
}

// U+0080 to U+009F, and U+2028, U+2029 and the marks that turn the direction of a text around: how many bytes such a
// character at the front takes; 0 for any other.
std::size_t MisleadingBytes(std::string_view text, unsigned& unit) {
  const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u; };
  if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) {
    unit = byte(1);
    return 2;
  }
  if (byte(0) != 0xE2) return 0;
  unit = 0x2000u | (byte(1) & 0x3Fu) << 6 | (byte(2) & 0x3Fu);
  const bool misleads =
      (unit >= 0x200E && unit <= 0x200F) || (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
  return misleads ? 3 : 0;
}

}  // namespace

void AppendJsonText(std::string& out, std::string_view text) {
  out += '"';
  while (!text.empty()) {
    const auto byte = static_cast<unsigned char>(text.front());
    unsigned unit = byte;
    if (byte == '"' || byte == '\\') {
      Append(out, '\\', text.front());
      text.remove_prefix(1);
    } else if (byte < 0x20 || byte == 0x7F) {
      AppendUnit(out, unit);
      text.remove_prefix(1);
    } else if (const std::size_t size = MisleadingBytes(text, unit)) {
      AppendUnit(out, unit);
      text.remove_prefix(size);
    } else {
      out += text.front();
      text.remove_prefix(1);
    }
  }
  out += '"';
}

}  // namespace kalvo::audit
