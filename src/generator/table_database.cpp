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

std::shared_ptr<const TableDefinition> DefinitionOf(const tables::TableRow& row) {
  return std::make_shared<const TableDefinition>(
      TableDefinition{TypeOf(row.group), row.id, std::string(row.title),
                      row.totals == tables::ShowTotals ? table_ShowTotals : table_NoTotals,
                      row.lastScan == tables::ShowScan, row.form == tables::IsForm, row.entries == tables::ShowEntries,
                      std::vector<std::int16_t>(row.columns.begin(), row.columns.end()), TableSql(row.id),
                      std::string(row.orderBy), std::string(row.sortOrder)});
}

// The definition of every table by its id, made once for all pages; null where there is none. Fails with 9 for an id
// outside of the catalogue.
const std::shared_ptr<const TableDefinition>& SharedDefinition(std::int32_t id) {
  static const auto definitions = [] {
    std::array<std::shared_ptr<const TableDefinition>, TABLE_TOTALTABLES> made;
    for (const tables::TableRow& row : tables::kTables) made[static_cast<std::size_t>(row.id - 1)] = DefinitionOf(row);
    return made;
  }();
  if (id < 1 || id > TABLE_TOTALTABLES) throw SubscriptOutOfRange();
  return definitions[static_cast<std::size_t>(id - 1)];
}

}  // namespace

void KalvoTableDatabase::MakeGroup(tables::Group group) {
  for (const tables::TableRow& row : tables::kTables) {
    if (row.group == group) slots_[static_cast<std::size_t>(row.id - 1)] = nullptr;
  }
}

void KalvoTableDatabase::InitializeGeneralTables() { MakeGroup(tables::Group::General); }
void KalvoTableDatabase::InitializeTaskTables() { MakeGroup(tables::Group::Task); }
void KalvoTableDatabase::InitializeResourceTables() { MakeGroup(tables::Group::Resource); }
void KalvoTableDatabase::InitializeConfigurationTables() { MakeGroup(tables::Group::Configuration); }
void KalvoTableDatabase::InitializeTopNTables() { MakeGroup(tables::Group::TopN); }
void KalvoTableDatabase::InitializeMAPITables() { MakeGroup(tables::Group::LiveMailbox); }

// Kept: true for every id, for page scripts that ask first. An id without a slot fails where the slot is looked up.
bool KalvoTableDatabase::ValidTable(std::int32_t /*tableId*/) const { return true; }

bool KalvoTableDatabase::IsTableNull(std::int32_t nTableId) const { return !SharedDefinition(nTableId); }

std::shared_ptr<Table> KalvoTableDatabase::GetTable(std::int32_t tableId) const {
  const auto& definition = SharedDefinition(tableId);
  if (!definition) return nullptr;
  std::shared_ptr<Table>& slot = slots_[static_cast<std::size_t>(tableId - 1)];
  if (!slot) slot = std::make_shared<Table>(platform_, definition);
  return slot;
}

}  // namespace kalvo
