#include "columns/stored_cell.h"

#include <charconv>
#include <cmath>

#include "columns/cell_rules.h"
#include "display/value_text.h"
#include "kalvo/display.h"
#include "kalvo/platform/error.h"
#include "kalvo/row_source.h"
#include "platform/date_text.h"

namespace kalvo {

namespace {

using Kind = StoredValue::Kind;

constexpr StoredValue kNothing{};
constexpr std::int32_t kAbsent = -1;

bool IsBlank(std::string_view text) {
  // Nearly every text shows with its first byte that it is not.
  if (!text.empty() && text.front() != ' ' && text.front() != '\t') return false;
  return TrimmedTabsAndSpaces(text).empty();
}

bool IsText(const StoredValue& value) { return value.kind == Kind::Text || value.kind == Kind::Binary; }

}  // namespace

// ---- a value as a field ---------------------------------------------------------------------------------

std::string_view FieldValue::Text(std::string& scratch) const {
  if (IsText(value_)) return {value_.bytes, value_.size};
  if (value_.kind == Kind::Date && !IsCalendarDate(Date{value_.number})) return {};
  return TextOf(value_, locale_, scratch);
}

bool FieldValue::IsEmpty() const {
  if (IsText(value_)) return value_.size == 0;
  return value_.kind == Kind::Null || (value_.kind == Kind::Date && !IsCalendarDate(Date{value_.number}));
}

bool FieldValue::Is(std::string_view text) const {
  if (IsText(value_)) return std::string_view(value_.bytes, value_.size) == text;
  std::string scratch;
  return Text(scratch) == text;
}

bool FieldValue::IsWord(std::string_view word) const {
  std::string scratch;
  return EqualsIgnoringCase(Text(scratch), word);
}

std::optional<double> FieldValue::Number() const {
  constexpr double kExact = 1e15;  // from here on, and behind the point, digits are dropped in a text
  if (value_.kind == Kind::Integer) return static_cast<double>(value_.integer);
  const bool exact = value_.kind == Kind::Double && std::abs(value_.number) < kExact &&
                     value_.number == static_cast<double>(static_cast<std::int64_t>(value_.number));
  if (exact) return value_.number;
  std::string scratch;
  return ParseNumber(Text(scratch));
}

double FieldValue::RequiredNumber() const {
  const auto number = Number();
  if (!number) throw TypeMismatch();
  return *number;
}

// ---- binding --------------------------------------------------------------------------------------------

StoredCell::StoredCell(std::shared_ptr<const ColumnFacts> column, const Display& display)
    : column_(std::move(column)), display_(display), locale_(display.PageLocale()), mayLink_(MayLink()) {}

std::unique_ptr<BoundColumn> StoredCell::Bind(std::shared_ptr<const ColumnFacts> column, const Display& display,
                                              RowSource& rows) {
  const KalvoTableFormatType format = column->formatType;
  if (format == FORMATTYPE_IMAGE || format == FORMATTYPE_MEMBERSHIPCHECKBOX) return nullptr;
  std::unique_ptr<StoredCell> cell(new StoredCell(std::move(column), display));
  if (!cell->FindFields(rows) || !cell->MakeConstants()) return nullptr;
  return cell;
}

bool StoredCell::MayLink() const {
  return column_->formatType == FORMATTYPE_ALERTEDRESOURCE || links::RuleOf(column_->hyperLinkType);
}

// All the fields that a cell may come to read are looked for: one that is missing is reported when it is read.
bool StoredCell::FindFields(RowSource& rows) {
  fields_.fill(kAbsent);
  const auto own = rows.StoredField(column_->databaseField);
  if (!own || !FindLinkFields(rows, column_->hyperLinkType)) return false;
  ownField_ = *own;
  if (column_->formatType == FORMATTYPE_BackupDateTime) return Find(rows, RowField::LastQuickScan);
  if (column_->formatType != FORMATTYPE_ALERTEDRESOURCE) return true;
  bool found = Find(rows, RowField::Attrib3) && Find(rows, RowField::AlertTypeCode);
  for (const links::AlertedResourceRow& resource : links::kAlertedResources) {
    found = found && FindLinkFields(rows, resource.link);
  }
  return found;
}

bool StoredCell::Find(RowSource& rows, RowField field) {
  const auto place = rows.StoredField(NameOf(field));
  fields_[static_cast<std::size_t>(field)] = place.value_or(kAbsent);
  return place.has_value();
}

bool StoredCell::FindLinkFields(RowSource& rows, KalvoTableHyperlinkType type) {
  const links::LinkRule* rule = links::RuleOf(type);
  if (!rule) return true;
  for (const links::LinkParameter& parameter : rule->parameters) {
    if (!FindParameter(rows, parameter.source)) return false;
  }
  if (rule->when == links::LinkWhen::ServerIsManaged && !Find(rows, RowField::ServerState)) return false;
  if (rule->when == links::LinkWhen::AlertIsOfAServer && !Find(rows, RowField::AlertTypeCode)) return false;
  return rule->missing != links::MissingServer::Grey || Find(rows, RowField::Missing);
}

bool StoredCell::FindParameter(RowSource& rows, const links::LinkSource& source) {
  const bool alerted = column_->formatType == FORMATTYPE_ALERTEDRESOURCE;
  switch (source.from) {
    case links::From::None:
    case links::From::Value: return true;
    case links::From::Field: return Find(rows, source.field);
    case links::From::AlertField: return Find(rows, alerted ? source.field : source.ranked);
    default: return false;  // what the page knows
  }
}

bool StoredCell::MakeConstants() {
  const auto tag = [&](std::string_view color) {
    return Built([&](std::string& out) {
      display_.AppendCellStart(out, {.rowSpan = column_->rowSpan,
                                     .columnSpan = column_->columnSpan,
                                     .align = column_->align,
                                     .noWrap = column_->noWrap,
                                     .color = color});
    });
  };
  const std::string start = tag("");
  const std::string grey = tag(rules::kMissingServerColor);
  start_ = RowConstant(start);
  greyStart_ = RowConstant(grey);
  return RowConstant::Fits(grey);
}

// ---- cells ----------------------------------------------------------------------------------------------

FieldValue StoredCell::At(std::int32_t field) const { return {row_ ? row_[field] : kNothing, locale_}; }

bool StoredCell::AppendCell(PageText& out, const StoredValue* row) {
  row_ = row;
  mayLink_ ? AppendLinked(out) : AppendPlain(out);
  out.Put("</td>");
  return true;
}

void StoredCell::AppendPlain(PageText& out) {
  out.Put(start_);
  const std::size_t start = out.Size();
  out_ = &out;
  rules::Format(*this);
  if (!IsBlank(out.From(start))) return;
  out.Shorten(start);
  out.Put("&nbsp;");
}

void StoredCell::AppendLinked(PageText& out) {
  linked_.Shorten(0);
  out_ = &linked_;
  link = column_->hyperLinkType;
  alertedResource = false;
  rules::Format(*this);
  const bool blank = IsBlank(linked_.View());
  const links::LinkRule* rule = rules::Link(*this);
  if (!rule) {
    out.Put(start_);
    return blank ? out.Put("&nbsp;") : out.Put(linked_.View());
  }
  out.Put(rules::IsMissing(*this, *rule) ? greyStart_ : start_);
  out.Put("<a href=\"");
  PutUrl(out, *rule);
  out.Put("\" target=\"_top\">");
  out.Put(blank ? rules::kEmptyLink : linked_.View());
  out.Put("</a>");
}

// ---- values ---------------------------------------------------------------------------------------------

void StoredCell::PutHtml() {
  const FieldValue value = Value();
  out_->PutHtml(value.Text(scratch_));
}

void StoredCell::PutNumber() {
  const double number = Value().RequiredNumber();
  if (char* end = WriteNumber(out_->Room(kMostNumberBytes), number, false, locale_)) return out_->EndAt(end);
  scratch_.clear();
  display_.AppendNumber(scratch_, number, false);
  out_->Put(scratch_);
}

void StoredCell::PutNumericValue() {
  const double number = Value().RequiredNumber();
  const double scale = column_->dataScale;
  if (number == 0 || (number > 0 && scale > 0)) {
    const double shown = number == 0 ? 0 : number / scale;
    if (char* end = WriteNumber(out_->Room(kMostNumberBytes), shown, true, locale_)) {
      out_->EndAt(end);
      return out_->Put(column_->units);
    }
  }
  scratch_.clear();
  display_.AppendNumericValue(scratch_, number, scale, column_->units);
  out_->Put(scratch_);
}

void StoredCell::PutDateTime(std::string_view defaultText) {
  const FieldValue value = Value();
  if (value.Stored().kind == Kind::Date) {
    const auto date = WriteDate(out_->Room(kMostDateBytes), Date{value.Stored().number}, locale_);
    const bool shown = date && date->year >= kFirstShownYear;
    return shown ? out_->EndAt(date->end) : out_->Put(defaultText);
  }
  std::string shown;
  display_.AppendDateTime(shown, value.Text(scratch_), defaultText);
  out_->Put(shown);
}

void StoredCell::PutDateTimeFloat() {
  std::string shown;
  display_.AppendDateTimeFloat(shown, Value().Text(scratch_));
  out_->Put(shown);
}

// ---- links ----------------------------------------------------------------------------------------------

FieldValue StoredCell::ParameterOf(const links::LinkSource& source) const {
  if (source.from == links::From::Value) return Value();
  return Field(source.from == links::From::AlertField && !alertedResource ? source.ranked : source.field);
}

// As it stands in the attribute: an encoded value needs no encoding there, and each "&" is written as it must be.
void StoredCell::PutUrl(PageText& out, const links::LinkRule& rule) {
  out.Put(rule.page);
  bool first = true;
  for (const links::LinkParameter& parameter : rule.parameters) {
    if (parameter.name.empty()) break;
    first ? out.Put("?") : out.Put("&amp;");
    first = false;
    out.Put(parameter.name);
    out.Put("=");
    out.PutUrl(ParameterOf(parameter.source).Text(scratch_));
  }
  if (rule.sort != links::LinkSort::ByModifiedDate) return;
  for (const auto& [name, value] : links::kModifiedDateSort) {
    out.Put("&amp;");
    out.Put(name);
    out.Put("=");
    out.PutUrl(value);
  }
}

}  // namespace kalvo
