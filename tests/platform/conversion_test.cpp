#include "kalvo/platform/conversion.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "kalvo/platform/append.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

class Thing : public Object {};

TEST(Append, WritesTextCharactersAndIntegers) {
  std::string out = "x";
  Append(out, "ab", 'c', std::int16_t{-7}, std::numeric_limits<std::int64_t>::min(), std::uint8_t{65});
  EXPECT_EQ(out, "xabc-7-922337203685477580865");
}

TEST(Append, BuiltMakesATextOfItsOwn) {
  EXPECT_EQ(Built([](std::string& out) { Append(out, 1, kCrLf); }), "1\r\n");
}

TEST(Text, EveryKindOfValueHasAText) {
  const struct {
    const char* why;
    Value value;
    std::string text;
  } kCases[] = {
      {"empty", Empty{}, ""},
      {"null", Null{}, ""},
      {"true", true, "True"},
      {"false", false, "False"},
      {"the smallest integer", std::numeric_limits<std::int32_t>::min(), "-2147483648"},
      {"a large integer", std::int64_t{1} << 53, "9007199254740992"},
      {"a double that is whole", 3.0, "3"},
      {"a tenth", 0.1, "0.1"},
      {"up to 15 significant digits", 1.0 / 3, "0.333333333333333"},
      {"noise behind the fifteenth digit goes", 0.1 + 0.2, "0.3"},
      {"a large double", 1e20, "1E+20"},
      {"a date with a time", Date{36162.0 + 54245.0 / 86400}, "1/2/1999 3:04:05 PM"},
      {"text", "abc"s, "abc"},
      {"bytes are kept", Bytes{0x41, 0x00, 0xff}, "A\0\xff"s},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ToText(c.value), c.text);
  }
}

TEST(Text, AnObjectHasNone) {
  EXPECT_EQ(ErrorOf([] { ToText(std::shared_ptr<Object>(std::make_shared<Thing>())); }).Number(), 438);
}

TEST(Text, ASinglePrecisionNumberHasAsFewDigitsAsTellItApart) {
  const struct {
    const char* why;
    float number;
    const char* text;
  } kCases[] = {
      {"nothing", 0, "0"},
      {"the timer's smallest step in the afternoon", 0.0078125F, "0.0078125"},
      {"two tenths are not 0.200000003", 0.2F, "0.2"},
      {"across midnight", -86399.75F, "-86399.75"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Built([&](std::string& out) { AppendSingle(out, c.number); }), c.text);
  }
}

TEST(Number, IsReadFromText) {
  const std::string kManyDigits(400, '9');
  const struct {
    const char* why;
    const char* text;
    std::optional<double> number;
  } kCases[] = {
      {"digits", "12", 12},
      {"blanks on both sides", "  12  ", 12},
      {"a sign", "-12", -12},
      {"blanks around the sign", " - 12", -12},
      {"a plus", "+12", 12},
      {"a fraction", "2.5", 2.5},
      {"no digit before the point", ".5", .5},
      {"no digit behind the point", "5.", 5},
      {"an exponent", "1e2", 100},
      {"a capital exponent with a sign", "25E-1", 2.5},
      {"sixteen digits and more", "12345678901234567890", 12345678901234567890.0},
      {"too small to tell from nothing", "1e-400", 0},
      {"too large is infinite", "1e400", std::numeric_limits<double>::infinity()},
      {"400 digits", kManyDigits.c_str(), std::numeric_limits<double>::infinity()},
      {"nothing", "", std::nullopt},
      {"blanks alone", "   ", std::nullopt},
      {"a point alone", ".", std::nullopt},
      {"a sign alone", "-", std::nullopt},
      {"two signs", "--1", std::nullopt},
      {"two points", "1.2.3", std::nullopt},
      {"an exponent without digits", "1e", std::nullopt},
      {"an exponent with a sign alone", "1e+", std::nullopt},
      {"digits in groups", "1,234", std::nullopt},
      {"letters", "abc", std::nullopt},
      {"letters behind digits", "12abc", std::nullopt},
      {"a tab is no blank", "\t12", std::nullopt},
      {"hexadecimal", "0x10", std::nullopt},
      {"infinity by name", "inf", std::nullopt},
      {"not a number by name", "nan", std::nullopt},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ParseNumber(c.text), c.number);
    EXPECT_EQ(IsNumeric(std::string(c.text)), c.number.has_value());
  }
}

