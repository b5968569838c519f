#include "host/script/text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kalvo::host {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

struct Character {
  char32_t code;
  std::size_t length;  // the bytes that it takes from the input
};

bool Continues(std::string_view text, std::size_t at, unsigned low = 0x80, unsigned high = 0xBF) {
  if (at >= text.size()) return false;
  const auto byte = static_cast<unsigned char>(text[at]);
  return byte >= low && byte <= high;
}

char32_t Bits(std::string_view text, std::size_t at) { return static_cast<unsigned char>(text[at]) & 0x3Fu; }

// What may follow the first byte of a sequence. The second byte's range keeps out overlong forms, surrogates and
// codes beyond U+10FFFF.
struct Lead {
  unsigned from, to;
  std::size_t length;
  unsigned secondLow, secondHigh;
};

// clang-format off
constexpr Lead kUtf8Leads[] = {
// first byte   length  second byte
  {0xC2, 0xDF,  2,      0x80, 0xBF},
  {0xE0, 0xE0,  3,      0xA0, 0xBF},
  {0xE1, 0xEC,  3,      0x80, 0xBF},
  {0xED, 0xED,  3,      0x80, 0x9F},
  {0xEE, 0xEF,  3,      0x80, 0xBF},
  {0xF0, 0xF0,  4,      0x90, 0xBF},
  {0xF1, 0xF3,  4,      0x80, 0xBF},
  {0xF4, 0xF4,  4,      0x80, 0x8F},
};
constexpr Lead kCesu8Leads[] = {
  {0xC2, 0xDF,  2,      0x80, 0xBF},
  {0xE0, 0xE0,  3,      0xA0, 0xBF},
  {0xE1, 0xEF,  3,      0x80, 0xBF},   // surrogates are units here
};
// clang-format on

// The character at a place; U+FFFD for the longest piece that begins one and does not end it.
template <std::size_t N>
Character Decode(std::string_view text, std::size_t at, const Lead (&leads)[N]) {
  const auto first = static_cast<unsigned char>(text[at]);
  if (first < 0x80) return {first, 1};
  for (const Lead& lead : leads) {
    if (first < lead.from || first > lead.to) continue;
    if (!Continues(text, at + 1, lead.secondLow, lead.secondHigh)) return {kReplacement, 1};
    char32_t code = first & (0xFFu >> (lead.length + 1));
    for (std::size_t i = 1; i < lead.length; ++i) {
      if (!Continues(text, at + i)) return {kReplacement, i};
      code = code << 6 | Bits(text, at + i);
    }
    return {code, lead.length};
  }
  return {kReplacement, 1};
}

void AppendUnit(std::string& out, char32_t unit) {
  if (unit < 0x80) {
    out += static_cast<char>(unit);
  } else if (unit < 0x800) {
    out += static_cast<char>(0xC0 | unit >> 6);
    out += static_cast<char>(0x80 | (unit & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | unit >> 12);
    out += static_cast<char>(0x80 | (unit >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (unit & 0x3F));
  }
}

void AppendUtf8(std::string& out, char32_t code) {
  if (code < 0x10000) return AppendUnit(out, code);
  out += static_cast<char>(0xF0 | code >> 18);
  out += static_cast<char>(0x80 | (code >> 12 & 0x3F));
  out += static_cast<char>(0x80 | (code >> 6 & 0x3F));
  out += static_cast<char>(0x80 | (code & 0x3F));
}

void AppendCesu8(std::string& out, char32_t code) {
  if (code < 0x10000) return AppendUnit(out, code);
  AppendUnit(out, 0xD800 + ((code - 0x10000) >> 10));
  AppendUnit(out, 0xDC00 + ((code - 0x10000) & 0x3FF));
}

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// The character at a place of the engine's text: a pair of surrogates is one, a lone surrogate none.
Character DecodePair(std::string_view text, std::size_t at) {
  const Character unit = Decode(text, at, kCesu8Leads);
  if (IsLowSurrogate(unit.code)) return {kReplacement, unit.length};
  if (!IsHighSurrogate(unit.code)) return unit;
  const std::size_t next = at + unit.length;
  if (next >= text.size()) return {kReplacement, unit.length};
  const Character low = Decode(text, next, kCesu8Leads);
  if (!IsLowSurrogate(low.code)) return {kReplacement, unit.length};
  return {0x10000 + ((unit.code - 0xD800) << 10) + (low.code - 0xDC00), unit.length + low.length};
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string WellFormed(std::string_view bytes) {
  if (IsAscii(bytes)) return std::string(bytes);
  std::string out;
  out.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    const Character character = Decode(bytes, at, kUtf8Leads);
    AppendUtf8(out, character.code);
    at += character.length;
  }
  return out;
}

void AppendForEngine(std::string& out, std::string_view utf8) {
  for (std::size_t at = 0; at < utf8.size();) {
    const Character character = Decode(utf8, at, kUtf8Leads);
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
    AppendUtf8(out, character.code);
    at += character.length;
  }
}

std::string UrlDecoded(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escape =
        text[i] == '%' && i + 2 < text.size() && HexDigit(text[i + 1]) >= 0 && HexDigit(text[i + 2]) >= 0;
    if (escape) {
      bytes += static_cast<char>(HexDigit(text[i + 1]) * 16 + HexDigit(text[i + 2]));
      i += 2;
    } else {
      bytes += text[i] == '+' ? ' ' : text[i];
    }
  }
  return WellFormed(bytes);
}

}  // namespace kalvo::host
