#pragma once

#include <charconv>
#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>

namespace kalvo {

template <typename T>
concept AppendableInteger = std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char>;

inline void AppendPiece(std::string& out, std::string_view text) { out += text; }
inline void AppendPiece(std::string& out, char character) { out += character; }

template <AppendableInteger T>
void AppendPiece(std::string& out, T number) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  out.append(digits, static_cast<std::size_t>(end - digits));
}

// Appends text, characters and integers, integers in decimal. A `bool` has three spellings in this system,
// so there is no overload for it: the caller writes the one that is meant.
template <typename... Pieces>
void Append(std::string& out, const Pieces&... pieces) {
  (AppendPiece(out, pieces), ...);
}

// The text that an appending operation makes, as a string of its own.
template <typename Maker>
std::string Built(Maker&& maker) {
  std::string out;
  maker(out);
  return out;
}

inline constexpr std::string_view kCrLf = "\r\n";

}  // namespace kalvo
