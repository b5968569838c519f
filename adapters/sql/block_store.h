#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/database.h"
#include "kalvo/platform/locale.h"
#include "kalvo/platform/value.h"

namespace kalvo::sql {

// Keeps texts of any length in large pieces of memory; they stay where they are until the arena goes.
class TextArena {
 public:
  // A copy of the bytes. Large texts get a piece of their own.
  const char* Keep(std::string_view bytes);

  std::size_t MemoryUse() const { return memoryUse_; }

 private:
  std::vector<std::unique_ptr<char[]>> pieces_;
  char* free_ = nullptr;  // the unused end of the piece in use
  std::size_t left_ = 0;
  std::size_t memoryUse_ = 0;
};

// A whole result, filled cell by cell, row after row, each cell in its own type: some databases change the type of
// a column from row to row. Cells lie in blocks and texts in an arena, so a cell costs no allocation.
class BlockStore final : public Rows {
 public:
  static constexpr std::size_t kMemoryLimit = std::size_t{512} << 20;

  static constexpr std::int32_t kMostRows = 10'240'000;  // whole blocks

  // `fieldCount` is at least 1. A result that takes more memory than the limit, or has more rows than `kMostRows`, is
  // refused with 0x80004005.
  BlockStore(std::int32_t fieldCount, const Locale& locale, std::size_t memoryLimit = kMemoryLimit);

  // The next cell: that of the next field, or of the first field of a new row.
  void AddNull();
  void AddBoolean(bool truth);
  void AddInteger(std::int64_t number);
  void AddDouble(double number);
  void AddDate(Date date);
  void AddText(std::string_view text);
  void AddBytes(std::span<const std::uint8_t> bytes);

  std::int32_t RowCount() const override { return rowCount_; }  // complete rows
  std::int32_t FieldCount() const override { return fieldCount_; }

  // Both fail with 9 outside of the result.
  std::string_view Text(std::int32_t field, std::int32_t row, std::string& scratch) const override;
  std::optional<std::span<const std::uint8_t>> Binary(std::int32_t field, std::int32_t row) const override;

  bool HasValues() const override { return true; }
  const StoredValue* Values(std::int32_t row) const override { return &At(0, row); }

 private:
  using Cell = StoredValue;
  using Kind = StoredValue::Kind;

  Cell& NextCell(Kind kind);
  void AddKept(Kind kind, std::string_view bytes);
  void CheckRows() const;
  void CheckMemory() const;
  const Cell& At(std::int32_t field, std::int32_t row) const;

  const Locale& locale_;
  const std::int32_t fieldCount_;
  const std::size_t memoryLimit_;
  std::vector<std::unique_ptr<Cell[]>> blocks_;  // a fixed number of rows each
  TextArena arena_;
  std::int32_t rowCount_ = 0;
  std::int32_t nextField_ = 0;
};

}  // namespace kalvo::sql
