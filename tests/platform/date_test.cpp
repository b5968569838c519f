#include <gtest/gtest.h>

#include <optional>

#include "platform/append.h"
#include "platform/conversion.h"
#include "platform/error.h"

namespace kalvo {
namespace {

std::string Written(double serial, const char* locale = "en-US") {
  return Built([&](std::string& out) { AppendDate(out, Date{serial}, *FindLocale(locale)); });
}

TEST(Date, IsWrittenInTheGeneralDateFormat) {
  const struct {
    const char* why;
    double serial;
    const char* text;
  } kCases[] = {
      {"a date with a time", 36162.0 + 54245.0 / 86400, "1/2/1999 3:04:05 PM"},
      {"no time at midnight", 36162, "1/2/1999"},
      {"no date on day 0", 0.5, "12:00:00 PM"},
      {"midnight of day 0 shows its time", 0, "12:00:00 AM"},
      {"a minute past midnight", 36162 + 1.0 / 1440, "1/2/1999 12:01:00 AM"},
      {"a time that rounds to the next midnight", 36162 + 0.999999, "1/3/1999"},
      {"a day before day 0 counts its time forward", -1.25, "12/29/1899 6:00:00 AM"},
      {"its last half second is the next day", -1.999999, "12:00:00 AM"},
      {"the first day that can be written", -657434, "1/1/100"},
      {"the last day that can be written", 2958465, "12/31/9999"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Written(c.serial), c.text);
  }
}

TEST(Date, IsWrittenAsTheLocaleHasIt) {
  const struct {
    const char* locale;
    const char* text;
  } kCases[] = {
      {"en-US", "1/2/1999 3:04:05 PM"},
      {"en-GB", "02/01/1999 15:04:05"},
      {"de-DE", "02.01.1999 15:04:05"},
      {"fr-FR", "02/01/1999 15:04:05"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.locale);
    EXPECT_EQ(Written(36162.0 + 54245.0 / 86400, c.locale), c.text);
    EXPECT_EQ(ParseDate(c.text, *FindLocale(c.locale)), Date{36162.0 + 54245.0 / 86400});
  }
  EXPECT_EQ(FindLocale("xx-XX"), nullptr);
}

TEST(Date, ASerialOutsideOfTheCalendarCannotBeWritten) {
  for (const double serial : {-657435.0, 2958466.0, 1e300, -1e300}) {
    SCOPED_TRACE(serial);
    EXPECT_FALSE(IsCalendarDate(Date{serial}));
    EXPECT_THROW(Written(serial), Error);
    EXPECT_THROW(YearOf(Date{serial}), Error);
  }
  EXPECT_EQ(YearOf(Date{36162}), 1999);
}

TEST(Date, IsReadFromText) {
  const auto day = [](int year, int month, int date, int hour = 0, int minute = 0, int second = 0) {
    return MakeDate(year, month, date, hour, minute, second);
  };
  const struct {
    const char* why;
    const char* text;
    std::optional<Date> date;
  } kCases[] = {
      {"the locale's own form", "1/2/1999", day(1999, 1, 2)},
      {"with a time", "1/2/1999 3:04:05 PM", day(1999, 1, 2, 15, 4, 5)},
      {"without seconds", "1/2/1999 3:04 pm", day(1999, 1, 2, 15, 4)},
      {"twelve at night", "1/2/1999 12:00:01 AM", day(1999, 1, 2, 0, 0, 1)},
      {"twelve at noon", "1/2/1999 12:00:00 PM", day(1999, 1, 2, 12)},
      {"without a half of the day", "1/2/1999 15:04:05", day(1999, 1, 2, 15, 4, 5)},
      {"year, month and day", "1999-01-02", day(1999, 1, 2)},
      {"year, month, day and time", "1999-01-02 15:04:05", day(1999, 1, 2, 15, 4, 5)},
      {"with a T between", "1999-01-02T15:04:05", day(1999, 1, 2, 15, 4, 5)},
      {"fractions of a second are dropped", "1999-01-02 15:04:05.999", day(1999, 1, 2, 15, 4, 5)},
      {"two digits from 30", "1/2/30", day(1930, 1, 2)},
      {"two digits below 30", "1/2/29", day(2029, 1, 2)},
      {"a time alone", "3:04:05 PM", day(1899, 12, 30, 15, 4, 5)},
      {"blanks around", "  1/2/1999  ", day(1999, 1, 2)},
      {"a leap day", "2/29/2000", day(2000, 2, 29)},
      {"no leap day", "2/29/1900", std::nullopt},
      {"no such month", "13/1/1999", std::nullopt},
      {"no such hour", "1/2/1999 24:00:00", std::nullopt},
      {"no hour 13 in the afternoon", "1/2/1999 13:00 PM", std::nullopt},
      {"a number is no date", "36892.5", std::nullopt},
      {"nor is an integer", "36892", std::nullopt},
      {"words", "not a date", std::nullopt},
      {"nothing", "", std::nullopt},
      {"something behind it", "1/2/1999 x", std::nullopt},
      {"a year of 20 digits", "1/2/19991999199919991999", std::nullopt},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ParseDate(c.text, kEnglishUnitedStates), c.date);
  }
}

TEST(Date, OnlyWhatTheCalendarHasCanBeMade) {
  EXPECT_EQ(MakeDate(1899, 12, 30), Date{0});
  EXPECT_EQ(MakeDate(1899, 12, 29, 6), Date{-1.25});
  EXPECT_FALSE(MakeDate(99, 1, 1));
  EXPECT_FALSE(MakeDate(10000, 1, 1));
  EXPECT_FALSE(MakeDate(1999, 0, 1));
  EXPECT_FALSE(MakeDate(1999, 1, 0));
  EXPECT_FALSE(MakeDate(1999, 1, 1, 0, 60));
  EXPECT_FALSE(MakeDate(1999, 1, 1, 0, 0, -1));
}

}  // namespace
}  // namespace kalvo
