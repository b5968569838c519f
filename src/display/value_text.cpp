#include "display/value_text.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string_view>

namespace kalvo {

namespace {

constexpr std::string_view kUnbrokenBlank = "&nbsp;";

constexpr auto kTwoDigits = [] {
  std::array<std::array<char, 2>, 100> pairs{};
  for (int i = 0; i < 100; ++i) pairs[i] = {static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)};
  return pairs;
}();

// Digits are made from the last to the first.
char* PutTwoBefore(char* at, std::uint64_t number) {
  at -= 2;
  std::memcpy(at, kTwoDigits[number].data(), 2);
  return at;
}

char* PutBefore(char* at, std::string_view text) {
  at -= text.size();
  std::memcpy(at, text.data(), text.size());
  return at;
}

// A whole number of up to 15 digits in groups of three.
char* WriteGrouped(char* to, std::uint64_t number, std::string_view separator) {
  char digits[kMostNumberBytes];
  char* at = digits + sizeof digits;
  while (number >= 1000) {
    at = PutTwoBefore(at, number % 100);
    *--at = static_cast<char>('0' + number / 100 % 10);
    if (separator.size() == 1) {
      *--at = separator.front();
    } else {
      at = PutBefore(at, separator);
    }
    number /= 1000;
  }
  if (number >= 10) {
    at = PutTwoBefore(at, number % 100);
    if (number >= 100) *--at = static_cast<char>('0' + number / 100);
  } else {
    *--at = static_cast<char>('0' + number);
  }
  const auto size = static_cast<std::size_t>(digits + sizeof digits - at);
  std::memcpy(to, at, size);
  return to + size;
}

// Most numbers are not near a tie: hundredths in plain arithmetic round them as their decimal digits do. Nothing for a
// number that needs its digits looked at. `number` is not negative.
std::optional<std::uint64_t> Hundredths(double number) {
  constexpr double kLargest = 1e6;
  constexpr double kNearTie = 1e-6;
  if (!(number < kLargest)) return std::nullopt;
  const double scaled = number * 100;
  const auto whole = static_cast<std::uint64_t>(scaled);
  const double rest = scaled - static_cast<double>(whole);
  if (std::abs(rest - 0.5) < kNearTie) return std::nullopt;
  return whole + (rest > 0.5 ? 1 : 0);
}

}  // namespace

char* WriteNumber(char* to, double number, bool decimal, const Locale& locale) {
  constexpr double kExactIntegers = 1e15;
  const double size = std::abs(number);
  if (!(size < kExactIntegers)) return nullptr;
  // A blank would let the browser break a number across lines.
  const std::string_view separator = locale.groupSeparator == " " ? kUnbrokenBlank : locale.groupSeparator;
  if (!decimal) {
    const auto whole = static_cast<std::uint64_t>(size);
    if (static_cast<double>(whole) != size) return nullptr;
    if (number < 0) *to++ = '-';
    return WriteGrouped(to, whole, separator);
  }
  const auto hundredths = Hundredths(size);
  if (!hundredths) return nullptr;
  if (number < 0 && *hundredths != 0) *to++ = '-';
  to = WriteGrouped(to, *hundredths / 100, separator);
  std::memcpy(to, locale.decimalPoint.data(), locale.decimalPoint.size());
  to += locale.decimalPoint.size();
  std::memcpy(to, kTwoDigits[*hundredths % 100].data(), 2);
  return to + 2;
}

}  // namespace kalvo
