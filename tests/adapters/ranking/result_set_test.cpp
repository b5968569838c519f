#include "adapters/ranking/result_set.h"

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace ranking;

using Texts = std::vector<std::string>;

std::shared_ptr<ResultSet> Filled(std::int16_t field, std::initializer_list<Value> values) {
  auto results = std::make_shared<ResultSet>();
  for (const Value& value : values) {
    results->AddRow();
    results->Set(field, value);
  }
  return results;
}

Texts Listed(ResultSet& results, std::int16_t field) {
  Texts texts;
  results.MoveFirst();
  for (std::int32_t i = 0; i < results.Count(); ++i, results.MoveNext()) texts.push_back(ToText(results.Value(field)));
  return texts;
}

TEST(ResultSet, HasNoRowsAtFirst) {
  ResultSet results;
  EXPECT_EQ(results.Count(), 0);
  results.MoveFirst();
  EXPECT_EQ(ToText(results.Value(kMailboxName)), "");
  results.MoveNext();
  EXPECT_EQ(ToText(results.Value(kMailboxName)), "");
}

TEST(ResultSet, ReadsRowsInTheOrderInWhichTheyWereAdded) {
  const auto results = Filled(kMailboxName, {std::string("Kim"), std::string("Alex")});
  EXPECT_EQ(Listed(*results, kMailboxName), (Texts{"Kim", "Alex"}));
}

TEST(ResultSet, StandsPastItsEndBehindTheLastRow) {
  const auto results = Filled(kMailboxName, {std::string("Kim")});
  results->MoveFirst();
  for (int i = 0; i < 3; ++i) {
    EXPECT_NO_THROW(results->MoveNext());
    EXPECT_EQ(ToText(results->Value(kMailboxName)), "");
  }
  results->MoveFirst();
  EXPECT_EQ(ToText(results->Value(kMailboxName)), "Kim");
}

TEST(ResultSet, AnswersNothingForANumberThatItDoesNotHold) {
  const auto results = Filled(kMailboxName, {std::string("Kim")});
  for (const std::int16_t column : {-32768, -1, 0, 5, 6, 9, 19, 32767}) {
    EXPECT_EQ(ToText(results->Value(column)), "") << column;
  }
}

TEST(ResultSet, TotalsAreTheSumsOfCountsSpaceAndSizes) {
  ResultSet results;
  for (const std::int64_t number : {std::int64_t{5'000'000'000}, std::int64_t{2'000'000'001}}) {
    results.AddRow();
    for (const Field field : {kMessages, kSpace, kMessageSize, kAverageSize}) results.Set(field, number);
    results.Set(kMailboxName, std::string("Kim"));
    results.Set(kModified, 36161.5);
  }
  results.MoveTotals();
  for (const Field field : {kMessages, kSpace, kMessageSize}) EXPECT_EQ(ToText(results.Value(field)), "7000000001");
  for (const Field field : {kAverageSize, kMailboxName, kModified}) EXPECT_EQ(ToText(results.Value(field)), "");
  results.MoveFirst();
  EXPECT_EQ(ToText(results.Value(kMailboxName)), "Kim");
}

TEST(ResultSet, TotalsOfFieldsThatNoRowHasAreEmpty) {
  const auto results = Filled(kMessages, {Value(std::int64_t{3}), Value(Empty{})});
  results->MoveTotals();
  EXPECT_EQ(ToText(results->Value(kMessages)), "3");
  EXPECT_EQ(ToText(results->Value(kMessageSize)), "");
}

TEST(ResultSet, TotalsThatOverflowFail) {
  const Value most = std::numeric_limits<std::int64_t>::max();
  const auto results = Filled(kSpace, {most, most});
  EXPECT_EQ(ErrorOf([&] { results->MoveTotals(); }).Number(), 6);
}

TEST(ResultSet, SortsByType) {
  const struct {
    const char* why;
    std::int16_t field;
    std::initializer_list<Value> values;
    Texts ascending;
  } kCases[] = {
      {"integers as numbers", kMessages, {std::int64_t{10}, std::int64_t{9}, std::int64_t{100}}, {"9", "10", "100"}},
      {"integers that a double cannot tell apart",
       kSpace,
       {std::int64_t{9007199254740993}, std::int64_t{9007199254740992}},
       {"9007199254740992", "9007199254740993"}},
      {"date serials as numbers", kModified, {36161.5, 9999.0, 36161.25}, {"9999", "36161.25", "36161.5"}},
      {"texts without regard to case",
       kMailboxName,
       {std::string("b"), std::string("C"), std::string("A")},
       {"A", "b", "C"}},
      {"a row without a date comes first", kModified, {36161.5, Empty{}, 2.0}, {"", "2", "36161.5"}},
      {"numbers before texts", kServer, {std::string("1"), std::int64_t{2}}, {"2", "1"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto results = Filled(c.field, c.values);
    results->Sort(c.field, 1);
    EXPECT_EQ(Listed(*results, c.field), c.ascending);
    results->Sort(c.field, 0);
    EXPECT_EQ(Listed(*results, c.field), Texts(c.ascending.rbegin(), c.ascending.rend()));
  }
}

TEST(ResultSet, KeepsTheOrderOfEqualRowsInBothDirections) {
  ResultSet results;
  for (const char* name : {"first", "second", "third"}) {
    results.AddRow();
    results.Set(kMailboxName, std::string(name));
    results.Set(kMessages, std::int64_t{7});
  }
  for (const std::int32_t ascending : {1, 0}) {
    results.Sort(kMessages, ascending);
    EXPECT_EQ(Listed(results, kMailboxName), (Texts{"first", "second", "third"}));
  }
}

TEST(ResultSet, StandsOnTheFirstRowWhenSorted) {
  const auto results = Filled(kMessages, {Value(std::int64_t{2}), Value(std::int64_t{1})});
  results->MoveTotals();
  results->Sort(kMessages, 1);
  EXPECT_EQ(ToText(results->Value(kMessages)), "1");
}

TEST(ResultSet, SortingByANumberThatIsNoFieldFails) {
  const auto results = Filled(kMessages, {Value(std::int64_t{2})});
  for (const std::int16_t column : {-1, 0, 19, 32767}) {
    EXPECT_EQ(ErrorOf([&] { results->Sort(column, 1); }).Number(), 9) << column;
  }
  EXPECT_EQ(ErrorOf([&] { results->Sort(5, 1); }).Number(), 0) << "a field that no row has leaves the order as it is";
}

TEST(ResultSet, CannotBeSetBeforeItsFirstRowOrOutsideItsFields) {
  ResultSet results;
  EXPECT_EQ(ErrorOf([&] { results.Set(kMessages, std::int64_t{1}); }).Number(), 91);
  results.AddRow();
  EXPECT_EQ(ErrorOf([&] { results.Set(19, std::int64_t{1}); }).Number(), 9);
  EXPECT_EQ(ErrorOf([&] { results.Set(0, std::int64_t{1}); }).Number(), 9);
}

TEST(ResultSet, IsEmptyAgainWhenCleared) {
  const auto results = Filled(kMessages, {Value(std::int64_t{2})});
  results->MoveTotals();
  results->Clear();
  EXPECT_EQ(results->Count(), 0);
  results->MoveTotals();
  EXPECT_EQ(ToText(results->Value(kMessages)), "");
}

}  // namespace
}  // namespace kalvo::test
