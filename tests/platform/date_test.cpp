#include <gtest/gtest.h>

#include <optional>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::test {
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
      {"half a second is a whole one", 0.5 / 86400, "12:00:01 AM"},
      {"a minute past midnight", 36162 + 1.0 / 1440, "1/2/1999 12:01:00 AM"},
      {"a time that rounds to the next midnight", 36162 + 0.999999, "1/3/1999"},
      {"a day before day 0 counts its time forward", -1.25, "12/29/1899 6:00:00 AM"},
      {"its last half second is the next day", -1.999999, "12:00:00 AM"},
      {"the first year of four digits", -328716, "1/1/1000"},
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
  const struct {
    const char* why;
    const char* text;
    std::optional<double> serial;
  } kCases[] = {
      {"the locale's own form", "1/2/1999", 36162},
      {"with a time", "1/2/1999 3:04:05 PM", 36162.62783564815},
      {"without seconds", "1/2/1999 3:04 pm", 36162.62777777778},
      {"twelve at night", "1/2/1999 12:00:01 AM", 36162.00001157408},
      {"twelve at noon", "1/2/1999 12:00:00 PM", 36162.5},
      {"one in the morning", "1/2/1999 1:00:00 AM", 36162.041666666664},
      {"the last second of a day", "1/2/1999 11:59:59 PM", 36162.99998842592},
      {"without a half of the day", "1/2/1999 15:04:05", 36162.62783564815},
      {"the last second without one", "1/2/1999 23:59:59", 36162.99998842592},
      {"blanks behind the half", "1/2/1999 3:04 PM  ", 36162.62777777778},
      {"no blank before the half", "1/2/1999 3:04PM", 36162.62777777778},
      {"year, month and day", "1999-01-02", 36162},
      {"year, month, day and time", "1999-01-02 15:04:05", 36162.62783564815},
      {"with a T between", "1999-01-02T15:04:05", 36162.62783564815},
      {"fractions of a second are dropped", "1999-01-02 15:04:05.999", 36162.62783564815},
      {"a point without a fraction", "1999-01-02 15:04:05.", 36162.62783564815},
      {"two digits from 30", "1/2/30", 10960},
      {"two digits below 30", "1/2/29", 47120},
      {"the largest of two digits", "1/2/99", 36162},
      {"three digits are a year", "1/2/100", -657433},
      {"a time alone", "3:04:05 PM", 0.6278356481481482},
      {"blanks around", "  1/2/1999  ", 36162},
      {"several blanks before the time", "1/2/1999   3:04:05 PM", 36162.62783564815},
      {"a leap day", "2/29/2000", 36585},
      {"the last day of all", "12/31/9999", 2958465},
      {"the first day of all", "1/1/100", -657434},
      {"nine digits of nothing and a day", "000000001/2/1999", 36162},
      {"no leap day", "2/29/1900", std::nullopt},
      {"no such month", "13/1/1999", std::nullopt},
      {"no month 0", "0/1/1999", std::nullopt},
      {"no day 0", "1/0/1999", std::nullopt},
      {"behind the last day", "1/1/10000", std::nullopt},
      {"no such hour", "1/2/1999 24:00:00", std::nullopt},
      {"no such minute", "1/2/1999 3:60:00", std::nullopt},
      {"no such second", "1/2/1999 3:04:60", std::nullopt},
      {"no hour 13 in the afternoon", "1/2/1999 13:00 PM", std::nullopt},
      {"no hour 0 in the morning", "1/2/1999 0:30 AM", std::nullopt},
      {"another half of the day", "1/2/1999 3:04 XM", std::nullopt},
      {"half of a half", "1/2/1999 3:04 P", std::nullopt},
      {"a number is no date", "36892.5", std::nullopt},
      {"nor is an integer", "36892", std::nullopt},
      {"one number and a separator", "1/", std::nullopt},
      {"two numbers", "1/2", std::nullopt},
      {"two numbers and a separator", "1/2/", std::nullopt},
      {"a number and a blank", "3 4", std::nullopt},
      {"a day, a month and a year", "1-2-1999", std::nullopt},
      {"something right behind a day", "1/2/1999x", std::nullopt},
      {"two separators", "1/2-1999", std::nullopt},
      {"another locale's separator", "1.2.1999", std::nullopt},
      {"an hour alone behind a day", "1/2/1999 3", std::nullopt},
      {"an hour without minutes", "1/2/1999 3:", std::nullopt},
      {"minutes without seconds, and a colon", "1/2/1999 3:04:", std::nullopt},
      {"an hour and a colon", "3:", std::nullopt},
      {"a T and nothing", "1999-01-02T", 36162},
      {"words", "not a date", std::nullopt},
      {"nothing", "", std::nullopt},
      {"a blank", "  ", std::nullopt},
      {"something behind it", "1/2/1999 x", std::nullopt},
      {"something behind a time", "1/2/1999 3:04:05 PM x", std::nullopt},
      {"a year of 20 digits", "1/2/19991999199919991999", std::nullopt},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto date = ParseDate(c.text, kEnglishUnitedStates);
    EXPECT_EQ(date.has_value(), c.serial.has_value());
    if (date && c.serial) {
      EXPECT_EQ(date->serial, *c.serial);
    }
  }
}

