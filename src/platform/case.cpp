#include <algorithm>
#include <iterator>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/utf8.h"
#include "platform/case_tables.h"

namespace kalvo {

namespace {

constexpr char32_t kFirstBeyondAscii = 0x80;

char AsciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }
char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
bool IsAscii(char c) { return static_cast<unsigned char>(c) < kFirstBeyondAscii; }

static_assert(kToLower[0].first < kFirstBeyondAscii && kToUpper[0].first < kFirstBeyondAscii);

// The letter of a character beyond ASCII: a range stands before every one of them.
template <std::size_t N>
char32_t Mapped(char32_t code, const CaseRange (&ranges)[N]) {
  const CaseRange* behind = std::upper_bound(std::begin(ranges), std::end(ranges), code,
                                             [](char32_t c, const CaseRange& range) { return c < range.first; });
  const CaseRange& range = behind[-1];
  if (code > range.last || (code - range.first) % range.step != 0) return code;
  return static_cast<char32_t>(static_cast<int>(code) + range.offset);
}

// Bytes that are not a character are kept as they are.
template <std::size_t N>
std::string AllMapped(std::string_view text, char (*ascii)(char), const CaseRange (&ranges)[N]) {
  std::string mapped;
  mapped.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    if (IsAscii(text[at])) {
      mapped += ascii(text[at++]);
      continue;
    }
    const Character character = CharacterAt(text, at);
    if (character.code == kReplacementCharacter) {
      mapped += text.substr(at, character.length);
    } else {
      AppendCharacter(mapped, Mapped(character.code, ranges));
    }
    at += character.length;
  }
  return mapped;
}

std::string Transformed(std::string_view text, char (*ascii)(char)) {
  std::string transformed(text);
  std::transform(transformed.begin(), transformed.end(), transformed.begin(), ascii);
  return transformed;
}

}  // namespace

std::string ToLower(std::string_view text) { return AllMapped(text, AsciiLower, kToLower); }
std::string ToUpper(std::string_view text) { return AllMapped(text, AsciiUpper, kToUpper); }

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
  std::size_t same = 0;
  while (same < a.size() && same < b.size() && IsAscii(a[same]) && IsAscii(b[same])) {
    if (AsciiLower(a[same]) != AsciiLower(b[same])) return false;
    ++same;
  }
  a.remove_prefix(same), b.remove_prefix(same);
  if (a.empty() || b.empty()) return a.empty() && b.empty();
  return ToLower(a) == ToLower(b);
}

std::string ToLowerAscii(std::string_view text) { return Transformed(text, AsciiLower); }
std::string ToUpperAscii(std::string_view text) { return Transformed(text, AsciiUpper); }

bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return AsciiLower(x) == AsciiLower(y); });
}

}  // namespace kalvo
