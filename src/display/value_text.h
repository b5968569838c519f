#pragma once

#include <cstddef>

#include "kalvo/platform/locale.h"

namespace kalvo {

// Years up to 1950 are not dates to the product.
inline constexpr int kFirstShownYear = 1951;

inline constexpr std::size_t kMostNumberBytes = 96;

// Writes what `Display::AppendNumber` appends of a number, into room for `kMostNumberBytes`; answers where it ends.
// Null for a number whose decimal digits have to be looked at to round it, or that is not finite.
char* WriteNumber(char* to, double number, bool decimal, const Locale& locale);

}  // namespace kalvo
