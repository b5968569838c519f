#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

namespace kalvo::sample {

// A moment of local time: seconds since 1970-01-01 00:00:00.
struct Moment {
  std::int64_t seconds = 0;
  Moment Before(std::int64_t days, std::int64_t more = 0) const { return {seconds - days * 86400 - more}; }
  auto operator<=>(const Moment&) const = default;
};

using Identifier = std::array<std::uint8_t, 16>;

// One value of a row. Text is UTF-8 and is read before the call that takes it returns.
using Cell = std::variant<std::nullptr_t, std::int64_t, double, std::string_view, Moment, Identifier>;

// Where the rows of the sample go, a table at a time.
class RowWriter {
 public:
  virtual ~RowWriter() = default;

  // The rows that follow are of this table and have these columns. The names outlive the table's rows.
  virtual void Table(std::string_view name, std::span<const std::string_view> columns) = 0;

  // A row: one cell for each column.
  virtual void Row(std::span<const Cell> cells) = 0;

  void Table(std::string_view name, std::initializer_list<std::string_view> columns) {
    Table(name, std::span(columns.begin(), columns.size()));
  }

  // A row of plain values: integers of any width, text, moments, identifiers, nullptr.
  template <typename... Values>
  void Add(const Values&... values) {
    const Cell cells[] = {AsCell(values)...};
    Row(cells);
  }

 private:
  static Cell AsCell(const Cell& value) { return value; }
  template <typename T>
  static Cell AsCell(const T& value) {
    if constexpr (std::is_integral_v<T>)
      return static_cast<std::int64_t>(value);
    else if constexpr (std::is_convertible_v<T, std::string_view>)
      return std::string_view(value);
    else
      return Cell(value);
  }
};

// "2026-10-05 08:30:00"
std::string MomentText(Moment moment);

}  // namespace kalvo::sample
