#include "host/script/text/text.h"

#include <cstddef>
#include <cstdint>

#include "base/percent.h"
#include "kalvo/platform/utf8.h"

namespace kalvo::host {
namespace {

void AppendCesu8(std::string& out, char32_t code) {
  if (code < 0x10000) return AppendCharacter(out, code);
  AppendCharacter(out, 0xD800 + ((code - 0x10000) >> 10));
  AppendCharacter(out, 0xDC00 + ((code - 0x10000) & 0x3FF));
}

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The character at a place of the engine's text: a pair of surrogates is one, a lone surrogate none.
Character DecodePair(std::string_view text, std::size_t at) {
  const Character unit = CharacterAt(text, at, Encoding::Cesu8);
  if (IsLowSurrogate(unit.code)) return {kReplacementCharacter, unit.length};
  if (!IsHighSurrogate(unit.code)) return unit;
  const std::size_t next = at + unit.length;
  if (next >= text.size()) return {kReplacementCharacter, unit.length};
  const Character low = CharacterAt(text, next, Encoding::Cesu8);
  if (!IsLowSurrogate(low.code)) return {kReplacementCharacter, unit.length};
  return {0x10000 + ((unit.code - 0xD800) << 10) + (low.code - 0xDC00), unit.length + low.length};
}

}  // namespace

std::string WellFormed(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  std::string out;
  out.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    const Character character = CharacterAt(bytes, at);
    AppendCharacter(out, character.code);
    at += character.length;
  }
  return out;
}

void AppendForEngine(std::string& out, std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    const Character character = CharacterAt(utf8, at);
    AppendCesu8(out, character.code);
    at += character.length;
  }
}

void AppendFromEngine(std::string& out, std::string_view cesu8) {
  if (IsAscii(cesu8)) {
    out += cesu8;
    return;
  }
  for (std::size_t at = 0; at < cesu8.size();) {
    const Character character = DecodePair(cesu8, at);
    AppendCharacter(out, character.code);
    at += character.length;
  }
}

std::string UrlDecoded(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = base::PercentAt(text, i);
    bytes += byte ? *byte : text[i] == '+' ? ' ' : text[i];
    if (byte) i += 2;
  }
  return WellFormed(bytes);
}

}  // namespace kalvo::host
