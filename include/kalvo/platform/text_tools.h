#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kalvo {

// Small tools for texts, each of them here alone.

inline constexpr std::string_view kBlanks = " \t\r\n";

// The text without those characters at its beginning and end.
std::string_view Trimmed(std::string_view text, std::string_view blanks = kBlanks);

// Puts a text in the place of every other one; what was put in is not looked through.
void ReplaceAll(std::string& text, std::string_view what, std::string_view with);

// A text as a string of SQL: in single quotes, each one inside of it doubled.
void AppendSqlQuoted(std::string& out, std::string_view text);
std::string SqlQuoted(std::string_view text);

enum class HexLetters { Small, Capital };

// The hexadecimal digit of a value below 16.
constexpr char HexDigit(unsigned value, HexLetters letters = HexLetters::Small) {
  return (letters == HexLetters::Small ? "0123456789abcdef" : "0123456789ABCDEF")[value];
}

// Each byte as two hexadecimal digits.
void AppendHexadecimal(std::string& out, std::span<const std::uint8_t> bytes, HexLetters letters = HexLetters::Small);
std::string Hexadecimal(std::span<const std::uint8_t> bytes);

// The value of a hexadecimal digit, in either case; -1 for any other character.
int HexValue(char digit);

// Whether a text is hexadecimal digits alone, with small letters, as `Hexadecimal` writes them; true for "".
bool IsHexadecimal(std::string_view text);

}  // namespace kalvo
