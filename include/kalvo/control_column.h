#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "kalvo/enumerations.h"
#include "kalvo/table_column.h"

namespace kalvo {

// A column of checkboxes, one a row, all named after the column, each carrying the value that identifies its
// row. Shown to administrators only. It has no totals: `AppendTotal` fails with 438.
class KalvoControlColumn : public TableColumn {
 public:
  // Redefines the column: `Name` is the header and the name of every box, `ValueDBField` the field that identifies a
  // row and is the value of its box. `Checked` boxes start ticked, `OnClick` is their script, and without `Edit` they
  // are pictures. `FORMATTYPE_CHECKBOX` gives each row a box, `FORMATTYPE_QVCHECKBOX` each recipient one; any other
  // format shows the field. `Id` and `Value` are accepted and ignored.
  void Initialize(KalvoTableColumnsConstants Id, std::string_view Name, std::string_view Value,
                  std::string_view ValueDBField, bool Checked, std::string_view OnClick, bool Edit,
                  KalvoTableFormatType FormatType);

  std::string ConstructHTMLHeader(Context& pCtxt, Display& pDisplay);

  // With `FORMATTYPE_QVCHECKBOX`, rows that follow one another with the same recipient share the first row's box.
  std::string ConstructHTMLData(Context& pCtxt, Display& pDisplay, RowSource& pTableData);

  void AppendHeader(std::string& out, Context& context, Display& display) override;
  void AppendData(std::string& out, Context& context, Display& display, RowSource& row) override;
  void AppendTotal(std::string& out, Context& context, Display& display, RowSource& totals, bool& firstCell) override;
  std::unique_ptr<BoundColumn> Bind(Context& context, Display& display, RowSource& rows) override;

  struct Facts {
    std::string name, valueField, onClick;
    bool checked = false, edit = false;
    KalvoTableFormatType formatType = FORMATTYPE_FIRSTFORMAT;
  };

 private:
  std::string BoxValue(RowSource& row) const;
  void AppendBox(std::string& out, const Display& display, std::string_view value) const;
  void AppendBoxOfRecipient(std::string& out, const Display& display, RowSource& row);

  // Replaced as a whole: a script that is asked while a cell is made may initialise the column again.
  std::shared_ptr<const Facts> facts_ = std::make_shared<const Facts>();
  std::string lastRecipient_;  // of the last row that was given a box
};

}  // namespace kalvo
