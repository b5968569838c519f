#pragma once

#include <string>
#include <string_view>

#include "columns/table_column.h"
#include "kalvo/enumerations.h"

namespace kalvo {

// A column of checkboxes, one a row, all named after the column, each carrying the value that identifies its
// row. Shown to administrators only. It has no totals: `AppendTotal` fails with 438.
class KalvoControlColumn : public TableColumn {
 public:
  void Initialize(KalvoTableColumnsConstants Id, std::string_view Name, std::string_view Value,
                  std::string_view ValueDBField, bool Checked, std::string_view OnClick, bool Edit,
                  KalvoTableFormatType FormatType);

  std::string ConstructHTMLHeader(Context& pCtxt, Display& pDisplay);

  // With `FORMATTYPE_QVCHECKBOX`, rows that follow one another with the same recipient share the first row's box.
  std::string ConstructHTMLData(Context& pCtxt, Display& pDisplay, RowSource& pTableData);

  void AppendHeader(std::string& out, Context& context, Display& display) override;
  void AppendData(std::string& out, Context& context, Display& display, RowSource& row) override;
  void AppendTotal(std::string& out, Context& context, Display& display, RowSource& totals, bool& firstCell) override;

 private:
  void AppendBox(std::string& out, const Display& display, RowSource& row) const;
  void AppendBoxOfRecipient(std::string& out, const Display& display, RowSource& row);

  KalvoTableColumnsConstants id_ = COL_FIRSTCOLUMN;
  std::string name_, value_, valueField_, onClick_;
  bool checked_ = false, edit_ = false;
  KalvoTableFormatType formatType_ = FORMATTYPE_FIRSTFORMAT;
  std::string lastRecipient_;  // of the last row that was given a box
};

}  // namespace kalvo
