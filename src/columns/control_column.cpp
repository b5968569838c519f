#include "kalvo/control_column.h"

#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/row_source.h"

namespace kalvo {

void KalvoControlColumn::Initialize(KalvoTableColumnsConstants Id, std::string_view Name, std::string_view value,
                                    std::string_view ValueDBField, bool Checked, std::string_view OnClick, bool Edit,
                                    KalvoTableFormatType FormatType) {
  facts_ = std::make_shared<const Facts>(Facts{Id, std::string(Name), std::string(value), std::string(ValueDBField),
                                               std::string(OnClick), Checked, Edit, FormatType});
}

std::string KalvoControlColumn::ConstructHTMLHeader(Context& pCtxt, Display& pDisplay) {
  return Built([&](std::string& out) { AppendHeader(out, pCtxt, pDisplay); });
}

std::string KalvoControlColumn::ConstructHTMLData(Context& pCtxt, Display& pDisplay, RowSource& pTableData) {
  return Built([&](std::string& out) { AppendData(out, pCtxt, pDisplay, pTableData); });
}

void KalvoControlColumn::AppendHeader(std::string& out, Context& context, Display& display) {
  if (!context.KalvoAdministrator()) return;
  display.AppendTableHeaderCell(out, Held(facts_)->name, "", "");
  lastRecipient_.clear();
}

void KalvoControlColumn::AppendData(std::string& out, Context& context, Display& display, RowSource& row) {
  if (!context.KalvoAdministrator()) return;
  std::string content;
  switch (facts_->formatType) {
    case FORMATTYPE_CHECKBOX: AppendBox(content, display, BoxValue(row)); break;
    case FORMATTYPE_QVCHECKBOX: AppendBoxOfRecipient(content, display, row); break;
    default: content = row.GetField(Held(facts_)->valueField); break;
  }
  display.AppendCell(out, content, {.align = "center"});
}

std::string KalvoControlColumn::BoxValue(RowSource& row) const {
  return std::string(row.GetIdentifier(Held(facts_)->valueField).value_or("&nbsp;"));
}

void KalvoControlColumn::AppendBox(std::string& out, const Display& display, std::string_view value) const {
  const auto facts = Held(facts_);
  display.AppendFormCheckboxInput(out, facts->name, value, facts->checked, facts->onClick, facts->edit);
}

void KalvoControlColumn::AppendBoxOfRecipient(std::string& out, const Display& display, RowSource& row) {
  const std::string value = BoxValue(row);
  std::string recipient(row.GetField("RecipientName"));
  if (recipient == lastRecipient_) {
    out = "&nbsp;";
    return;
  }
  AppendBox(out, display, value);
  lastRecipient_ = std::move(recipient);
}

void KalvoControlColumn::AppendTotal(std::string&, Context&, Display&, RowSource&, bool&) {
  throw MemberNotSupported();
}

}  // namespace kalvo
