#include "host/script/binding/classes/members.h"

#include "kalvo/context.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "kalvo/table_database.h"

namespace kalvo::host {
namespace {

using Text = std::string_view;

// The columns are taken one by one, behind what is stored before them: the first that is no column id ends the
// operation there.
void InitializeTable(Table& table, KalvoTableType TableType, KalvoTableConstants Id, Text Name,
                     TableTotalsState TotalsStateInput, bool ShowCharts, bool ShowLastScan, bool IsForm,
                     bool ShowEntries, const ColumnIds& Columns, Text SQL, Text OrderBy, Text DefaultSortOrder) {
  const auto initialize = [&](std::span<const std::int16_t> columns, Text sql, Text orderBy) {
    table.Initialize(TableType, Id, Name, TotalsStateInput, ShowCharts, ShowLastScan, IsForm, ShowEntries, columns, sql,
                     orderBy, DefaultSortOrder);
  };
  if (!Columns.failure) return initialize(Columns.ids, SQL, OrderBy);
  const std::string sql = table.GetSQL();
  const std::string orderBy = table.GetOrderBy();
  initialize(Columns.areSized ? Columns.ids : table.GetColumns(), sql, orderBy);
  throw Error(*Columns.failure);
}

// Empty, not the null object, for a table of no known type.
Value GetTableDataSrc(Table& table, Context& pCtxt) {
  std::shared_ptr<Object> source = table.GetDataSrc(pCtxt);
  return source != nullptr ? Value(std::move(source)) : Value();
}

// clang-format off
constexpr Member kTable[] = {
  Method<&InitializeTable>("Initialize", {{"TableType"}, {"Id"}, {"Name"}, {"TotalsStateInput"}, {"ShowCharts"},
    {"ShowLastScan"}, {"IsForm"}, {"ShowEntries"}, {"Columns"}, {"SQL"}, {"OrderBy"}, {"DefaultSortOrder"}}),
  Method<&Table::SetTopNParameters>("SetTopNParameters", {{"pCtxt"}}),
  Method<&GetTableDataSrc>("GetDataSrc", {{"pCtxt"}}),
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
