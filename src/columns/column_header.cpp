// The header cell.

#include "columns/column_facts.h"
#include "context/parameters.h"
#include "kalvo/column.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/owned.h"

namespace kalvo {

void KalvoColumn::AppendHeader(std::string& out, Context& context, Display& display) {
  if (DropsOut(context)) return;
  std::string up, down;
  if (facts_->sortColumn) {
    const std::string pageSize = Built([&](std::string& text) { Append(text, context.TablePageSizeInformation()); });
    // A new sort starts at the first row again.
    context.AppendTableURL(up, Held(facts_)->databaseField, kAscendingSort, "1", pageSize);
    context.AppendTableURL(down, Held(facts_)->databaseField, kDescendingSort, "1", pageSize);
  }
  display.AppendTableHeaderCell(out, context.ServerHTMLEncode(Held(facts_)->name), up, down);
}

}  // namespace kalvo
