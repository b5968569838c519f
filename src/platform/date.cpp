#include <algorithm>
#include <chrono>
#include <cmath>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "platform/date_text.h"

namespace kalvo {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = std::chrono::year{1899} / 12 / 30;
constexpr int kSecondsOfDay = 24 * 60 * 60;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;

// A serial taken apart. The fraction counts from midnight on both sides of day zero: -1.25 is a quarter past the
// start of the day before it.
struct Moment {
  year_month_day day;
  bool isDayZero = false;
  int seconds = 0;  // since midnight
};

// To the next whole number, halves away from zero. `number` is not negative.
int Rounded(double number) {
  const int whole = static_cast<int>(number);
  return number - whole >= 0.5 ? whole + 1 : whole;
}

std::optional<Moment> TakeApart(double serial) {
  if (!(std::abs(serial) < 4e6)) return std::nullopt;
  int whole = static_cast<int>(serial);
  int seconds = Rounded(std::abs(serial - whole) * kSecondsOfDay);
  if (seconds == kSecondsOfDay) {
    whole += 1;  // the time runs forward before day zero, too
    seconds = 0;
  }
  const year_month_day day{kDayZero + days{whole}};
  if (int{day.year()} < kFirstYear || int{day.year()} > kLastYear) return std::nullopt;
  return Moment{day, whole == 0, seconds};
}

char* WriteTwoDigits(char* to, unsigned number) {
  *to++ = static_cast<char>('0' + number / 10);
  *to++ = static_cast<char>('0' + number % 10);
  return to;
}

// A number below 100, with two digits in any case or where it needs them.
char* WritePart(char* to, unsigned number, bool padded) {
  if (padded || number >= 10) return WriteTwoDigits(to, number);
  *to++ = static_cast<char>('0' + number);
  return to;
}

char* WriteYear(char* to, unsigned year) {
  if (year >= 1000) return WriteTwoDigits(WriteTwoDigits(to, year / 100), year % 100);
  *to++ = static_cast<char>('0' + year / 100);
  return WriteTwoDigits(to, year % 100);
}

char* WriteDay(char* to, const year_month_day& day, const Locale& locale) {
  const unsigned month{day.month()}, dayOfMonth{day.day()};
  const bool monthFirst = locale.dateOrder == DateOrder::MonthDayYear;
  to = WritePart(to, monthFirst ? month : dayOfMonth, locale.padDate);
  *to++ = locale.dateSeparator;
  to = WritePart(to, monthFirst ? dayOfMonth : month, locale.padDate);
  *to++ = locale.dateSeparator;
  return WriteYear(to, static_cast<unsigned>(int{day.year()}));
}

char* WriteTime(char* to, unsigned seconds, const Locale& locale) {
  const unsigned hour = seconds / 3600;
  const bool twelve = locale.hours == HourCycle::Twelve;
  to = WritePart(to, twelve ? (hour % 12 == 0 ? 12 : hour % 12) : hour, !twelve);
  *to++ = ':';
  to = WriteTwoDigits(to, seconds / 60 % 60);
  *to++ = ':';
  to = WriteTwoDigits(to, seconds % 60);
  if (!twelve) return to;
  *to++ = ' ';
  *to++ = hour < 12 ? 'A' : 'P';
  *to++ = 'M';
  return to;
}

// Reads a date text from left to right.
class DateReader {
 public:
  DateReader(std::string_view text, const Locale& locale) : text_(text), locale_(locale) {}

  std::optional<Date> Read() {
    Skip(' ');
    const bool dated = ReadDay();
    if (failed_) return std::nullopt;
    if (dated && (text_.empty() || !(Skip('T') || Skip(' ')))) return Finished(dated);
    Skip(' ');
    if (!text_.empty() || !dated) ReadTime();
    return Finished(dated);
  }

 private:
  std::optional<Date> Finished(bool dated) {
    Skip(' ');
    if (failed_ || !text_.empty()) return std::nullopt;
    return dated ? MakeDate(year_, month_, day_, hour_, minute_, second_) : TimeAlone();
  }

  std::optional<Date> TimeAlone() const { return MakeDate(1899, 12, 30, hour_, minute_, second_); }

