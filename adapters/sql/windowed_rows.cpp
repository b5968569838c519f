#include "adapters/sql/windowed_rows.h"

#include <algorithm>

#include "adapters/sql/diagnostics.h"

namespace kalvo::sql {

WindowedRows::WindowedRows(const Rows& start, const Window& window, std::int32_t rowCount, std::int32_t windowRows,
                           Read read)
    : rowCount_(rowCount),
      fieldCount_(start.FieldCount()),
      windowRows_(windowRows),
      read_(std::move(read)),
      rows_(&start),
      window_(window) {}

std::string_view WindowedRows::Text(std::int32_t field, std::int32_t row, std::string& scratch) const {
  const std::int32_t place = PlaceOf(row);
  return rows_->Text(field, place, scratch);
}

std::optional<std::span<const std::uint8_t>> WindowedRows::Binary(std::int32_t field, std::int32_t row) const {
  const std::int32_t place = PlaceOf(row);
  return rows_->Binary(field, place);
}

const StoredValue* WindowedRows::Values(std::int32_t row) const {
  const std::int32_t place = PlaceOf(row);
  return rows_->Values(place);
}

std::int32_t WindowedRows::PlaceOf(std::int32_t row) const {
  if (row < 0 || row >= rowCount_) throw SubscriptOutOfRange();
  if (row < window_.first || row >= window_.first + window_.count) Load(row);
  const std::int32_t place = row - window_.first;
  return window_.backward ? window_.count - 1 - place : place;
}

void WindowedRows::Load(std::int32_t row) const {
  if (lost_) throw *lost_;
  const bool walksOn = row == window_.first + window_.count;
  const std::int32_t length =
      walksOn ? std::clamp(2 * window_.count, windowRows_, kLongest * windowRows_) : windowRows_;
  const std::int32_t count = std::min(length, rowCount_ - row);
  try {
    try {
      Take({row, count, rowCount_ - row < row + count});
    } catch (const Error& error) {
      if (IsTimeout(error)) throw;
      Take({0, rowCount_, false});
    }
  } catch (const Error& error) {
    lost_ = error;
    throw;
  }
}

void WindowedRows::Take(const Window& window) const {
  auto records = read_(window);
  rows_ = &records->GetRows();
  records_ = std::move(records);
  window_ = window;
}

}  // namespace kalvo::sql
