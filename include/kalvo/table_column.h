#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kalvo/platform/value.h"

namespace kalvo {

class BoundColumn;
class Context;
class Display;
class RowSource;

// A column as the table renderer knows it: three operations that each append one cell, or nothing when the
// column must not appear. An operation that fails may leave a part behind; the caller drops it.
class TableColumn : public Object {
 public:
  virtual void AppendHeader(std::string& out, Context& context, Display& display) = 0;
  virtual void AppendData(std::string& out, Context& context, Display& display, RowSource& row) = 0;

  // `firstCell` is true until a column has written the row's label; that column sets it to false.
  virtual void AppendTotal(std::string& out, Context& context, Display& display, RowSource& totals,
                           bool& firstCell) = 0;

  // For one rendering whose rows lie stored and on which nobody looks: the column over those rows. Null for a column
  // that is asked for each of its data cells.
  virtual std::unique_ptr<BoundColumn> Bind(Context& context, Display& display, RowSource& rows);
};

// Answers the columns of a table by their ids.
class ColumnCatalogue : public Object {
 public:
  // The column of that id, null for an id that has none. Fails with 9 for an id outside of the catalogue.
  virtual std::shared_ptr<TableColumn> Column(std::int16_t id) = 0;

  // Whether somebody can tell how often it is asked, as a page's own catalogue can. One that sees no calls is asked
  // once for each column of a table.
  virtual bool SeesCalls() const { return true; }
};

}  // namespace kalvo
