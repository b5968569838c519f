#include "kalvo/control_column.h"

#include "datasrc/row_source.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "platform/append.h"
#include "platform/error.h"

namespace kalvo {

void KalvoControlColumn::Initialize(KalvoTableColumnsConstants Id, std::string_view Name, std::string_view value,
                                    std::string_view ValueDBField, bool Checked, std::string_view OnClick, bool Edit,
                                    KalvoTableFormatType FormatType) {
  id_ = Id;
  name_ = Name;
  value_ = value;
  valueField_ = ValueDBField;
  checked_ = Checked;
  onClick_ = OnClick;
  edit_ = Edit;
  formatType_ = FormatType;
}

std::string KalvoControlColumn::ConstructHTMLHeader(Context& pCtxt, Display& pDisplay) {
  return Built([&](std::string& out) { AppendHeader(out, pCtxt, pDisplay); });
}

std::string KalvoControlColumn::ConstructHTMLData(Context& pCtxt, Display& pDisplay, RowSource& pTableData) {
  return Built([&](std::string& out) { AppendData(out, pCtxt, pDisplay, pTableData); });
}

void KalvoControlColumn::AppendHeader(std::string& out, Context& context, Display& display) {
  if (!context.KalvoAdministrator()) return;
  display.AppendTableHeaderCell(out, name_, "", "");
  lastRecipient_.clear();
}

void KalvoControlColumn::AppendData(std::string& out, Context& context, Display& display, RowSource& row) {
  if (!context.KalvoAdministrator()) return;
  std::string content;
  switch (formatType_) {
    case FORMATTYPE_CHECKBOX: AppendBox(content, display, row); break;
    case FORMATTYPE_QVCHECKBOX: AppendBoxOfRecipient(content, display, row); break;
    default: content = row.GetField(valueField_); break;
  }
  display.AppendCell(out, content, {.align = "center"});
}

void KalvoControlColumn::AppendBox(std::string& out, const Display& display, RowSource& row) const {
  const std::string value(row.GetIdentifier(valueField_).value_or("&nbsp;"));
  display.AppendFormCheckboxInput(out, name_, value, checked_, onClick_, edit_);
}

void KalvoControlColumn::AppendBoxOfRecipient(std::string& out, const Display& display, RowSource& row) {
  AppendBox(out, display, row);
  const std::string_view recipient = row.GetField("RecipientName");
  if (recipient == lastRecipient_) {
    out = "&nbsp;";
  } else {
    lastRecipient_ = recipient;
  }
}

void KalvoControlColumn::AppendTotal(std::string&, Context&, Display&, RowSource&, bool&) {
  throw MemberNotSupported();
}

}  // namespace kalvo
