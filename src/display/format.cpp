// Numbers, dates, trimming and URLs.

#include <charconv>
#include <cmath>
#include <cstddef>
#include <optional>

#include "display/value_text.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

constexpr int kSignificantDigits = 15;
constexpr int kDecimals = 2;

// A number as the decimal digits that round it: 0.d1d2d3... x 10^point.
struct Decimal {
  char digits[kSignificantDigits + 1];  // one spare for a carry out of the first digit
  int count = kSignificantDigits;
  int point = 0;
  bool zero = false;  // rounded away
};

Decimal DecimalOf(double number) {
  Decimal decimal;
  char text[32];
  const auto end =
      std::to_chars(text, text + sizeof text, number, std::chars_format::scientific, kSignificantDigits - 1).ptr;
  decimal.digits[0] = text[0];
  for (int i = 1; i < kSignificantDigits; ++i) decimal.digits[i] = text[i + 1];
  const char* exponent = text + kSignificantDigits + 2;  // behind "d.ddddddddddddddde"
  if (*exponent == '+') ++exponent;
  std::from_chars(exponent, end, decimal.point);
  ++decimal.point;
  return decimal;
}

// Rounds half away from zero, behind `decimals` digits after the point.
void Round(Decimal& decimal, int decimals) {
  const int keep = decimal.point + decimals;
  if (keep >= decimal.count) return;
  const bool up = keep >= 0 && decimal.digits[keep] >= '5';
  decimal.count = keep < 0 ? 0 : keep;
  if (up) {
    int i = decimal.count - 1;
    while (i >= 0 && decimal.digits[i] == '9') decimal.digits[i--] = '0';
    if (i >= 0) {
      ++decimal.digits[i];
    } else {
      for (int j = decimal.count; j > 0; --j) decimal.digits[j] = decimal.digits[j - 1];
      decimal.digits[0] = '1';
      ++decimal.count;
      ++decimal.point;
    }
  }
  decimal.zero = decimal.count == 0;
}

void AppendGroupSeparator(std::string& out, const Locale& locale) {
  // A blank would let the browser break a number across lines.
  out += locale.groupSeparator == " " ? "&nbsp;" : locale.groupSeparator;
}

void AppendDecimal(std::string& out, const Decimal& decimal, int decimals, const Locale& locale) {
  const auto digit = [&](int i) { return i >= 0 && i < decimal.count ? decimal.digits[i] : '0'; };
  const int whole = decimal.zero ? 0 : decimal.point;
  if (whole <= 0) out += '0';
  for (int i = 0; i < whole; ++i) {
    if (i > 0 && (whole - i) % 3 == 0) AppendGroupSeparator(out, locale);
    out += digit(i);
  }
  if (decimals == 0) return;
  out += locale.decimalPoint;
  for (int i = whole; i < whole + decimals; ++i) out += digit(i);
}

}  // namespace

// ---- numbers --------------------------------------------------------------------------------------------

std::string Display::Kalvo_FormatNumber(Value& nNumber, const Value& bDecimal) const {
  if (IsNull(nNumber)) nNumber = std::int32_t{0};
  return Built([&](std::string& out) { AppendNumber(out, ToDouble(nNumber), ToBoolean(bDecimal)); });
}

void Display::AppendNumber(std::string& out, std::string_view number, bool decimal) const {
  AppendNumber(out, NumberOf(number), decimal);
}

void Display::AppendNumber(std::string& out, double number, bool decimal) const {
  if (!std::isfinite(number)) throw Overflow();
  char text[kMostNumberBytes];
  if (char* end = WriteNumber(text, number, decimal, locale_)) {
    out.append(text, end);
    return;
  }
  const int decimals = decimal ? kDecimals : 0;
  Decimal digits = DecimalOf(std::abs(number));
  Round(digits, decimals);
  if (number < 0 && !digits.zero) out += '-';
  AppendDecimal(out, digits, decimals, locale_);
}

std::string Display::Kalvo_FormatNumericValue(const Value& nNumber, const Value& nScale, const Value& szUnits,
                                              const Value& szDefault) const {
  if (IsNull(nNumber)) return ToText(szDefault, locale_);
  const double number = ToDouble(nNumber);
  const double scale = number == 0 ? 1 : ToDouble(nScale);
  return Built([&](std::string& out) { AppendNumericValue(out, number, scale, ToText(szUnits, locale_)); });
}

void Display::AppendNumericValue(std::string& out, std::string_view number, double scale,
                                 std::string_view units) const {
  AppendNumericValue(out, NumberOf(number), scale, units);
}

void Display::AppendNumericValue(std::string& out, double number, double scale, std::string_view units) const {
  if (number != 0 && scale == 0) throw DivisionByZero();
  if (number < 0) {
    out += '(';
    AppendNumber(out, -number / scale, true);
    out += ')';
  } else {
    AppendNumber(out, number == 0 ? 0 : number / scale, true);
  }
  out += units;
}

// ---- dates ----------------------------------------------------------------------------------------------

namespace {

// Nothing for a year that is not shown: the default stands for it.
std::optional<Date> ShownDate(std::string_view text, const Locale& locale) {
  const auto read = ParseDate(text, locale);
  return read && YearOf(*read) >= kFirstShownYear ? read : std::nullopt;
}

}  // namespace

std::string Display::Kalvo_FormatDateTime(const Value& nDate, const Value& szDefault) const {
  std::optional<Date> date;
  std::string shown;
  Trap trap;
  trap([&] { date = ShownDate(ToText(nDate, locale_), locale_); });
  trap([&] { date ? AppendDate(shown, *date, locale_) : AppendText(shown, szDefault, locale_); });
  ClearError();
  return shown;
}

void Display::AppendDateTime(std::string& out, std::string_view date, std::string_view defaultText) const {
  const auto shown = ShownDate(date, locale_);
  shown ? AppendDate(out, *shown, locale_) : Append(out, defaultText);
  ClearError();
}

std::string Display::Kalvo_FormatDateTimeFloat(const Value& nDate) const {
  Trap trap;
  return Built([&](std::string& out) {
    if (IsNull(nDate)) return;
    if (const auto* text = std::get_if<std::string>(&nDate)) return AppendDateTimeFloat(out, *text);
    trap([&] { AppendDate(out, Date{ToDouble(nDate)}, locale_); });
  });
}

void Display::AppendDateTimeFloat(std::string& out, std::string_view date) const {
  Trap trap;
  trap([&] {
    const auto serial = ParseNumber(date);
    const auto read = serial ? Date{*serial} : ParseDate(date, locale_);
    if (!read) throw TypeMismatch();
    AppendDate(out, *read, locale_);
  });
}

// ---- trimming -------------------------------------------------------------------------------------------

std::string_view TrimmedTabsAndSpaces(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string Display::TrimTabsAndSpaces(std::string_view szInput) const {
  return std::string(TrimmedTabsAndSpaces(szInput));
}

// ---- URLs -----------------------------------------------------------------------------------------------

std::string Display::AddParamToURL(std::string_view pURL, std::string_view szName, std::string_view szValue) const {
  std::string url(pURL);
  AppendParamToURL(url, szName, szValue);
  return url;
}

void Display::AppendParamToURL(std::string& url, std::string_view szName, std::string_view szValue) const {
  if (szName.empty()) return;
  const char separator = url.find('?') == std::string::npos ? '?' : '&';
  Append(url, separator, szName, '=');
  Held(server_)->URLEncode(url, szValue);
}

}  // namespace kalvo
