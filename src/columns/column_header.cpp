// The header cell.

#include "kalvo/column.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/owned.h"
#include "kalvo/table_constants.h"

namespace kalvo {

void KalvoColumn::AppendHeader(std::string& out, Context& context, Display& display) {
  if (DropsOut(context)) return;
  std::string up, down;
  if (facts_->sortColumn) {
    const TableConstants constants;
    const std::string pageSize = Built([&](std::string& text) { Append(text, context.TablePageSizeInformation()); });
    // A new sort starts at the first row again.
    context.AppendTableURL(up, Held(facts_)->databaseField, constants.gszAscendingSort(), "1", pageSize);
    context.AppendTableURL(down, Held(facts_)->databaseField, constants.gszDescendingSort(), "1", pageSize);
  }
  display.AppendTableHeaderCell(out, context.ServerHTMLEncode(Held(facts_)->name), up, down);
}

}  // namespace kalvo
