#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Appends what `to_chars` makes, with the exponent's letter in upper case.
template <typename Number, typename... Format>
void AppendFloating(std::string& out, Number number, Format... format) {
  char digits[40];
  const auto end = std::to_chars(digits, digits + sizeof digits, number, format...).ptr;
  std::replace(digits, end, 'e', 'E');
  out.append(digits, end);
}

// The part of a text that holds a number's digits, its sign taken off; empty when the text is not a number.
struct Digits {
  std::string_view text;
  bool negative = false;
};

std::size_t SkipDigits(std::string_view text, std::size_t at) {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

Digits FindDigits(std::string_view text) {
  const auto skipBlanks = [&] { text.remove_prefix(std::min(text.find_first_not_of(' '), text.size())); };
  Digits digits;
  skipBlanks();
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    digits.negative = text[0] == '-';
    text.remove_prefix(1);
    skipBlanks();
  }
  text = text.substr(0, text.find_last_not_of(' ') + 1);

  std::size_t at = SkipDigits(text, 0);
  std::size_t count = at;
  if (at < text.size() && text[at] == '.') {
    const std::size_t fraction = SkipDigits(text, at + 1);
    count += fraction - at - 1;
    at = fraction;
  }
  if (count == 0) return digits;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    std::size_t power = at + 1;
    if (power < text.size() && (text[power] == '-' || text[power] == '+')) ++power;
    const std::size_t end = SkipDigits(text, power);
    if (end == power) return digits;
    at = end;
  }
  if (at == text.size()) digits.text = text;
  return digits;
}

// Integers of up to 15 digits are most of what is parsed; nothing else needs the general reader.
constexpr std::size_t kExactDigits = 15;

double ReadDigits(std::string_view text) {
  if (text.size() <= kExactDigits && std::all_of(text.begin(), text.end(), IsDigit)) {
    std::int64_t number = 0;
    for (const char c : text) number = number * 10 + (c - '0');
    return static_cast<double>(number);
  }
  double number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec == std::errc::result_out_of_range) {
    // Too large, or so small that it is nothing: the exponent's sign tells.
    const std::size_t power = text.find_first_of("eE");
    const bool tiny = power != std::string::npos && text[power + 1] == '-';
    return tiny ? 0 : std::numeric_limits<double>::infinity();
  }
  return number;
}

template <typename Integer>
Integer RoundedTo(double number) {
  const double rounded = std::nearbyint(number);  // halves to even, the rounding mode that nobody changes
  if (!(rounded >= std::numeric_limits<Integer>::min() && rounded <= std::numeric_limits<Integer>::max())) {
    throw Overflow();
  }
  return static_cast<Integer>(rounded);
}

}  // namespace

void AppendDouble(std::string& out, double number) { AppendFloating(out, number, std::chars_format::general, 15); }

void AppendSingle(std::string& out, float number) { AppendFloating(out, number); }

std::optional<double> ParseNumber(std::string_view text) {
  const Digits digits = FindDigits(text);
  if (digits.text.empty()) return std::nullopt;
  const double number = ReadDigits(digits.text);
  return digits.negative ? -number : number;
}

double NumberOf(std::string_view text) {
  const auto number = ParseNumber(text);
  if (!number) throw TypeMismatch();
  return *number;
}

bool IsNumeric(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return ParseNumber(*text).has_value();
  return !IsNull(value) && !std::holds_alternative<Bytes>(value) && !std::holds_alternative<Date>(value) &&
         !std::holds_alternative<std::shared_ptr<Object>>(value);
}

double ToDouble(const Value& value) {
  struct Reader {
    double operator()(const Empty&) const { return 0; }
    double operator()(const Null&) const { throw InvalidUseOfNull(); }
    double operator()(bool truth) const { return truth ? -1 : 0; }
    double operator()(std::int32_t number) const { return number; }
    double operator()(std::int64_t number) const { return static_cast<double>(number); }
    double operator()(double number) const { return number; }
    double operator()(const Date& date) const {
      if (!std::isfinite(date.serial)) throw TypeMismatch();
      return date.serial;
    }
    double operator()(const std::string& text) const { return NumberOf(text); }
    double operator()(const Bytes&) const { throw TypeMismatch(); }
    double operator()(const std::shared_ptr<Object>&) const { throw MemberNotSupported(); }
  };
  return std::visit(Reader{}, value);
}

std::int32_t ToInt32(double number) { return RoundedTo<std::int32_t>(number); }
std::int16_t ToInt16(double number) { return RoundedTo<std::int16_t>(number); }
std::int32_t ToInt32(const Value& value) { return RoundedTo<std::int32_t>(ToDouble(value)); }
std::int16_t ToInt16(const Value& value) { return RoundedTo<std::int16_t>(ToDouble(value)); }
std::int16_t ToInt16(std::string_view text) { return RoundedTo<std::int16_t>(NumberOf(text)); }

bool ToBoolean(const Value& value) {
  if (IsNull(value)) return false;
  if (const auto* truth = std::get_if<bool>(&value)) return *truth;
  if (const auto* text = std::get_if<std::string>(&value)) {
    if (EqualsIgnoringAsciiCase(*text, "True")) return true;
    if (EqualsIgnoringAsciiCase(*text, "False")) return false;
  }
  return ToDouble(value) != 0;
}

}  // namespace kalvo
