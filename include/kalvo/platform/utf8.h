#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kalvo {

// UTF-8, and CESU-8: UTF-8 of UTF-16 units, where a surrogate is a character of its own and none is longer than
// three bytes.
enum class Encoding { Utf8, Cesu8 };

struct Character {
  char32_t code;
  std::size_t length;  // the bytes that it takes from the text
};

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// The character at a place inside of a text; U+FFFD for the longest piece that begins one and does not end it.
Character CharacterAt(std::string_view text, std::size_t at, Encoding encoding = Encoding::Utf8);

// Appends a code point as UTF-8. A surrogate is appended like any other code point.
void AppendCharacter(std::string& out, char32_t code);

// True for text that is the same in both encodings, and well formed.
bool IsAscii(std::string_view text);

}  // namespace kalvo
