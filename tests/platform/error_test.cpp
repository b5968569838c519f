#include "kalvo/platform/error.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kalvo::test {
namespace {

TEST(Error, TheProgramsOwnHaveTheirNumbersAndDescriptions) {
  const struct {
    Error error;
    std::int32_t number;
    const char* description;
  } kCases[] = {
      {Overflow(), 6, "Overflow"},
      {SubscriptOutOfRange(), 9, "Subscript out of range"},
      {DivisionByZero(), 11, "Division by zero"},
      {TypeMismatch(), 13, "Type mismatch"},
      {ObjectNotSet(), 91, "Object variable or With block variable not set"},
      {InvalidUseOfNull(), 94, "Invalid use of Null"},
      {ObjectRequired(), 424, "Object required"},
      {CannotCreateObject(), 429, "ActiveX component can't create object"},
      {MemberNotSupported(), 438, "Object doesn't support this property or method"},
      {KeyAlreadyAssociated(), 457, "This key is already associated with an element of this collection"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.description);
    EXPECT_EQ(c.error.Number(), c.number);
    EXPECT_EQ(c.error.Description(), c.description);
    EXPECT_STREQ(c.error.what(), c.description);
  }
}

TEST(Error, TheProgramsOwnAreKnownByTheirNumbers) {
  for (const std::int32_t own : {6, 9, 11, 13, 91, 94, 424, 429, 438, 457}) EXPECT_TRUE(IsRunTimeError(own)) << own;
  for (const std::int32_t other : {0, 5, 7, 70, 458, -1, codes::kFailed}) EXPECT_FALSE(IsRunTimeError(other)) << other;
}

TEST(Error, ShowsATextFromOutsideWithoutMarkupAndControls) {
  const struct {
    const char* why;
    std::string_view text;
    const char* shown;
  } kCases[] = {
      {"plain text", "no such table: T", "no such table: T"},
      {"markup", "<b>&\"", "\u2039b\u203A&\""},
      {"line breaks and controls are one blank", "a\r\n\t\x01 b", "a b"},
      {"blanks around go", "  a  ", "a"},
      {"nothing but blanks", " \n ", ""},
      {"letters beyond ASCII stay", "\u00E4\u20AC", "\u00E4\u20AC"},
      {"a byte of nothing", std::string_view("a\0b", 3), "a b"},
      {"nothing", "", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(InDescription(c.text), c.shown);
  }
}

TEST(Trap, BeginsClearAndLeavesTheLastError) {
  LeaveError(Overflow());
  Trap trap;
  EXPECT_EQ(CurrentError().number, 0);
  EXPECT_EQ(CurrentError().description, "");
  EXPECT_FALSE(trap([] { throw TypeMismatch(); }));
  EXPECT_TRUE(trap([] {}));
  EXPECT_EQ(CurrentError().number, 13) << "a succeeding step clears nothing";
  EXPECT_FALSE(trap([] { throw DivisionByZero(); }));
  EXPECT_EQ(CurrentError().number, 11);
  EXPECT_EQ(CurrentError().description, "Division by zero");
  ClearError();
  EXPECT_EQ(CurrentError().number, 0);
}

TEST(Trap, CatchesErrorsAlone) {
  Trap trap;
  EXPECT_THROW(trap([] { throw std::runtime_error("the page has ended"); }), std::runtime_error);
  EXPECT_EQ(CurrentError().number, 0);
}

}  // namespace
}  // namespace kalvo::test
