#include "adapters/sql/block_store.h"

#include <gtest/gtest.h>

#include <limits>

#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace sql;

std::string TextOf(const BlockStore& store, int field, int row) {
  std::string scratch = "left over";
  return std::string(store.Text(field, row, scratch));
}

TEST(BlockStore, GivesEveryTypeItsText) {
  BlockStore store(1, kEnglishUnitedStates);
  const std::uint8_t bytes[] = {'a', 0, 'b'};
  store.AddNull();
  store.AddBoolean(true);
  store.AddBoolean(false);
  store.AddInteger(std::numeric_limits<std::int64_t>::min());
  store.AddDouble(0.1);
  store.AddDouble(1e20);
  store.AddDouble(15.0);
  store.AddDate(*MakeDate(1999, 1, 2, 15, 4, 5));
  store.AddDate(*MakeDate(1999, 1, 2));
  store.AddText("text");
  store.AddText("");
  store.AddBytes(bytes);
  const std::vector<std::string> expected = {"",         "True",  "False", "-9223372036854775808",
                                             "0.1",      "1E+20", "15",    "1/2/1999 3:04:05 PM",
                                             "1/2/1999", "text",  "",      std::string("a\0b", 3)};
  ASSERT_EQ(store.RowCount(), 12);
  for (int row = 0; row < 12; ++row) EXPECT_EQ(TextOf(store, 0, row), expected[row]) << row;
}

TEST(BlockStore, WritesDatesInItsLocale) {
  BlockStore store(1, *FindLocale("de-DE"));
  store.AddDate(*MakeDate(1999, 1, 2, 15, 4, 5));
  EXPECT_EQ(TextOf(store, 0, 0), "02.01.1999 15:04:05");
}

TEST(BlockStore, GivesTextWithoutACopy) {
  BlockStore store(1, kEnglishUnitedStates);
  store.AddText("text");
  std::string one, other;
  EXPECT_EQ(store.Text(0, 0, one).data(), store.Text(0, 0, other).data());
  EXPECT_TRUE(one.empty());
}

TEST(BlockStore, GivesTheValuesOfARowInTheirTypes) {
  BlockStore store(3, kEnglishUnitedStates);
  store.AddText("first");
  store.AddInteger(-7);
  store.AddNull();
  store.AddDate(Date{36162.5});
  store.AddDouble(0.25);
  store.AddBoolean(true);
  ASSERT_TRUE(store.HasValues());
  const StoredValue* first = store.Values(0);
  EXPECT_EQ(first[0].kind, StoredValue::Kind::Text);
  EXPECT_EQ(std::string_view(first[0].bytes, first[0].size), "first");
  EXPECT_EQ(first[1].kind, StoredValue::Kind::Integer);
  EXPECT_EQ(first[1].integer, -7);
  EXPECT_EQ(first[2].kind, StoredValue::Kind::Null);
  const StoredValue* second = store.Values(1);
  EXPECT_EQ(second[0].number, 36162.5);
  EXPECT_EQ(second[1].number, 0.25);
  EXPECT_EQ(second[2].integer, 1);
  EXPECT_THROW(store.Values(2), Error);
}

TEST(BlockStore, GivesBytesOfBinaryValuesAlone) {
  BlockStore store(4, kEnglishUnitedStates);
  const std::uint8_t bytes[] = {0, 255};
  store.AddBytes(bytes);
  store.AddNull();
  store.AddText("00FF");
  store.AddBytes({});
  const auto read = store.Binary(0, 0);
  ASSERT_TRUE(read.has_value());
  EXPECT_EQ(std::vector<std::uint8_t>(read->begin(), read->end()), (std::vector<std::uint8_t>{0, 255}));
  EXPECT_FALSE(store.Binary(1, 0).has_value());
  ASSERT_TRUE(store.Binary(3, 0).has_value());
  EXPECT_TRUE(store.Binary(3, 0)->empty());
  const Error error = ErrorOf([&] { store.Binary(2, 0); });
  EXPECT_EQ(error.Number(), 13);
}

