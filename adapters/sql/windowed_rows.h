#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"

namespace kalvo::sql {

inline constexpr std::int32_t kWindowRows = 1000;

// Rows of which a window is kept at a time: whoever asks for a row outside of it gets another window. Walking on from
// the end of a window makes the next one longer, up to a length that bounds the memory.
class WindowedRows final : public Rows {
 public:
  static constexpr std::int32_t kLongest = 16;  // in windows as they are at first

  // So many rows from a place on; read from the end where that is the shorter way, and then the last row first.
  struct Window {
    std::int32_t first, count;
    bool backward;
  };
  using Read = std::function<std::unique_ptr<RecordSet>(const Window&)>;

  // `start` holds the rows of a first window and outlives these; the next have `windowRows`. A window that cannot be
  // read is followed by one try to read all rows; when that fails too, its error is that of every later row outside of
  // what is there.
  WindowedRows(const Rows& start, const Window& window, std::int32_t rowCount, std::int32_t windowRows, Read read);

  std::int32_t RowCount() const override { return rowCount_; }
  std::int32_t FieldCount() const override { return fieldCount_; }
  void Fetch(std::int32_t row) const override { PlaceOf(row); }
  std::string_view Text(std::int32_t field, std::int32_t row, std::string& scratch) const override;
  std::optional<std::span<const std::uint8_t>> Binary(std::int32_t field, std::int32_t row) const override;
  bool HasValues() const override { return rows_->HasValues(); }
  const StoredValue* Values(std::int32_t row) const override;

 private:
  // The row's place in the window, which is read when it does not hold the row. Fails with 9 outside of the rows.
  std::int32_t PlaceOf(std::int32_t row) const;
  void Load(std::int32_t row) const;
  void Take(const Window& window) const;

  const std::int32_t rowCount_;
  const std::int32_t fieldCount_;
  const std::int32_t windowRows_;
  const Read read_;
  mutable std::unique_ptr<RecordSet> records_;  // of the window, but for the first
  mutable const Rows* rows_;
  mutable Window window_;
  mutable std::optional<Error> lost_;
};

}  // namespace kalvo::sql
