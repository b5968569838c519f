// The cell of the totals row.

#include "columns/asked_cell.h"
#include "kalvo/column.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/owned.h"
#include "kalvo/row_source.h"

namespace kalvo {

namespace {

void AppendSum(std::string& out, const std::shared_ptr<const ColumnFacts>& column, const Display& display,
               RowSource& totals) {
  const bool scaled = column->formatType == FORMATTYPE_NUMERICVALUE;
  if (!scaled && column->formatType != FORMATTYPE_NUMBER) return;
  const std::string_view sum = totals.GetField(Held(column)->databaseField);
  if (sum.empty() || sum == " ") return;
  if (scaled) {
    display.AppendNumericValue(out, sum, column->dataScale, column->units);
  } else {
    display.AppendNumber(out, sum, false);
  }
}

}  // namespace

// Kept: the label and the cells of columns without a total are plain, total cells keep their column's
// layout; pages show it so.
void KalvoColumn::AppendTotal(std::string& out, Context& context, Display& display, RowSource& totals,
                              bool& firstCell) {
  if (DropsOut(context)) return;
  if (firstCell) {
    display.AppendCell(out, "<strong>TOTAL</strong>");
    firstCell = false;
    return;
  }
  if (facts_->totalState == column_NoTotal) {
    display.AppendCell(out, "");
    return;
  }
  const std::string text = Built([&](std::string& made) {
    made = "<strong>";
    const auto start = made.size();
    AppendSum(made, facts_, display, totals);
    if (made.size() == start) made += "&nbsp;";
    made += "</strong>";
  });
  AppendLaidOut(out, facts_, display, text, "");
}

}  // namespace kalvo