TEST(BlockStore, KeepsManyRowsOfMixedTypesAndLengths) {
  BlockStore store(3, kEnglishUnitedStates);
  constexpr int kRows = 3000;
  for (int row = 0; row < kRows; ++row) {
    store.AddInteger(row);
    row % 2 ? store.AddText(std::string(static_cast<std::size_t>(row) * 17 % 40'000, 'x')) : store.AddDouble(row + 0.5);
    store.AddText(std::to_string(row));
  }
  ASSERT_EQ(store.RowCount(), kRows);
  for (int row = 0; row < kRows; ++row) {
    ASSERT_EQ(TextOf(store, 0, row), std::to_string(row));
    ASSERT_EQ(TextOf(store, 1, row),
              row % 2 ? std::string(static_cast<std::size_t>(row) * 17 % 40'000, 'x') : std::to_string(row) + ".5");
    ASSERT_EQ(TextOf(store, 2, row), std::to_string(row));
  }
}

TEST(BlockStore, CountsARowWhenItIsComplete) {
  BlockStore store(2, kEnglishUnitedStates);
  store.AddInteger(1);
  EXPECT_EQ(store.RowCount(), 0);
  store.AddInteger(2);
  EXPECT_EQ(store.RowCount(), 1);
  EXPECT_EQ(store.FieldCount(), 2);
}

TEST(BlockStore, FailsOutsideOfTheResult) {
  BlockStore store(1, kEnglishUnitedStates);
  store.AddInteger(1);
  for (const auto& [field, row] : {std::pair(0, 1), std::pair(1, 0), std::pair(-1, 0), std::pair(0, -1)}) {
    const Error error = ErrorOf([&] { TextOf(store, field, row); });
    EXPECT_EQ(error.Number(), 9);
  }
}

// How many values of so many bytes a store takes before it is full.
int Taken(std::size_t memoryLimit, std::size_t size) {
  BlockStore store(1, kEnglishUnitedStates, memoryLimit);
  int taken = 0;
  try {
    for (; taken < 1'000'000; ++taken) store.AddText(std::string(size, 'x'));
  } catch (const Error&) {
  }
  return taken;
}

TEST(BlockStore, TakesHalfAGibibyteUnlessToldOtherwise) {
  EXPECT_EQ(BlockStore::kMemoryLimit, std::size_t{536'870'912});
}

// 256 rows of 16 bytes a cell are a block; texts lie in pieces of 64 KiB, large ones of 16 KiB and more for themselves.
TEST(BlockStore, CountsWhatItTakes) {
  EXPECT_EQ(Taken(1 << 20, 0), 65'536) << "cells alone";
  EXPECT_EQ(Taken((1 << 20) - 1, 0), 65'280) << "the last block has no room";
  EXPECT_EQ(Taken(1 << 20, 16'384), 63) << "63 texts of 16 KiB, and their block";
  EXPECT_EQ(Taken(1 << 20, 16'383), 15 * 4) << "15 pieces of four texts each, and their block";
  EXPECT_EQ(Taken(100'000, 20'000), 4);
}

TEST(BlockStore, RefusesAResultOfTooManyRows) {
  BlockStore store(1, kEnglishUnitedStates);
  for (int i = 0; i < 10'240'000; ++i) store.AddNull();
  EXPECT_EQ(store.RowCount(), 10'240'000);
  const Error error = ErrorOf([&] { store.AddNull(); });
  EXPECT_EQ(error.Number(), codes::kFailed);
  EXPECT_EQ(error.Description(), "[HY001] The result has more than 10240000 rows.");
}

TEST(BlockStore, RefusesAResultThatIsTooLarge) {
  BlockStore store(1, kEnglishUnitedStates, 1 << 20);
  const Error error = ErrorOf([&] {
    for (int i = 0; i < 100; ++i) store.AddText(std::string(20'000, 'x'));
  });
  EXPECT_EQ(error.Number(), codes::kFailed);
  EXPECT_EQ(error.Description(), "[HY001] The result takes more than 1 MiB of memory.");
}

}  // namespace
}  // namespace kalvo::test
