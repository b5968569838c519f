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
    {"Rows"}, {"Columns"}, {"Align"}, {"NoWrap"}, {"DefaultValue"}}),
  Method<&KalvoColumn::ConstructHTMLHeader>("ConstructHTMLHeader", {{"pCtxt"}, {"pDisplay"}}),
  Method<&KalvoColumn::ConstructHTMLData>("ConstructHTMLData", {{"pCtxt"}, {"pDisplay"}, {"pTableData"}}),
  Method<&KalvoColumn::ConstructHTMLTotal>("ConstructHTMLTotal",
    {{"pCtxt"}, {"pDisplay"}, {"pTableData"}, {"bFirstCell"}}),
};

using C = KalvoControlColumn;

constexpr Member kControlColumn[] = {
  Method<&C::Initialize>("Initialize", {{"Id"}, {"Name"}, {"Value"}, {"ValueDBField"}, {"Checked"}, {"OnClick"},
    {"Edit"}, {"FormatType"}}),
  Method<&C::ConstructHTMLHeader>("ConstructHTMLHeader", {{"pCtxt"}, {"pDisplay"}}),
  Method<&C::ConstructHTMLData>("ConstructHTMLData", {{"pCtxt"}, {"pDisplay"}, {"pTableData"}}),
};

using D = KalvoColumnDatabase;

constexpr Member kColumnDatabase[] = {
  Method<&D::GetColumn>("GetColumn", {{"nColumnId"}}),
  Method<&D::Initialize_RMC_Alert>("Initialize_RMC_Alert"),
  Method<&D::Initialize_EXDB_Server>("Initialize_EXDB_Server"),
  Method<&D::Initialize_EXDB_ServerTotals>("Initialize_EXDB_ServerTotals"),
  Method<&D::Initialize_EXDB_ServerBackup>("Initialize_EXDB_ServerBackup"),
  Method<&D::Initialize_EXDB_Group>("Initialize_EXDB_Group"),
  Method<&D::Initialize_EXDB_MailboxGroup>("Initialize_EXDB_MailboxGroup"),
  Method<&D::Initialize_EXDB_MailboxGroupTotals>("Initialize_EXDB_MailboxGroupTotals"),
  Method<&D::Initialize_EXDB_QuotaViolation>("Initialize_EXDB_QuotaViolation"),
  Method<&D::Initialize_EXDB_DbFile>("Initialize_EXDB_DbFile"),
  Method<&D::Initialize_EXDB_DbFileHistory>("Initialize_EXDB_DbFileHistory"),
  Method<&D::Initialize_EXDB_DbFileSystem>("Initialize_EXDB_DbFileSystem"),
  Method<&D::Initialize_EXDB_Mailbox>("Initialize_EXDB_Mailbox"),
  Method<&D::Initialize_TOPN_Columns>("Initialize_TOPN_Columns"),
  Method<&D::Initialize_MAPI_Columns>("Initialize_MAPI_Columns"),
  Method<&D::Initialize_Task_Columns>("Initialize_Task_Columns"),
};
// clang-format on

}  // namespace

std::span<const Member> ColumnMembers() { return kColumn; }
std::span<const Member> ControlColumnMembers() { return kControlColumn; }
std::span<const Member> ColumnDatabaseMembers() { return kColumnDatabase; }

}  // namespace kalvo::host