TEST(Number, IsNumericAsksForTheKindOfValue) {
  const struct {
    const char* why;
    Value value;
    bool numeric;
  } kCases[] = {
      {"empty counts as 0", Empty{}, true},
      {"null", Null{}, false},
      {"a boolean", true, true},
      {"an integer", std::int32_t{1}, true},
      {"a date", Date{1}, false},
      {"bytes", Bytes{1}, false},
      {"an object", std::shared_ptr<Object>(), false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(IsNumeric(c.value), c.numeric);
  }
}

TEST(Number, IsMadeOfAnyValueThatHasOne) {
  EXPECT_EQ(ToDouble(Empty{}), 0);
  EXPECT_EQ(ToDouble(true), -1);
  EXPECT_EQ(ToDouble(false), 0);
  EXPECT_EQ(ToDouble(Date{2.5}), 2.5);
  EXPECT_EQ(ToDouble(" 7 "s), 7);
  EXPECT_EQ(ErrorOf([] { ToDouble(Null{}); }).Number(), 94);
  EXPECT_EQ(ErrorOf([] { ToDouble(Date{std::numeric_limits<double>::quiet_NaN()}); }).Number(), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble(Date{std::numeric_limits<double>::infinity()}); }).Number(), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble("abc"s); }).Number(), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble(""s); }).Number(), 13);
  EXPECT_EQ(ErrorOf([] { ToDouble(Bytes{1}); }).Number(), 13);
}

TEST(Number, IntegersRoundHalvesToEvenAndOverflow) {
  const struct {
    const char* why;
    double number;
    std::int16_t rounded;
  } kCases[] = {
      {"a half above an even number", 2.5, 2}, {"a half above an odd number", 3.5, 4},
      {"a negative half", -2.5, -2},           {"less than a half", 2.4, 2},
      {"the largest", 32767.4, 32767},         {"the smallest", -32768.5, -32768},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ToInt16(c.number), c.rounded);
  }
  EXPECT_EQ(ErrorOf([] { ToInt16(32767.5); }).Number(), 6);
  EXPECT_EQ(ErrorOf([] { ToInt16(-32769.0); }).Number(), 6);
  EXPECT_EQ(ErrorOf([] { ToInt32(2147483648.0); }).Number(), 6);
  EXPECT_EQ(ErrorOf([] { ToInt32(std::numeric_limits<double>::quiet_NaN()); }).Number(), 6);
  EXPECT_EQ(ToInt32(Value(2147483647.0)), 2147483647);
  EXPECT_EQ(ToInt16(std::string_view("15")), 15);
  EXPECT_EQ(ToInt16(Value(" 15.5 "s)), 16);
  EXPECT_EQ(ErrorOf([] { ToInt16(Value(Null{})); }).Number(), 94);
  EXPECT_EQ(ErrorOf([] { ToInt16(std::string_view("Name")); }).Number(), 13);
}

TEST(Boolean, IsTrueForAnyNumberButZero) {
  const struct {
    const char* why;
    Value value;
    bool truth;
  } kCases[] = {
      {"true", true, true},
      {"-1", std::int32_t{-1}, true},
      {"1", std::int32_t{1}, true},
      {"a fraction", 0.5, true},
      {"zero", 0.0, false},
      {"empty", Empty{}, false},
      {"null", Null{}, false},
      {"True in any case", "tRUE"s, true},
      {"False in any case", "FALSE"s, false},
      {"numeric text", " -1 "s, true},
      {"a zero in text", "0.0"s, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ToBoolean(c.value), c.truth);
  }
  EXPECT_EQ(ErrorOf([] { ToBoolean("Yes"s); }).Number(), 13);
  EXPECT_EQ(ErrorOf([] { ToBoolean(""s); }).Number(), 13);
}

}  // namespace
}  // namespace kalvo::test
