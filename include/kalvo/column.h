#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/enumerations.h"
#include "kalvo/table_column.h"

namespace kalvo {

struct ColumnFacts;

// What a column shows and how.
struct ColumnDefinition {
  KalvoTableColumnsConstants id = COL_FIRSTCOLUMN;
  std::string name;           // the header, encoded when it is shown
  std::string databaseField;  // the field of the row source, and the sort field of the header's links
  KalvoTableHyperlinkType hyperLinkType = HYPERLINK_NONE;  // where a data cell leads
  ColumnTotalState totalState = column_KeepTotal;
  bool sortColumn = false;                                   // whether the header has links that sort
  KalvoTableFormatType formatType = FORMATTYPE_FIRSTFORMAT;  // how a data cell shows its value
  std::int32_t dataScale = 0;                                // what a `FORMATTYPE_NUMERICVALUE` is divided by
  std::string units;                                         // and what stands behind it: "KB"
  std::int16_t rows = 0, columns = 0;                        // spans of the data cell; they count above 1
  std::string align;                                         // "left", "right", "center"
  bool noWrap = false;
};

// One column of a report. A definition only: it holds nothing of a row and is shared by every table that lists
// its id. The column catalogue makes them; a page script may make its own.
class KalvoColumn : public TableColumn {
 public:
  KalvoColumn();
  explicit KalvoColumn(ColumnDefinition definition);

  // A column by facts that others share, too.
  explicit KalvoColumn(std::shared_ptr<const ColumnFacts> facts) : facts_(std::move(facts)) {}

  // Redefines the column. Each value is the one of that name in `ColumnDefinition`. `PieChartLink`,
  // `LineGraphLink` and `DefaultValue` are accepted and ignored: a header has no such links, and a missing value
  // shows nothing.
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
  std::unique_ptr<BoundColumn> Bind(Context& context, Display& display, RowSource& rows) override;

  const ColumnDefinition& Definition() const;

 private:
  // True for the server column of a Top-N table whose scope is one server: all its cells drop out.
  bool DropsOut(const Context& context) const;

  // Replaced as a whole: a script that is asked while a cell is made may initialise the column again.
  std::shared_ptr<const ColumnFacts> facts_;
};

}  // namespace kalvo
