#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kalvo/platform/locale.h"
#include "kalvo/platform/value.h"

namespace kalvo {

// ---- text -----------------------------------------------------------------------------------------------

// Appends the text of a value: null and empty "", booleans "True"/"False", integers decimal, doubles with up
// to 15 significant digits, dates in the general date format, bytes as they are. An object fails with 438.
void AppendText(std::string& out, const Value& value, const Locale& locale = kEnglishUnitedStates);
std::string ToText(const Value& value, const Locale& locale = kEnglishUnitedStates);

// Up to 15 significant digits with a point: "0.1", "1E+20", "36162.5".
void AppendDouble(std::string& out, double number);

// As few digits as tell a single-precision number from its neighbours: "0.015625".
void AppendSingle(std::string& out, float number);

// A date as the locale's general date: "1/2/1999 3:04:05 PM"; no time at midnight, no date on day 0. A serial
// outside the years 100 to 9999 fails with 13.
void AppendDate(std::string& out, Date date, const Locale& locale);

// ---- numbers --------------------------------------------------------------------------------------------

// The number that a text is: optional blanks around an optional sign, digits with an optional point, an
// optional exponent. Nothing for any other text.
std::optional<double> ParseNumber(std::string_view text);

// The same of a text that must be a number; any other fails with 13.
double NumberOf(std::string_view text);

bool IsNumeric(const Value& value);

// Numbers by conversion: empty is 0, booleans -1 and 0, dates their serial, text as `ParseNumber` reads it.
// Null fails with 94, other text with 13, a number out of range with 6. Integers round halves to even.
double ToDouble(const Value& value);
std::int32_t ToInt32(const Value& value);
std::int16_t ToInt16(const Value& value);
std::int32_t ToInt32(double number);
std::int16_t ToInt16(double number);
std::int16_t ToInt16(std::string_view text);

// ---- booleans -------------------------------------------------------------------------------------------

// True for non-zero numbers and "True" in any case; false for zero, empty, null and "False". Numeric text is
// the number it is; any other text fails with 13.
bool ToBoolean(const Value& value);

// ---- dates ----------------------------------------------------------------------------------------------

// Reads a date text: the locale's own form or "yyyy-mm-dd hh:mm:ss", each with or without a time, or a time
// alone. Two-digit years 30 to 99 are 19xx, 0 to 29 are 20xx; fractions of a second are dropped.
std::optional<Date> ParseDate(std::string_view text, const Locale& locale);

// A calendar date as a serial; nothing when there is no such day or time. Years 100 to 9999.
std::optional<Date> MakeDate(int year, int month, int day, int hour = 0, int minute = 0, int second = 0);

// Whether the serial is a date that can be written: the years 100 to 9999.
bool IsCalendarDate(Date date);

// The calendar year of such a date; any other fails with 13.
int YearOf(Date date);

// ---- case -----------------------------------------------------------------------------------------------

// Names and words of people: each character by its simple mapping, whatever the locale. What has none is kept, as are
// bytes that are not UTF-8. Texts are equal without regard to case when they are in lower case.
std::string ToLower(std::string_view text);
std::string ToUpper(std::string_view text);
bool EqualsIgnoringCase(std::string_view a, std::string_view b);

// Words of a protocol, a language or a format: ASCII letters alone.
std::string ToLowerAscii(std::string_view text);
std::string ToUpperAscii(std::string_view text);
bool EqualsIgnoringAsciiCase(std::string_view a, std::string_view b);

}  // namespace kalvo
