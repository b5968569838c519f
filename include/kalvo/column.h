#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/enumerations.h"
#include "kalvo/table_column.h"

namespace kalvo {

// What a column shows and how: the sixteen values of its definition.
struct ColumnDefinition {
  KalvoTableColumnsConstants id = COL_FIRSTCOLUMN;
  std::string name;           // the header, encoded when it is shown
  std::string databaseField;  // the field of the row source, and the sort field of the header's links
  KalvoTableHyperlinkType hyperLinkType = HYPERLINK_NONE;
  std::string pieChartLink, lineGraphLink;
  ColumnTotalState totalState = column_KeepTotal;
  bool sortColumn = false;
  KalvoTableFormatType formatType = FORMATTYPE_FIRSTFORMAT;
  std::int32_t dataScale = 0;
  std::string units;
  std::int16_t rows = 0, columns = 0;  // spans of the data cell
  std::string align;
  bool noWrap = false;
  std::string defaultValue;
};

// A definition beside its spans as attribute texts, "" for none.
struct ColumnFacts : ColumnDefinition {
  std::string rowSpan, columnSpan;
};

// One column of a report. A definition only: it holds nothing of a row and is shared by every table that lists
// its id. The column catalogue makes them; a page script may make its own.
class KalvoColumn : public TableColumn {
 public:
  KalvoColumn() = default;
  explicit KalvoColumn(ColumnDefinition definition);

  void Initialize(KalvoTableColumnsConstants Id, std::string_view Name, std::string_view DatabaseField,
                  KalvoTableHyperlinkType HyperLinkType, std::string_view PieChartLink, std::string_view LineGraphLink,
                  ColumnTotalState inTotalState, bool SortColumn, KalvoTableFormatType FormatType,
                  std::int32_t DataScale, std::string_view Units, std::int16_t Rows, std::int16_t Columns,
                  std::string_view Align, bool NoWrap, std::string_view DefaultValue);

  // The header cell: the name and, where the column sorts, the links that sort by it from row 1 on.
  std::string ConstructHTMLHeader(Context& pCtxt, Display& pDisplay);

  // The data cell of the current row: its value formatted, linked and laid out. Fails with 13 for a value that
  // the format cannot read, and with whatever the page host or the row source fails with.
  std::string ConstructHTMLData(Context& pCtxt, Display& pDisplay, RowSource& pTableData);

  // The cell of the totals row. The first one that is produced carries the label TOTAL.
  std::string ConstructHTMLTotal(Context& pCtxt, Display& pDisplay, RowSource& pTableData, bool& bFirstCell);

  void AppendHeader(std::string& out, Context& context, Display& display) override;
  void AppendData(std::string& out, Context& context, Display& display, RowSource& row) override;
  void AppendTotal(std::string& out, Context& context, Display& display, RowSource& totals, bool& firstCell) override;

  const ColumnDefinition& Definition() const { return *facts_; }

 private:
  void Define(ColumnDefinition definition);
  // True for the server column of a Top-N table whose scope is one server: all its cells drop out.
  bool DropsOut(const Context& context) const;
  void AppendLaidOut(std::string& out, const Display& display, std::string_view content, std::string_view color) const;

  // Replaced as a whole: a script that is asked while a cell is made may initialise the column anew.
  std::shared_ptr<const ColumnFacts> facts_ = std::make_shared<const ColumnFacts>();
  std::string value_, text_, url_, anchor_;  // buffers of the cell that is being made, kept for the next
};

}  // namespace kalvo
