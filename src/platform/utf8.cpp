#include "kalvo/platform/utf8.h"

#include <algorithm>
#include <span>

namespace kalvo {

namespace {

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

std::span<const Lead> LeadsOf(Encoding encoding) {
  if (encoding == Encoding::Cesu8) return kCesu8Leads;
  return kUtf8Leads;
}

void AppendContinuation(std::string& out, char32_t bits) { out += static_cast<char>(0x80 | (bits & 0x3F)); }

}  // namespace

Character CharacterAt(std::string_view text, std::size_t at, Encoding encoding) {
  const auto first = static_cast<unsigned char>(text[at]);
  if (first < 0x80) return {first, 1};
  for (const Lead& lead : LeadsOf(encoding)) {
    if (first < lead.from || first > lead.to) continue;
    if (!Continues(text, at + 1, lead.secondLow, lead.secondHigh)) return {kReplacementCharacter, 1};
    char32_t code = first & (0xFFu >> (lead.length + 1));
    for (std::size_t i = 1; i < lead.length; ++i) {
      if (!Continues(text, at + i)) return {kReplacementCharacter, i};
      code = code << 6 | Bits(text, at + i);
    }
    return {code, lead.length};
  }
  return {kReplacementCharacter, 1};
}

void AppendCharacter(std::string& out, char32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | code >> 6);
    AppendContinuation(out, code);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | code >> 12);
    AppendContinuation(out, code >> 6);
    AppendContinuation(out, code);
  } else {
    out += static_cast<char>(0xF0 | code >> 18);
    AppendContinuation(out, code >> 12);
    AppendContinuation(out, code >> 6);
    AppendContinuation(out, code);
  }
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace kalvo
