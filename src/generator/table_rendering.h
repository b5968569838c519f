#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "columns/bound_column.h"
#include "display/page_text.h"
#include "generator/paging.h"
#include "kalvo/platform/error.h"
#include "kalvo/table.h"

namespace kalvo {

class ColumnCatalogue;
class Context;
class Display;
class Response;
class RowSource;
class TableColumn;

// One rendering of a table: everything that belongs to it and not to the table. A step that fails is skipped, and
// a value that it did not deliver keeps what it had.
class TableRendering {
 public:
  TableRendering(Table& table, Context& context, Response& response, Display& display, ColumnCatalogue& columns)
      : table_(table), context_(context), response_(response), display_(display), columns_(columns) {}

  void Render(std::string_view emptyMessage, std::string_view tableName);

 private:
  enum class Phase : std::uint8_t { Header, Data, Totals };

  void StartTable();
  bool Open();
  void WriteTitle(std::string_view tableName);
  void ChoosePage();
  void WriteEntries();
  void WriteWarning();
  void MoveToFirstRow();
  void WriteRows();
  bool WriteDataRows();
  bool MoveToTotals();
  std::int64_t FirstRow() const { return page_.first > 1 ? page_.first : 1; }
  void WriteRow(Phase phase);
  void WriteCells(Phase phase);
  void WriteCell(Phase phase, bool& firstCell);
  bool NobodyLooksOn() const;
  void BindColumns();
  bool WriteStoredRows();
  void WriteStoredCells(RowSource& source);

  void AppendNavigationRow(std::string& out);
  void AppendPagingLink(std::string& out, std::string_view image, std::int64_t first, std::int64_t size);
  void AppendPagingLinks(std::string& left, std::string& right);
  void AppendWideRow(std::string& out, std::string_view content, std::string_view align);
  void Write(std::string_view text);
  void Flush();
  template <typename Maker>
  void WriteMade(Maker&& maker);

  Table& table_;
  Context& context_;
  Response& response_;
  Display& display_;
  ColumnCatalogue& columns_;
  Trap trap_;
  std::shared_ptr<RowSource> source_;
  std::vector<std::int16_t> rowColumns_;  // of the row under way, as the table had them when it began
  std::shared_ptr<TableColumn> column_;   // of the cell under way; the one before it where the catalogue failed
  std::string cell_;                      // the piece of HTML under way
  Paging page_;

  // Where nobody looks on: the columns bound to the stored rows, and the text of rows that is not written yet.
  struct BoundCells {
    std::shared_ptr<TableColumn> column;
    std::unique_ptr<BoundColumn> cells;  // null where the column is asked
  };
  std::vector<BoundCells> bound_;
  std::optional<PageText> joined_;
  std::string navigationRow_;
};

}  // namespace kalvo
