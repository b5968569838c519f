#include "database/sample/row_writer.h"
#include "kalvo/platform/append.h"

namespace kalvo::sample {

std::string MomentText(Moment moment) {
  // Days since 1970-01-01 as a date, counted in eras of 400 years that begin in March.
  const std::int64_t days = moment.seconds / 86400 + 719468, second = moment.seconds % 86400;
  const std::int64_t era = days / 146097, dayOfEra = days % 146097;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t march = (5 * dayOfYear + 2) / 153, day = dayOfYear - (153 * march + 2) / 5 + 1;
  const std::int64_t month = march < 10 ? march + 3 : march - 9, year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
  const auto two = [](std::int64_t number) {
    return std::string{static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
  };
  return Built([&](std::string& out) {
    Append(out, year, '-', two(month), '-', two(day), ' ', two(second / 3600), ':', two(second / 60 % 60), ':',
           two(second % 60));
  });
}

}  // namespace kalvo::sample
