#include "kalvo/column_database.h"

#include "columns/column_rows.h"
#include "kalvo/column.h"
#include "kalvo/control_column.h"
#include "kalvo/platform/error.h"

namespace kalvo {

namespace {

constexpr std::string_view AlignText(columns::Align align) {
  return align == columns::Left ? "left" : align == columns::Right ? "right" : "center";
}

std::shared_ptr<TableColumn> MakeColumn(const columns::ColumnRow& row) {
  auto column = std::make_shared<KalvoColumn>();
  column->Initialize(row.id, row.header, row.field, row.link, "", "",
                     row.total == columns::Keep ? column_KeepTotal : column_NoTotal, row.sort == columns::Sorts,
                     row.format, row.scale, row.units, 1, 1, AlignText(row.align), row.wrap == columns::NoWrap, "");
  return column;
}

std::shared_ptr<TableColumn> MakeColumn(const columns::ControlColumnRow& row) {
  auto column = std::make_shared<KalvoControlColumn>();
  column->Initialize(row.id, row.name, row.value, row.field, false, "", true, row.format);
  return column;
}

}  // namespace

KalvoColumnDatabase::KalvoColumnDatabase() {
  Initialize_RMC_Alert();
  Initialize_EXDB_Server();
  Initialize_EXDB_ServerTotals();
  Initialize_EXDB_ServerBackup();
  Initialize_EXDB_Group();
  Initialize_EXDB_MailboxGroup();
  Initialize_EXDB_MailboxGroupTotals();
  Initialize_EXDB_QuotaViolation();
  Initialize_EXDB_DbFile();
  Initialize_EXDB_DbFileHistory();
  Initialize_EXDB_DbFileSystem();
  Initialize_EXDB_Mailbox();
  Initialize_TOPN_Columns();
  Initialize_MAPI_Columns();
  Initialize_Task_Columns();
}

void KalvoColumnDatabase::MakeGroup(columns::Group group) {
  const auto make = [&](const auto& rows) {
    for (const auto& row : rows) {
      if (row.group == group) slots_[row.id - 1] = MakeColumn(row);
    }
  };
  make(columns::kControlColumns);
  make(columns::kColumns);
}

void KalvoColumnDatabase::Initialize_RMC_Alert() { MakeGroup(columns::Group::Alert); }
void KalvoColumnDatabase::Initialize_EXDB_Server() { MakeGroup(columns::Group::Server); }
void KalvoColumnDatabase::Initialize_EXDB_ServerTotals() { MakeGroup(columns::Group::ServerTotals); }
void KalvoColumnDatabase::Initialize_EXDB_ServerBackup() { MakeGroup(columns::Group::ServerBackup); }
void KalvoColumnDatabase::Initialize_EXDB_Group() { MakeGroup(columns::Group::Group); }
void KalvoColumnDatabase::Initialize_EXDB_MailboxGroup() { MakeGroup(columns::Group::MailboxGroup); }
void KalvoColumnDatabase::Initialize_EXDB_MailboxGroupTotals() { MakeGroup(columns::Group::MailboxGroupTotals); }
void KalvoColumnDatabase::Initialize_EXDB_QuotaViolation() { MakeGroup(columns::Group::QuotaViolation); }
void KalvoColumnDatabase::Initialize_EXDB_DbFile() { MakeGroup(columns::Group::DbFile); }
void KalvoColumnDatabase::Initialize_EXDB_DbFileHistory() { MakeGroup(columns::Group::DbFileHistory); }
void KalvoColumnDatabase::Initialize_EXDB_DbFileSystem() { MakeGroup(columns::Group::DbFileSystem); }
void KalvoColumnDatabase::Initialize_EXDB_Mailbox() { MakeGroup(columns::Group::Mailbox); }
void KalvoColumnDatabase::Initialize_TOPN_Columns() { MakeGroup(columns::Group::TopN); }
void KalvoColumnDatabase::Initialize_MAPI_Columns() { MakeGroup(columns::Group::LiveMailbox); }
void KalvoColumnDatabase::Initialize_Task_Columns() { MakeGroup(columns::Group::Task); }

const std::shared_ptr<TableColumn>& KalvoColumnDatabase::Slot(std::int16_t id) const {
  if (id < 1 || id > COL_TOTALCOLUMNS) throw SubscriptOutOfRange();
  return slots_[static_cast<std::size_t>(id - 1)];
}

std::shared_ptr<TableColumn> KalvoColumnDatabase::GetColumn(std::int16_t nColumnId) const { return Slot(nColumnId); }

}  // namespace kalvo
