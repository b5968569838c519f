// Tables, rows and cells.

#include "display/images.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

// Kept: 1 is not true here; only the boolean and -1 are, for page scripts that count with either.
bool IsExactlyTrue(const Value& value) {
  if (const auto* truth = std::get_if<bool>(&value)) return *truth;
  const bool number = std::holds_alternative<std::int32_t>(value) || std::holds_alternative<std::int64_t>(value) ||
                      std::holds_alternative<double>(value);
  return number && ToDouble(value) == -1;
}

std::string SpanText(const Value& count, const Locale& locale) {
  if (IsNull(count) || !(ToDouble(count) > 1)) return {};
  return ToText(count, locale);
}

}  // namespace

// ---- the report's table ---------------------------------------------------------------------------------

std::string Display::DetailTableStart(std::string_view szBookmark) {
  return Built([&](std::string& out) { AppendDetailTableStart(out, szBookmark); });
}

void Display::AppendDetailTableStart(std::string& out, std::string_view szBookmark) {
  bookmark_ = szBookmark;
  Append(out, kCrLf, "<table border=\"1\" cellpadding=\"2\" cellspacing=\"0\">", kCrLf);
}

std::string Display::DetailTableEnd() const {
  return Built([&](std::string& out) { AppendDetailTableEnd(out); });
}

void Display::AppendDetailTableEnd(std::string& out) const { Append(out, kCrLf, "</table>", kCrLf); }

// ---- attributes -----------------------------------------------------------------------------------------

std::string Display::AddInputField(const Value& szInputField, const Value& szValue) const {
  return Built(
      [&](std::string& out) { AppendInputField(out, ToText(szInputField, locale_), ToText(szValue, locale_)); });
}

void Display::AppendInputField(std::string& out, std::string_view name, std::string_view value) const {
  Append(out, ' ', name, "=\"");
  Held(server_)->HTMLEncode(out, value);
  out += '"';
}

std::string Display::AddInputFieldIfNotNull(const Value& szInputField, const Value& szValue) const {
  return Built([&](std::string& out) {
    AppendInputFieldIfNotNull(out, ToText(szInputField, locale_), ToText(szValue, locale_));
  });
}

void Display::AppendInputFieldIfNotNull(std::string& out, std::string_view name, std::string_view value) const {
  if (!value.empty()) AppendInputField(out, name, value);
}

// ---- cells ----------------------------------------------------------------------------------------------

std::string Display::MultipleRowData(std::string_view szValue, const Value& bHeader, const Value& nRows,
                                     const Value& nColumns, const Value& szAlign, const Value& szVAlign,
                                     const Value& bNoWrap, const Value& szColor) const {
  const std::string rowSpan = SpanText(nRows, locale_);
  const std::string columnSpan = SpanText(nColumns, locale_);
  const std::string align = ToText(szAlign, locale_);
  const std::string vAlign = ToText(szVAlign, locale_);
  const std::string color = ToText(szColor, locale_);
  const CellLayout layout{ToBoolean(bHeader), rowSpan, columnSpan, align, vAlign, IsExactlyTrue(bNoWrap), color};
  return Built([&](std::string& out) { AppendCell(out, szValue, layout); });
}

std::string Display::SimpleRowData(std::string_view szValue) const {
  return Built([&](std::string& out) { AppendCell(out, szValue); });
}

std::string Display::EmptyRowData() const { return SimpleRowData(""); }

void Display::AppendCell(std::string& out, std::string_view content, const CellLayout& layout) const {
  AppendCellStart(out, layout);
  out += TrimmedTabsAndSpaces(content).empty() ? "&nbsp;" : content;
  AppendCellEnd(out, layout);
}

void Display::AppendCellStart(std::string& out, const CellLayout& layout) const {
  out += layout.header ? "<th" : "<td";
  AppendInputFieldIfNotNull(out, "rowspan", layout.rowSpan);
  AppendInputFieldIfNotNull(out, "colspan", layout.columnSpan);
  if (layout.noWrap) out += " nowrap";
  AppendInputFieldIfNotNull(out, "align", layout.align);
  AppendInputFieldIfNotNull(out, "valign", layout.vAlign);
  AppendInputFieldIfNotNull(out, "bgcolor", layout.color);
  out += '>';
}

void Display::AppendCellEnd(std::string& out, const CellLayout& layout) const {
  out += layout.header ? "</th>" : "</td>";
}

// ---- rows -----------------------------------------------------------------------------------------------

std::string Display::TableRowStart() const {
  return Built([&](std::string& out) { AppendTableRowStart(out); });
}

void Display::AppendTableRowStart(std::string& out) const { Append(out, "<tr>", kCrLf); }

std::string Display::TableRowEnd() const {
  return Built([&](std::string& out) { AppendTableRowEnd(out); });
}

void Display::AppendTableRowEnd(std::string& out) const { Append(out, "</tr>", kCrLf); }

// ---- header cells ---------------------------------------------------------------------------------------

std::string Display::TableHeaderCell(std::string_view szHeaderText, std::string_view szUpSortLink,
                                     std::string_view szDownSortLink, std::string_view /*szLineLink*/,
                                     std::string_view /*szHistoryLink*/) const {
  return Built([&](std::string& out) { AppendTableHeaderCell(out, szHeaderText, szUpSortLink, szDownSortLink); });
}

void Display::AppendTableHeaderCell(std::string& out, std::string_view szHeaderText, std::string_view szUpSortLink,
                                    std::string_view szDownSortLink) const {
  const CellLayout layout{.header = true, .align = "center", .vAlign = "bottom"};
  AppendCellStart(out, layout);
  Append(out, "<div align=\"center\"><center>", "<table border=\"0\" cellpadding=\"2\" cellspacing=\"0\">", kCrLf,
         "<tr>");
  AppendCell(out, szHeaderText, layout);
  AppendTableRowEnd(out);
  AppendSortLinkRow(out, szUpSortLink, szDownSortLink);
  Append(out, "</table></center></div>", kCrLf);
  AppendCellEnd(out, layout);
}

void Display::AppendSortLinkRow(std::string& out, std::string_view up, std::string_view down) const {
  std::string arrows;
  // Kept: the down link alone decides whether there are arrows, for page scripts that leave one link out.
  if (down.empty()) {
    AppendGraphicInput(arrows, images::kBlankSort, "");
  } else {
    AppendSortLink(arrows, up, images::kUp, "Sort Ascending");
    AppendSortLink(arrows, down, images::kDown, "Sort Descending");
  }
  out += "<tr>";
  AppendCell(out, arrows, {.align = "center", .noWrap = true});
  AppendTableRowEnd(out);
}

void Display::AppendSortLink(std::string& out, std::string_view link, const ImageView& image,
                             std::string_view alt) const {
  AppendAnchorStart(out, link, bookmark_, "");
  AppendGraphicInput(out, image, alt);
  out += "</a>";
}

}  // namespace kalvo
