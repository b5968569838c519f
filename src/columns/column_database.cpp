#include "kalvo/column_database.h"

#include "columns/column_facts.h"
#include "columns/column_rows.h"
#include "kalvo/column.h"
#include "kalvo/control_column.h"
#include "kalvo/platform/error.h"

namespace kalvo {

namespace {

constexpr std::string_view AlignText(columns::Align align) {
  return align == columns::Left ? "left" : align == columns::Right ? "right" : "center";
}

std::shared_ptr<const ColumnFacts> FactsOf(const columns::ColumnRow& row) {
  return std::make_shared<const ColumnFacts>(ColumnDefinition{
      row.id, std::string(row.header), std::string(row.field), row.link,
      row.total == columns::Keep ? column_KeepTotal : column_NoTotal, row.sort == columns::Sorts, row.format, row.scale,
      std::string(row.units), 1, 1, std::string(AlignText(row.align)), row.wrap == columns::NoWrap});
}

std::shared_ptr<TableColumn> MakeBoxes(const columns::ControlColumnRow& row) {
  auto column = std::make_shared<KalvoControlColumn>();
  column->Initialize(row.id, row.name, row.value, row.field, false, "", true, row.format);
  return column;
}

// The facts of every column by its id, made once for all pages; null where there is none.
const std::shared_ptr<const ColumnFacts>& SharedFacts(std::int16_t id) {
  static const auto facts = [] {
    std::array<std::shared_ptr<const ColumnFacts>, COL_TOTALCOLUMNS> made;
    for (const columns::ColumnRow& row : columns::kColumns) made[row.id - 1] = FactsOf(row);
    return made;
  }();
  return facts[static_cast<std::size_t>(id - 1)];
}

std::shared_ptr<TableColumn> MakeColumn(std::int16_t id) {
  for (const columns::ControlColumnRow& row : columns::kControlColumns) {
    if (row.id == id) return MakeBoxes(row);
  }
  const auto& facts = SharedFacts(id);
  return facts ? std::make_shared<KalvoColumn>(facts) : nullptr;
}

}  // namespace

void KalvoColumnDatabase::MakeGroup(columns::Group group) {
  const auto forget = [&](const auto& rows) {
    for (const auto& row : rows) {
      if (row.group == group) slots_[row.id - 1] = nullptr;
    }
  };
  forget(columns::kControlColumns);
  forget(columns::kColumns);
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

std::shared_ptr<TableColumn> KalvoColumnDatabase::GetColumn(std::int16_t nColumnId) const {
  if (nColumnId < 1 || nColumnId > COL_TOTALCOLUMNS) throw SubscriptOutOfRange();
  std::shared_ptr<TableColumn>& slot = slots_[static_cast<std::size_t>(nColumnId - 1)];
  if (!slot) slot = MakeColumn(nColumnId);
  return slot;
}

}  // namespace kalvo