  // Three numbers with one separator between them. A text that goes on with ":" is a time.
  bool ReadDay() {
    const auto start = text_;
    const auto first = Number();
    if (!first || text_.empty() || text_[0] == ':' || text_[0] == ' ') {
      text_ = start;
      return false;
    }
    const char separator = text_[0];
    const bool iso = separator == '-' && firstDigits_ == 4;
    if (!iso && separator != locale_.dateSeparator && separator != '/') return Fail();
    Skip(separator);
    const auto second = Number();
    if (!second || !Skip(separator)) return Fail();
    const auto third = Number();
    if (!third) return Fail();
    Arrange(*first, *second, *third, iso);
    return true;
  }

  void Arrange(int first, int second, int third, bool iso) {
    if (iso) {
      year_ = first, month_ = second, day_ = third;
    } else if (locale_.dateOrder == DateOrder::MonthDayYear) {
      month_ = first, day_ = second, year_ = third;
    } else {
      day_ = first, month_ = second, year_ = third;
    }
    if (!iso && year_ < 100) year_ += year_ < 30 ? 2000 : 1900;
  }

  void ReadTime() {
    const auto hour = Number();
    if (!hour || !Skip(':')) return void(Fail());
    const auto minute = Number();
    if (!minute) return void(Fail());
    hour_ = *hour, minute_ = *minute;
    if (Skip(':')) {
      const auto second = Number();
      if (!second) return void(Fail());
      second_ = *second;
      if (Skip('.')) Number();
    }
    Skip(' ');
    if (text_.empty()) return;
    const auto half = text_.substr(0, 2);
    const bool morning = EqualsIgnoringAsciiCase(half, "AM");
    if ((!morning && !EqualsIgnoringAsciiCase(half, "PM")) || hour_ < 1 || hour_ > 12) return void(Fail());
    hour_ = hour_ % 12 + (morning ? 0 : 12);
    text_.remove_prefix(2);
  }

  std::optional<int> Number() {
    int number = 0;
    std::size_t digits = 0;
    while (digits < text_.size() && text_[digits] >= '0' && text_[digits] <= '9') {
      if (digits < 9) number = number * 10 + (text_[digits] - '0');
      ++digits;
    }
    text_.remove_prefix(digits);
    firstDigits_ = digits;
    if (digits == 0) return std::nullopt;
    return number;
  }

  bool Skip(char character) {
    const auto start = text_.size();
    while (!text_.empty() && text_[0] == character) {
      text_.remove_prefix(1);
      if (character != ' ') break;
    }
    return text_.size() != start;
  }

  bool Fail() {
    failed_ = true;
    return false;
  }

  std::string_view text_;
  const Locale& locale_;
  std::size_t firstDigits_ = 0;  // how many digits the last number had
  bool failed_ = false;
  int year_ = 0, month_ = 0, day_ = 0, hour_ = 0, minute_ = 0, second_ = 0;
};

}  // namespace

std::optional<DateText> WriteDate(char* to, Date date, const Locale& locale) {
  const auto moment = TakeApart(date.serial);
  if (!moment) return std::nullopt;
  const int year{moment->day.year()};
  if (!moment->isDayZero) to = WriteDay(to, moment->day, locale);
  if (moment->seconds == 0 && !moment->isDayZero) return DateText{to, year};
  if (!moment->isDayZero) *to++ = ' ';
  return DateText{WriteTime(to, static_cast<unsigned>(moment->seconds), locale), year};
}

void AppendDate(std::string& out, Date date, const Locale& locale) {
  char text[kMostDateBytes];
  const auto written = WriteDate(text, date, locale);
  if (!written) throw TypeMismatch();
  out.append(text, written->end);
}

std::optional<Date> MakeDate(int year, int month, int day, int hour, int minute, int second) {
  if (year < kFirstYear || year > kLastYear || month < 1 || day < 1) return std::nullopt;
  const year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                            std::chrono::day{static_cast<unsigned>(day)}};
  if (!date.ok() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) {
    return std::nullopt;
  }
  const auto whole = static_cast<double>((sys_days{date} - kDayZero).count());
  const double time = (hour * 3600 + minute * 60 + second) / static_cast<double>(kSecondsOfDay);
  return Date{whole < 0 ? whole - time : whole + time};
}

std::optional<Date> ParseDate(std::string_view text, const Locale& locale) { return DateReader(text, locale).Read(); }

bool IsCalendarDate(Date date) { return TakeApart(date.serial).has_value(); }

int YearOf(Date date) {
  const auto moment = TakeApart(date.serial);
  if (!moment) throw TypeMismatch();
  return int{moment->day.year()};
}

}  // namespace kalvo
