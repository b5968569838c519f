#pragma once

#include <string_view>

namespace kalvo {

enum class DateOrder { MonthDayYear, DayMonthYear };
enum class HourCycle { Twelve, TwentyFour };

// How numbers and dates are written and read. The host chooses one for the process.
struct Locale {
  std::string_view name;  // as the settings name it
  std::string_view decimalPoint;
  std::string_view groupSeparator;  // between groups of three digits
  DateOrder dateOrder;
  char dateSeparator;
  bool padDate;  // "01.02.1999" instead of "1.2.1999"
  HourCycle hours;
};

// clang-format off
inline constexpr Locale kLocales[] = {
// name     decimal  group     date order               separator  padded  hours
  {"en-US", ".",     ",",      DateOrder::MonthDayYear, '/',       false,  HourCycle::Twelve},
  {"en-GB", ".",     ",",      DateOrder::DayMonthYear, '/',       true,   HourCycle::TwentyFour},
  {"de-DE", ",",     ".",      DateOrder::DayMonthYear, '.',       true,   HourCycle::TwentyFour},
  {"fr-FR", ",",     " ",      DateOrder::DayMonthYear, '/',       true,   HourCycle::TwentyFour},
};
// clang-format on

inline constexpr const Locale& kEnglishUnitedStates = kLocales[0];

// The locale of that name; null when there is none.
constexpr const Locale* FindLocale(std::string_view name) {
  for (const Locale& locale : kLocales) {
    if (locale.name == name) return &locale;
  }
  return nullptr;
}

}  // namespace kalvo
