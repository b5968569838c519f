#include "kalvo/control_column.h"

#include "columns/bound_column.h"
#include "display/page_text.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/text_tools.h"
#include "kalvo/row_source.h"

namespace kalvo {

namespace {

// A box for each row, all alike but for the identifier of the row.
class StoredBoxes final : public BoundColumn {
 public:
  StoredBoxes(const KalvoControlColumn::Facts& column, const Display& display, std::int32_t field) : field_(field) {
    display.AppendCellStart(start_, {.align = "center"});
    display.AppendCheckboxStart(start_, column.name);
    display.AppendCheckboxEnd(end_, column.checked, column.onClick);
  }

  bool AppendCell(PageText& out, const StoredValue* row) override {
    // Another value has a box of its own making, or an error to be told.
    if (!row || row[field_].kind != StoredValue::Kind::Binary || row[field_].size == 0) return false;
    const std::string_view identifier(row[field_].bytes, row[field_].size);
    out.Put(start_);
    out.Put(" value=\"");
    char* to = out.Room(2 * identifier.size());
    for (const char byte : identifier) {
      *to++ = HexDigit(static_cast<unsigned char>(byte) >> 4u, HexLetters::Capital);
      *to++ = HexDigit(static_cast<unsigned char>(byte) & 15u, HexLetters::Capital);
    }
    out.EndAt(to);
    out.Put("\"");
    out.Put(end_);
    out.Put("</td>");
    return true;
  }

 private:
  std::int32_t field_;
  std::string start_, end_;
};

}  // namespace

void KalvoControlColumn::Initialize(KalvoTableColumnsConstants /*Id*/, std::string_view Name,
                                    std::string_view /*Value*/, std::string_view ValueDBField, bool Checked,
                                    std::string_view OnClick, bool Edit, KalvoTableFormatType FormatType) {
  facts_ = std::make_shared<const Facts>(
      Facts{std::string(Name), std::string(ValueDBField), std::string(OnClick), Checked, Edit, FormatType});
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

std::unique_ptr<BoundColumn> KalvoControlColumn::Bind(Context& context, Display& display, RowSource& rows) {
  if (!context.KalvoAdministrator()) return std::make_unique<HiddenColumn>();
  if (facts_->formatType != FORMATTYPE_CHECKBOX || !facts_->edit) return nullptr;
  const auto field = rows.StoredField(facts_->valueField);
  return field ? std::make_unique<StoredBoxes>(*facts_, display, *field) : nullptr;
}

void KalvoControlColumn::AppendTotal(std::string&, Context&, Display&, RowSource&, bool&) {
  throw MemberNotSupported();
}

}  // namespace kalvo
