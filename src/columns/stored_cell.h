#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "columns/bound_column.h"
#include "columns/column_facts.h"
#include "columns/link_rules.h"
#include "display/page_text.h"

namespace kalvo {

class Display;
class RowSource;

// A stored value as a field: it answers what its text would.
class FieldValue {
 public:
  FieldValue(const StoredValue& value, const Locale& locale) : value_(value), locale_(locale) {}

  bool IsEmpty() const;
  bool Is(std::string_view text) const;
  bool IsWord(std::string_view word) const;
  std::optional<double> Number() const;
  double RequiredNumber() const;

  // Its text; "" for an invalid date. Valid until `scratch` changes.
  std::string_view Text(std::string& scratch) const;
  const StoredValue& Stored() const { return value_; }

 private:
  const StoredValue& value_;
  const Locale& locale_;
};

// A column of the catalogue over stored rows. Its cells are, to the byte, those that are asked for by name.
class StoredCell final : public BoundColumn {
 public:
  // Null where the rows lack a field that the column may read, and for a format or a link that needs the page.
  static std::unique_ptr<BoundColumn> Bind(std::shared_ptr<const ColumnFacts> column, const Display& display,
                                           RowSource& rows);

  bool AppendCell(PageText& out, const StoredValue* row) override;

  // ---- as the rules see it ------------------------------------------------------------------------------

  const ColumnFacts& Column() const { return *column_; }
  FieldValue Read() { return Value(); }
  FieldValue Value() const { return At(ownField_); }
  FieldValue Field(RowField field) const { return At(fields_[static_cast<std::size_t>(field)]); }

  void Put(std::string_view text) { out_->Put(text); }
  void PutHtml();
  void PutNumber();
  void PutNumericValue();
  void PutDateTime(std::string_view defaultText);
  void PutDateTimeFloat();
  void PutFragment() {}

  KalvoTableHyperlinkType link = HYPERLINK_NONE;
  bool alertedResource = false;

 private:
  StoredCell(std::shared_ptr<const ColumnFacts> column, const Display& display);

  bool FindFields(RowSource& rows);
  bool Find(RowSource& rows, RowField field);
  bool FindLinkFields(RowSource& rows, KalvoTableHyperlinkType type);
  bool FindParameter(RowSource& rows, const links::LinkSource& source);
  bool MakeConstants();
  bool MayLink() const;
  FieldValue At(std::int32_t field) const;
  void AppendPlain(PageText& out);
  void AppendLinked(PageText& out);
  void PutUrl(PageText& out, const links::LinkRule& rule);
  FieldValue ParameterOf(const links::LinkSource& source) const;

  const std::shared_ptr<const ColumnFacts> column_;
  const Display& display_;
  const Locale& locale_;
  std::int32_t ownField_ = 0;
  std::array<std::int32_t, kRowFieldCount> fields_{};
  RowConstant start_, greyStart_;  // the cell's tag, as it is and for a server that has disappeared
  bool mayLink_;

  const StoredValue* row_ = nullptr;
  PageText* out_ = nullptr;
  PageText linked_;  // what a cell that may be a link shows
  std::string scratch_;
};

}  // namespace kalvo
