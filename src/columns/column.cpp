#include "kalvo/column.h"

#include "columns/row_cell.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/owned.h"
#include "kalvo/row_source.h"

namespace kalvo {

namespace {

std::string SpanText(std::int16_t count) {
  return Built([&](std::string& out) {
    if (count > 1) Append(out, count);
  });
}

}  // namespace

KalvoColumn::KalvoColumn(ColumnDefinition definition) { Define(std::move(definition)); }

void KalvoColumn::Initialize(KalvoTableColumnsConstants Id, std::string_view Name, std::string_view DatabaseField,
                             KalvoTableHyperlinkType HyperLinkType, std::string_view PieChartLink,
                             std::string_view LineGraphLink, ColumnTotalState inTotalState, bool SortColumn,
                             KalvoTableFormatType FormatType, std::int32_t DataScale, std::string_view Units,
                             std::int16_t Rows, std::int16_t Columns, std::string_view Align, bool NoWrap,
                             std::string_view DefaultValue) {
  Define({Id, std::string(Name), std::string(DatabaseField), HyperLinkType, std::string(PieChartLink),
          std::string(LineGraphLink), inTotalState, SortColumn, FormatType, DataScale, std::string(Units), Rows,
          Columns, std::string(Align), NoWrap, std::string(DefaultValue)});
}

void KalvoColumn::Define(ColumnDefinition definition) {
  std::string rowSpan = SpanText(definition.rows);
  std::string columnSpan = SpanText(definition.columns);
  facts_ = std::make_shared<const ColumnFacts>(
      ColumnFacts{std::move(definition), std::move(rowSpan), std::move(columnSpan)});
}

bool KalvoColumn::DropsOut(const Context& context) const {
  return context.GetTopN() == TOPN_SINGLESERVER && facts_->id == COL_TOPN_SERVER;
}

// A cell in the column's layout.
void KalvoColumn::AppendLaidOut(std::string& out, const Display& display, std::string_view content,
                                std::string_view color) const {
  const auto facts = Held(facts_);
  display.AppendCell(out, content,
                     {.rowSpan = facts->rowSpan,
                      .columnSpan = facts->columnSpan,
                      .align = facts->align,
                      .noWrap = facts->noWrap,
                      .color = color});
}

std::string KalvoColumn::ConstructHTMLHeader(Context& pCtxt, Display& pDisplay) {
  return Built([&](std::string& out) { AppendHeader(out, pCtxt, pDisplay); });
}

std::string KalvoColumn::ConstructHTMLData(Context& pCtxt, Display& pDisplay, RowSource& pTableData) {
  return Built([&](std::string& out) { AppendData(out, pCtxt, pDisplay, pTableData); });
}

std::string KalvoColumn::ConstructHTMLTotal(Context& pCtxt, Display& pDisplay, RowSource& pTableData,
                                            bool& bFirstCell) {
  return Built([&](std::string& out) { AppendTotal(out, pCtxt, pDisplay, pTableData, bFirstCell); });
}

void KalvoColumn::AppendData(std::string& out, Context& context, Display& display, RowSource& row) {
  if (DropsOut(context)) return;
  Scratch value(value_), text(text_), url(url_);
  RowCell cell{facts_, context, display, row, *value, *text, *url, facts_->hyperLinkType};
  FormatCell(cell);
  LinkCell(cell);
  if (cell.url.empty()) return AppendLaidOut(out, display, cell.text, cell.color);
  // A link needs something to click on.
  const bool blank = TrimmedTabsAndSpaces(cell.text).empty();
  Scratch anchor(anchor_);
  display.AppendAnchor(*anchor, cell.url, "", "_top", blank ? "&nbsp;&nbsp;&nbsp;" : std::string_view(cell.text));
  AppendLaidOut(out, display, *anchor, cell.color);
}

}  // namespace kalvo
