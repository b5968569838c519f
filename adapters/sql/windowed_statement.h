#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::sql {

// Where an engine puts rows without a value: before all others in ascending order, or where the statement says.
enum class NullOrder { First, Said };

// A statement whose rows can be read from any place in them. Every column of the result stands behind the order that
// the statement has, so that each row has one place, whichever part of the rows is asked for and from which end; and
// rows without a value come first in ascending order and last in descending order on every engine.
class WindowedStatement {
 public:
  // Nothing for a text that is not one SELECT with an order of its own at its end: it may be limited already, hold a
  // comment, or say itself where rows without a value go.
  static std::optional<WindowedStatement> Of(std::string_view statement, NullOrder nulls);

  // `columns` is the number of columns that the statement has.
  void BreakTies(std::int32_t columns) { columns_ = columns; }

  // All rows in their one order.
  std::string Whole() const;

  // So many rows from a place on, counted from 0. `Backward` counts from the end and gives the last row first.
  std::string Forward(std::int64_t first, std::int64_t count) const;
  std::string Backward(std::int64_t first, std::int64_t count) const;

  // One row with the number of rows.
  std::string Count() const;

  // The same with the columns of the totals behind it, where the totals are taken from exactly the statement's rows.
  std::optional<std::string> CountWithTotals(std::string_view totals) const;

 private:
  struct Term {
    std::string text;  // without its direction
    bool descending;
  };

  std::string Ordered(bool backward) const;
  void AppendTerm(std::string& out, std::string_view text, bool descending) const;

  NullOrder nulls_ = NullOrder::First;
  std::string body_;  // up to its order
  std::vector<Term> terms_;
  std::int32_t columns_ = 0;
};

}  // namespace kalvo::sql
