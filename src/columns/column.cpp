#include "kalvo/column.h"

#include "columns/asked_cell.h"
#include "columns/column_facts.h"
#include "columns/stored_cell.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"

namespace kalvo {

namespace {

std::string SpanText(std::int16_t count) {
  return Built([&](std::string& out) {
    if (count > 1) Append(out, count);
  });
}

}  // namespace

ColumnFacts::ColumnFacts(ColumnDefinition definition)
    : ColumnDefinition(std::move(definition)), rowSpan(SpanText(rows)), columnSpan(SpanText(columns)) {}

KalvoColumn::KalvoColumn() : KalvoColumn(ColumnDefinition{}) {}

KalvoColumn::KalvoColumn(ColumnDefinition definition)
    : facts_(std::make_shared<const ColumnFacts>(std::move(definition))) {}

const ColumnDefinition& KalvoColumn::Definition() const { return *facts_; }

void KalvoColumn::Initialize(KalvoTableColumnsConstants Id, std::string_view Name, std::string_view DatabaseField,
                             KalvoTableHyperlinkType HyperLinkType, std::string_view /*PieChartLink*/,
                             std::string_view /*LineGraphLink*/, ColumnTotalState inTotalState, bool SortColumn,
                             KalvoTableFormatType FormatType, std::int32_t DataScale, std::string_view Units,
                             std::int16_t Rows, std::int16_t Columns, std::string_view Align, bool NoWrap,
                             std::string_view /*DefaultValue*/) {
  facts_ = std::make_shared<const ColumnFacts>(
      ColumnDefinition{Id, std::string(Name), std::string(DatabaseField), HyperLinkType, inTotalState, SortColumn,
                       FormatType, DataScale, std::string(Units), Rows, Columns, std::string(Align), NoWrap});
}

bool KalvoColumn::DropsOut(const Context& context) const {
  return context.GetTopN() == TOPN_SINGLESERVER && facts_->id == COL_TOPN_SERVER;
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
  if (!DropsOut(context)) AskedCell(facts_, context, display, row).AppendTo(out);
}

std::unique_ptr<BoundColumn> KalvoColumn::Bind(Context& context, Display& display, RowSource& rows) {
  if (DropsOut(context)) return std::make_unique<HiddenColumn>();
  return StoredCell::Bind(facts_, display, rows);
}

}  // namespace kalvo