TEST(Date, IsReadInTheOrderOfTheLocale) {
  EXPECT_EQ(ParseDate("2.1.1999", *FindLocale("de-DE")), Date{36162});
  EXPECT_EQ(ParseDate("2/1/1999", *FindLocale("de-DE")), Date{36162}) << "a slash separates everywhere";
  EXPECT_EQ(ParseDate("1999-01-02", *FindLocale("de-DE")), Date{36162});
  EXPECT_EQ(ParseDate("2.1.1999", *FindLocale("en-GB")), std::nullopt);
}

TEST(Date, IsTheSameOnlyAtTheSameSerial) {
  EXPECT_EQ(Date{1.5}, Date{1.5});
  EXPECT_NE(Date{1.5}, Date{1});
}

TEST(Date, OnlyWhatTheCalendarHasCanBeMade) {
  const struct {
    const char* why;
    int year, month, day, hour, minute, second;
    std::optional<double> serial;
  } kCases[] = {
      {"day 0", 1899, 12, 30, 0, 0, 0, 0},
      {"before day 0 the time counts away from it", 1899, 12, 29, 6, 0, 0, -1.25},
      {"the first second of a day", 1999, 1, 2, 0, 0, 0, 36162},
      {"the last second of a day", 1999, 1, 1, 23, 59, 59, 36161.99998842592},
      {"the first day", 100, 1, 1, 0, 0, 0, -657434},
      {"the day before it", 99, 12, 31, 0, 0, 0, std::nullopt},
      {"the last day", 9999, 12, 31, 0, 0, 0, 2958465},
      {"the day behind it", 10000, 1, 1, 0, 0, 0, std::nullopt},
      {"month 0", 1999, 0, 1, 0, 0, 0, std::nullopt},
      {"month 13", 1999, 13, 1, 0, 0, 0, std::nullopt},
      {"a negative month", 1999, -1, 1, 0, 0, 0, std::nullopt},
      {"day 0 of a month", 1999, 1, 0, 0, 0, 0, std::nullopt},
      {"day 32", 1999, 1, 32, 0, 0, 0, std::nullopt},
      {"a negative day", 1999, 1, -1, 0, 0, 0, std::nullopt},
      {"hour 24", 1999, 1, 1, 24, 0, 0, std::nullopt},
      {"a negative hour", 1999, 1, 1, -1, 0, 0, std::nullopt},
      {"minute 60", 1999, 1, 1, 0, 60, 0, std::nullopt},
      {"a negative minute", 1999, 1, 1, 0, -1, 0, std::nullopt},
      {"second 60", 1999, 1, 1, 0, 0, 60, std::nullopt},
      {"a negative second", 1999, 1, 1, 0, 0, -1, std::nullopt},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto date = MakeDate(c.year, c.month, c.day, c.hour, c.minute, c.second);
    EXPECT_EQ(date.has_value(), c.serial.has_value());
    if (date && c.serial) {
      EXPECT_EQ(date->serial, *c.serial);
    }
  }
}

}  // namespace
}  // namespace kalvo::test
