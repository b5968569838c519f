#include <gtest/gtest.h>

#include <limits>

#include "fakes/page_fixture.h"
#include "kalvo/display.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

class Thing : public Object {};

class Format : public testing::Test {
 protected:
  PageFixture page_;
  Display& display_ = *page_.display;
};

TEST_F(Format, NumbersAreGroupedAndRounded) {
  const struct {
    const char* why;
    Value number;
    bool decimal;
    const char* text;
  } kCases[] = {
      {"groups of three", std::int32_t{1234567}, false, "1,234,567"},
      {"two decimals", 1234.5, true, "1,234.50"},
      {"null is 0", Null{}, false, "0"},
      {"empty is 0", Empty{}, false, "0"},
      {"empty with decimals", Empty{}, true, "0.00"},
      {"negative", std::int32_t{-3}, true, "-3.00"},
      {"a leading zero", 0.5, true, "0.50"},
      {"text that is a number", " 1e3 "s, false, "1,000"},
      {"true is -1", true, false, "-1"},
      {"half away from zero", 2.5, false, "3"},
      {"negative half away from zero", -2.5, false, "-3"},
      {"half of a hundredth", 0.125, true, "0.13"},
      {"half of a hundredth as it is written", 1.005, true, "1.01"},
      {"just below half", 0.1249999, true, "0.12"},
      {"a carry through every digit", 999.995, true, "1,000.00"},
      {"a carry out of the first digit", 9.5, false, "10"},
      {"a half below one", 0.5, false, "1"},
      {"less than a half below one", 0.4999, false, "0"},
      {"far less than a half", 0.04, false, "0"},
      {"more than a negative half", -0.6, false, "-1"},
      {"a negative half with decimals", -0.5, true, "-0.50"},
      {"the smallest negative hundredth", -0.01, true, "-0.01"},
      {"nearly one", 0.98, true, "0.98"},
      {"more than half of a hundredth", 1.239, true, "1.24"},
      {"less than half of a hundredth", 1.231, true, "1.23"},
      {"a million and a hundredth", 1000000.01, true, "1,000,000.01"},
      {"half of the smallest hundredth", 0.005, true, "0.01"},
      {"no sign for what rounds to zero", -0.001, true, "0.00"},
      {"nor without decimals", -0.4, false, "0"},
      {"a negative zero", -0.0, true, "0.00"},
      {"digits behind the fifteenth are zeros", 12345678901234567890.0, false, "12,345,678,901,234,600,000"},
      {"six groups of them", 123456789012345678.0, false, "123,456,789,012,346,000"},
      {"the largest integers that are exact", 999999999999999.0, false, "999,999,999,999,999"},
      {"beyond the fast path", 1234567.125, true, "1,234,567.13"},
      {"64 bits", std::int64_t{5000000000}, false, "5,000,000,000"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    Value number = c.number;
    EXPECT_EQ(display_.Kalvo_FormatNumber(number, c.decimal), c.text);
  }
}

TEST_F(Format, ANullNumberBecomesZeroInTheCallersVariable) {
  Value null = Null{};
  display_.Kalvo_FormatNumber(null, false);
  EXPECT_EQ(null, Value(std::int32_t{0}));
  Value empty = Empty{};
  display_.Kalvo_FormatNumber(empty, false);
  EXPECT_TRUE(IsEmpty(empty));
}

TEST_F(Format, WhatIsNoNumberFails) {
  Value text = "abc"s;
  EXPECT_EQ(ErrorOf([&] { display_.Kalvo_FormatNumber(text, false); }).Number(), 13);
  EXPECT_EQ(ErrorOf([&] { display_.Kalvo_FormatNumericValue("abc"s, 1, ""s, ""s); }).Number(), 13);
  EXPECT_EQ(ErrorOf([&] { display_.Kalvo_FormatNumericValue(""s, 1, ""s, ""s); }).Number(), 13);
  Value infinite = std::numeric_limits<double>::infinity();
  EXPECT_EQ(ErrorOf([&] { display_.Kalvo_FormatNumber(infinite, false); }).Number(), 6);
}

TEST_F(Format, ABlankBetweenGroupsDoesNotBreak) {
  Display french(*FindLocale("fr-FR"));
  Value number = 1234567.5;
  EXPECT_EQ(french.Kalvo_FormatNumber(number, true), "1&nbsp;234&nbsp;567,50");
  Display german(*FindLocale("de-DE"));
  EXPECT_EQ(german.Kalvo_FormatNumber(number, true), "1.234.567,50");
}

TEST_F(Format, ValuesAreScaledAndNegativeOnesStandInBrackets) {
  const struct {
    const char* why;
    Value number;
    std::int32_t scale;
    const char *units, *fallback, *text;
  } kCases[] = {
      {"scaled", std::int32_t{1536}, 1024, " KB", "", "1.50 KB"},
      {"units without a blank", std::int32_t{1536}, 1024, "KB", "", "1.50KB"},
      {"the units stand outside of the brackets", std::int32_t{-2048}, 1024, " KB", "", "(2.00) KB"},
      {"zero", std::int32_t{0}, 1024, " KB", "", "0.00 KB"},
      {"zero is never divided", std::int32_t{0}, 0, " KB", "", "0.00 KB"},
      {"null is the default", Null{}, 1024, " KB", "n/a", "n/a"},
      {"empty is zero", Empty{}, 1024, " KB", "n/a", "0.00 KB"},
      {"brackets around what rounds to zero", -0.001, 1, "", "", "(0.00)"},
      {"a negative scale", std::int32_t{2}, -1, "x", "", "-2.00x"},
      {"text", "7200"s, 3600, " Hours", "", "2.00 Hours"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.Kalvo_FormatNumericValue(c.number, c.scale, std::string(c.units), std::string(c.fallback)),
              c.text);
  }
  EXPECT_EQ(ErrorOf([&] { display_.Kalvo_FormatNumericValue(std::int32_t{1}, 0, ""s, ""s); }).Number(), 11);
  EXPECT_EQ(ErrorOf([&] { display_.Kalvo_FormatNumericValue(-1.0, 0.0, ""s, ""s); }).Number(), 11);
  EXPECT_EQ(display_.Kalvo_FormatNumericValue(Null{}, 1, ""s, std::int32_t{7}), "7");
}

TEST_F(Format, DatesUpTo1950ShowTheDefault) {
  const struct {
    const char* why;
    Value date;
    const char* text;
  } kCases[] = {
      {"the first of 1950", "1/1/1950"s, "default"},
      {"the last of 1950", "12/31/1950 11:59:59 PM"s, "default"},
      {"the first second of 1951", "1/1/1951 12:00:01 AM"s, "1/1/1951 12:00:01 AM"},
      {"the first of 1951", "1/1/1951"s, "1/1/1951"},
      {"the second of 1951", "1951-01-02"s, "1/2/1951"},
      {"a date", Date{36162.5}, "1/2/1999 12:00:00 PM"},
      {"a date of the database", "1999-01-02 15:04:05"s, "1/2/1999 3:04:05 PM"},
      {"no date", "not a date"s, "default"},
      {"numeric text is none", "36892.5"s, "default"},
      {"nor is a number", 36892.5, "default"},
      {"null", Null{}, "default"},
      {"a time alone is before 1951", "3:04:05 PM"s, "default"},
      {"an object", std::shared_ptr<Object>(std::make_shared<Thing>()), "default"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.Kalvo_FormatDateTime(c.date, "default"s), c.text);
    EXPECT_EQ(display_.Kalvo_FormatDateTime(c.date, Null{}), c.text == "default"s ? "" : c.text);
  }
}

TEST_F(Format, TheLastSecondOf1950IsADateAllTheSame) {
  EXPECT_EQ(display_.Kalvo_FormatDateTimeFloat("12/31/1950 11:59:59 PM"s), "12/31/1950 11:59:59 PM");
}

TEST_F(Format, AFormattedDateLeavesNoErrorBehind) {
  const Value dates[] = {"1/2/1999"s, "never"s, std::shared_ptr<Object>(std::make_shared<Thing>())};
  for (const Value& date : dates) {
    LeaveError(Overflow());
    display_.Kalvo_FormatDateTime(date, "x"s);
    EXPECT_EQ(CurrentError().number, 0);
  }
}

TEST_F(Format, ADefaultThatIsNoTextIsNeededForWhatIsNoDateAlone) {
  const Value thing = std::shared_ptr<Object>(std::make_shared<Thing>());
  EXPECT_EQ(display_.Kalvo_FormatDateTime("1/2/1999"s, thing), "1/2/1999");
  EXPECT_EQ(display_.Kalvo_FormatDateTime("never"s, thing), "");
  EXPECT_EQ(CurrentError().number, 0);
}

TEST_F(Format, ADateBySerialLeavesItsOwnErrorAndNoOlder) {
  const struct {
    const char* why;
    Value date;
    std::int32_t error;
  } kCases[] = {
      {"null", Null{}, 0},
      {"a serial", 36162.5, 0},
      {"a serial as text", "36162.5"s, 0},
      {"a date", "1/2/1999"s, 0},
      {"text that is none", "abc"s, 13},
      {"no text", ""s, 13},
      {"a number that is none", 1e9, 13},
      {"a number that is none as text", "1e9"s, 13},
      {"an object", std::shared_ptr<Object>(std::make_shared<Thing>()), 438},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    LeaveError(Overflow());
    display_.Kalvo_FormatDateTimeFloat(c.date);
    EXPECT_EQ(CurrentError().number, c.error);
  }
}

TEST_F(Format, OneIsNotZero) {
  EXPECT_EQ(display_.Kalvo_FormatNumericValue(std::int32_t{1}, 1, ""s, ""s), "1.00");
  EXPECT_EQ(display_.Kalvo_FormatNumericValue(std::int32_t{1}, 2, ""s, ""s), "0.50");
  EXPECT_EQ(display_.Kalvo_FormatNumericValue("0"s, 0, ""s, ""s), "0.00");
  std::string out;
  display_.AppendNumericValue(out, "0", 0, "KB");
  EXPECT_EQ(out, "0.00KB");
}

TEST_F(Format, DatesBySerialHaveNoCutOff) {
  const struct {
    const char* why;
    Value date;
    const char* text;
  } kCases[] = {
      {"a serial", 36162.5, "1/2/1999 12:00:00 PM"},
      {"a serial as text", "36162.5"s, "1/2/1999 12:00:00 PM"},
      {"a serial of an old date", std::int32_t{366}, "12/31/1900"},
      {"a date", Date{2}, "1/1/1900"},
      {"the text of a date", "1/2/1950 3:04:05 PM"s, "1/2/1950 3:04:05 PM"},
      {"empty is midnight", Empty{}, "12:00:00 AM"},
      {"null", Null{}, ""},
      {"no text", ""s, ""},
      {"no date", "abc"s, ""},
      {"beyond the calendar", 1e9, ""},
      {"beyond the calendar as text", "1e9"s, ""},
      {"an object", std::shared_ptr<Object>(std::make_shared<Thing>()), ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.Kalvo_FormatDateTimeFloat(c.date), c.text);
  }
}

TEST_F(Format, TrimmingTakesBlanksAndTabsAlone) {
  const struct {
    const char *text, *trimmed;
  } kCases[] = {
      {"", ""},
      {" \t ", ""},
      {"\t x ", "x"},
      {"x", "x"},
      {" a \t b ", "a \t b"},
      {" \r\n ", "\r\n"},
      {" \xC2\xA0 ", "\xC2\xA0"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(display_.TrimTabsAndSpaces(c.text), c.trimmed);
  }
}

TEST_F(Format, AParameterIsAddedToAUrl) {
  const struct {
    const char* why;
    const char *url, *name, *value, *extended;
  } kCases[] = {
      {"the first", "a.asp", "Id", "x y", "a.asp?Id=x+y"},
      {"a further one", "a.asp?b=1", "Id", "7", "a.asp?b=1&Id=7"},
      {"a question mark anywhere counts", "a.asp#x?", "Id", "7", "a.asp#x?&Id=7"},
      {"no URL", "", "a", "1", "?a=1"},
      {"no name", "a.asp", "", "1", "a.asp"},
      {"no value", "a.asp", "x", "", "a.asp?x="},
      {"a name that is there already is added again", "a.asp?x=", "x", "1", "a.asp?x=&x=1"},
      {"names are not encoded, values are", "a.asp", "a b", "a.b-c_d&", "a.asp?a b=a%2Eb%2Dc%5Fd%26"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.AddParamToURL(c.url, c.name, c.value), c.extended);
  }
}

}  // namespace
}  // namespace kalvo::test
