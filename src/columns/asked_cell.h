#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "columns/column_facts.h"
#include "columns/link_rules.h"
#include "kalvo/platform/conversion.h"

namespace kalvo {

class Context;
class Display;
class RowSource;
struct MessageStore;

// A field as its source answered it.
struct FieldText {
  std::string_view text;

  bool IsEmpty() const { return text.empty(); }
  bool Is(std::string_view other) const { return text == other; }
  bool IsWord(std::string_view word) const { return EqualsIgnoringCase(text, word); }
  std::optional<double> Number() const { return ParseNumber(text); }
  double RequiredNumber() const { return NumberOf(text); }
};

// One data cell that is asked for by name: each field of the row source, each text of the page's encoder, in the order
// that is published. The column is as it is defined at each step, because who is asked may define it again.
class AskedCell {
 public:
  AskedCell(const std::shared_ptr<const ColumnFacts>& column, Context& context, Display& display, RowSource& row)
      : column_(column), context_(context), display_(display), row_(row), link(column->hyperLinkType) {}

  void AppendTo(std::string& out);

  // ---- as the rules see it ------------------------------------------------------------------------------

  const ColumnFacts& Column() const { return *column_; }
  FieldText Read();
  FieldText Value() const { return {value_}; }
  FieldText Field(RowField field);

  void Put(std::string_view text) { text_ += text; }
  void PutHtml();
  void PutNumber();
  void PutNumericValue();
  void PutDateTime(std::string_view defaultText);
  void PutDateTimeFloat();
  void PutFragment();

 private:
  void PutMembership();
  void PutPicture();
  void PutMessagePicture(RowField attachment);
  void PutDeleteForm(const MessageStore& store);
  void MakeUrl(const links::LinkRule& rule);
  void AddParameter(const links::LinkParameter& parameter);

  const std::shared_ptr<const ColumnFacts>& column_;
  Context& context_;
  Display& display_;
  RowSource& row_;
  std::string value_;  // the field's value, once the format has read it
  std::string text_;   // what the cell shows
  std::string url_;    // where it leads

 public:
  KalvoTableHyperlinkType link;  // the column's, unless an alerted resource has one of its own
  bool alertedResource = false;
};

// Appends a cell in the layout of a column.
void AppendLaidOut(std::string& out, const std::shared_ptr<const ColumnFacts>& column, const Display& display,
                   std::string_view content, std::string_view color);

}  // namespace kalvo
