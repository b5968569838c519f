#include "host/parts/system_clock.h"

#include <ctime>

#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

struct LocalMoment {
  std::tm calendar{};
  long nanoseconds = 0;
};

LocalMoment LocalNow() {
  std::timespec now{};
  std::timespec_get(&now, TIME_UTC);
  LocalMoment moment;
  localtime_r(&now.tv_sec, &moment.calendar);
  moment.nanoseconds = now.tv_nsec;
  return moment;
}

}  // namespace

Date SystemClock::Now() {
  const std::tm now = LocalNow().calendar;
  // A leap second has no serial of its own.
  const int second = now.tm_sec > 59 ? 59 : now.tm_sec;
  return MakeDate(now.tm_year + 1900, now.tm_mon + 1, now.tm_mday, now.tm_hour, now.tm_min, second).value_or(Date{});
}

float SystemClock::Timer() {
  const LocalMoment now = LocalNow();
  const int seconds = (now.calendar.tm_hour * 60 + now.calendar.tm_min) * 60 + now.calendar.tm_sec;
  return static_cast<float>(seconds + static_cast<double>(now.nanoseconds) / 1e9);
}

}  // namespace kalvo::host
