#pragma once

#include <cstddef>
#include <optional>

#include "kalvo/platform/locale.h"
#include "kalvo/platform/value.h"

namespace kalvo {

inline constexpr std::size_t kMostDateBytes = 32;

// Where the text of a date ends, and the calendar year that it is of.
struct DateText {
  char* end;
  int year;
};

// Writes what `AppendDate` appends, into room for `kMostDateBytes`. Nothing for a serial outside of the years that can
// be written.
std::optional<DateText> WriteDate(char* to, Date date, const Locale& locale);

}  // namespace kalvo
