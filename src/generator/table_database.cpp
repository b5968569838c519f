#include "kalvo/table_database.h"

#include "generator/table_rows.h"
#include "generator/table_sql.h"
#include "kalvo/platform/error.h"
#include "kalvo/table.h"

namespace kalvo {

namespace {

constexpr KalvoTableType TypeOf(tables::Group group) {
  switch (group) {
    case tables::Group::TopN: return TABLETYPE_TOPN;
    case tables::Group::LiveMailbox: return TABLETYPE_MAPI;
    default: return TABLETYPE_KALVODB;
  }
}

std::shared_ptr<Table> MakeTable(const tables::TableRow& row, const Platform& platform) {
  auto table = std::make_shared<Table>(platform);
  table->Initialize(TypeOf(row.group), row.id, row.title,
                    row.totals == tables::ShowTotals ? table_ShowTotals : table_NoTotals,
                    row.charts == tables::ShowCharts, row.lastScan == tables::ShowScan, row.form == tables::IsForm,
                    row.entries == tables::ShowEntries, row.columns, TableSql(row.id), row.orderBy, row.sortOrder);
  return table;
}

}  // namespace

KalvoTableDatabase::KalvoTableDatabase(const Platform& platform) : platform_(platform) {
  InitializeGeneralTables();
  InitializeTaskTables();
  InitializeResourceTables();
  InitializeConfigurationTables();
  InitializeTopNTables();
  InitializeMAPITables();
}

void KalvoTableDatabase::MakeGroup(tables::Group group) {
  for (const tables::TableRow& row : tables::kTables) {
    if (row.group == group) slots_[static_cast<std::size_t>(row.id - 1)] = MakeTable(row, platform_);
  }
}

void KalvoTableDatabase::InitializeGeneralTables() { MakeGroup(tables::Group::General); }
void KalvoTableDatabase::InitializeTaskTables() { MakeGroup(tables::Group::Task); }
void KalvoTableDatabase::InitializeResourceTables() { MakeGroup(tables::Group::Resource); }
void KalvoTableDatabase::InitializeConfigurationTables() { MakeGroup(tables::Group::Configuration); }
void KalvoTableDatabase::InitializeTopNTables() { MakeGroup(tables::Group::TopN); }
void KalvoTableDatabase::InitializeMAPITables() { MakeGroup(tables::Group::LiveMailbox); }

// Kept: true for every id, so that nobody need ask. What is no slot fails where the slot is looked up.
bool KalvoTableDatabase::ValidTable(std::int32_t /*tableId*/) const { return true; }

const std::shared_ptr<Table>& KalvoTableDatabase::Slot(std::int32_t id) const {
  if (id < 1 || id > TABLE_TOTALTABLES) throw SubscriptOutOfRange();
  return slots_[static_cast<std::size_t>(id - 1)];
}

bool KalvoTableDatabase::IsTableNull(std::int32_t nTableId) const { return !Slot(nTableId); }

std::shared_ptr<Table> KalvoTableDatabase::GetTable(std::int32_t tableId) const { return Slot(tableId); }

}  // namespace kalvo
