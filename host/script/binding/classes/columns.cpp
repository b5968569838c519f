#include "host/script/binding/classes/members.h"

#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/context.h"
#include "kalvo/control_column.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kColumn[] = {
  Method<&KalvoColumn::Initialize>("Initialize", {{"Id"}, {"Name"}, {"DatabaseField"}, {"HyperLinkType"},
    {"PieChartLink"}, {"LineGraphLink"}, {"inTotalState"}, {"SortColumn"}, {"FormatType"}, {"DataScale"}, {"Units"},
    {"Rows"}, {"Columns"}, {"Align"}, {"NoWrap"}, {"DefaultValue"}},
    "Makes the object a column. `DatabaseField` is the field that its cells read; `HyperLinkType` is a "
    "`HYPERLINK_...`, `FormatType` a `FORMATTYPE_...`; numbers are divided by `DataScale` and followed by "
    "`Units`; `Rows` and `Columns` are what a cell spans; `DefaultValue` stands for an empty value. "
    "`PieChartLink` and `LineGraphLink` are accepted and ignored."),
  Method<&KalvoColumn::ConstructHTMLHeader>("ConstructHTMLHeader", {{"pCtxt"}, {"pDisplay"}},
    "Answers the header cell: the name and, where the column sorts, the links that sort by it."),
  Method<&KalvoColumn::ConstructHTMLData>("ConstructHTMLData", {{"pCtxt"}, {"pDisplay"}, {"pTableData"}},
    "Answers the cell of the row that `pTableData` stands on, formatted and linked. Fails with 13 for a value "
    "that the format cannot read, and with what the row source fails with."),
  Method<&KalvoColumn::ConstructHTMLTotal>("ConstructHTMLTotal",
    {{"pCtxt"}, {"pDisplay"}, {"pTableData"}, {"bFirstCell"}},
    "Answers the cell of the totals row. `bFirstCell` is a box: the first cell that is made carries the label "
    "and makes it false."),
};

using C = KalvoControlColumn;

constexpr Member kControlColumn[] = {
  Method<&C::Initialize>("Initialize", {{"Id"}, {"Name"}, {"Value"}, {"ValueDBField"}, {"Checked"}, {"OnClick"},
    {"Edit"}, {"FormatType"}},
    "Makes the object a column of checkboxes, which administrators alone see. Each box has the value of the field "
    "`ValueDBField`; `Value` is accepted and ignored. `OnClick` is a handler's text; without `Edit` a box is a picture."),
  Method<&C::ConstructHTMLHeader>("ConstructHTMLHeader", {{"pCtxt"}, {"pDisplay"}},
    "Answers the header cell, the name, to an administrator; \"\" to anybody else."),
  Method<&C::ConstructHTMLData>("ConstructHTMLData", {{"pCtxt"}, {"pDisplay"}, {"pTableData"}},
    "Answers the cell of the row that `pTableData` stands on to an administrator; \"\" to anybody else. With "
    "`FORMATTYPE_QVCHECKBOX` rows of one recipient share the first row's box."),
};

using D = KalvoColumnDatabase;

constexpr Member kColumnDatabase[] = {
  Method<&D::GetColumn>("GetColumn", {{"nColumnId"}},
    "Answers the column of an id, a `COL_...`; null for an id without one. Fails with 9 outside of 1 to 128."),
  Method<&D::Initialize_RMC_Alert>("Initialize_RMC_Alert",
    "Makes the columns of the group RMC_Alert again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_Server>("Initialize_EXDB_Server",
    "Makes the columns of the group EXDB_Server again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_ServerTotals>("Initialize_EXDB_ServerTotals",
    "Makes the columns of the group EXDB_ServerTotals again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_ServerBackup>("Initialize_EXDB_ServerBackup",
    "Makes the columns of the group EXDB_ServerBackup again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_Group>("Initialize_EXDB_Group",
    "Makes the columns of the group EXDB_Group again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_MailboxGroup>("Initialize_EXDB_MailboxGroup",
    "Makes the columns of the group EXDB_MailboxGroup again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_MailboxGroupTotals>("Initialize_EXDB_MailboxGroupTotals",
    "Makes the columns of the group EXDB_MailboxGroupTotals again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_QuotaViolation>("Initialize_EXDB_QuotaViolation",
    "Makes the columns of the group EXDB_QuotaViolation again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_DbFile>("Initialize_EXDB_DbFile",
    "Makes the columns of the group EXDB_DbFile again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_DbFileHistory>("Initialize_EXDB_DbFileHistory",
    "Makes the columns of the group EXDB_DbFileHistory again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_DbFileSystem>("Initialize_EXDB_DbFileSystem",
    "Makes the columns of the group EXDB_DbFileSystem again. A new catalogue has them already."),
  Method<&D::Initialize_EXDB_Mailbox>("Initialize_EXDB_Mailbox",
    "Makes the columns of the group EXDB_Mailbox again. A new catalogue has them already."),
  Method<&D::Initialize_TOPN_Columns>("Initialize_TOPN_Columns",
    "Makes the columns of the group TOPN_Columns again. A new catalogue has them already."),
  Method<&D::Initialize_MAPI_Columns>("Initialize_MAPI_Columns",
    "Makes the columns of the group MAPI_Columns again. A new catalogue has them already."),
  Method<&D::Initialize_Task_Columns>("Initialize_Task_Columns",
    "Makes the columns of the group Task_Columns again. A new catalogue has them already."),
};
// clang-format on

}  // namespace

std::span<const Member> ColumnMembers() { return kColumn; }
std::span<const Member> ControlColumnMembers() { return kControlColumn; }
std::span<const Member> ColumnDatabaseMembers() { return kColumnDatabase; }

}  // namespace kalvo::host
