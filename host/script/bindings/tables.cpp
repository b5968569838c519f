#include "host/script/bindings/members.h"
#include "kalvo/context.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "kalvo/table_database.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kTable[] = {
  Method<&Table::Initialize>("Initialize", {{"TableType"}, {"Id"}, {"Name"}, {"TotalsStateInput"}, {"ShowCharts"},
    {"ShowLastScan"}, {"IsForm"}, {"ShowEntries"}, {"Columns"}, {"SQL"}, {"OrderBy"}, {"DefaultSortOrder"}}),
  Method<&Table::SetTopNParameters>("SetTopNParameters", {{"pCtxt"}}),
  Method<&Table::GetDataSrc>("GetDataSrc", {{"pCtxt"}}),
  Method<&Table::BuildHTML>("BuildHTML",
    {{"pCtxt"}, {"Response"}, {"pDisplay"}, {"pColDB"}, {"szEmptyMessage"}, {"szTableName"}}),
  Method<&Table::GetId>("GetId"),
  Method<&Table::GetColumns>("GetColumns"),
  Method<&Table::GetSQL>("GetSQL"),
  Method<&Table::GetDefaultSortOrder>("GetDefaultSortOrder"),
  Method<&Table::GetOrderBy>("GetOrderBy"),
  Method<&Table::GetTopNObject>("GetTopNObject"),
  Method<&Table::GetTopNLoadType>("GetTopNLoadType"),
};

using D = KalvoTableDatabase;

constexpr Member kTableDatabase[] = {
  Method<&D::ValidTable>("ValidTable", {{"tableId"}}),
  Method<&D::IsTableNull>("IsTableNull", {{"nTableId"}}),
  Method<&D::GetTable>("GetTable", {{"tableId"}}),
  Method<&D::InitializeGeneralTables>("InitializeGeneralTables"),
  Method<&D::InitializeTaskTables>("InitializeTaskTables"),
  Method<&D::InitializeResourceTables>("InitializeResourceTables"),
  Method<&D::InitializeConfigurationTables>("InitializeConfigurationTables"),
  Method<&D::InitializeTopNTables>("InitializeTopNTables"),
  Method<&D::InitializeMAPITables>("InitializeMAPITables"),
};

constexpr Member kTableConstants[] = {
  Property<&TableConstants::TABLES_DSN>("TABLES_DSN"),
  Property<&TableConstants::gszAscendingSort>("gszAscendingSort"),
  Property<&TableConstants::gszDescendingSort>("gszDescendingSort"),
  Method<&TableConstants::TableSQL>("TableSQL", {{"tableId"}}),
};
// clang-format on

}  // namespace

std::span<const Member> TableMembers() { return kTable; }
std::span<const Member> TableDatabaseMembers() { return kTableDatabase; }
std::span<const Member> TableConstantsMembers() { return kTableConstants; }

}  // namespace kalvo::host
