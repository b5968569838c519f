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
  return source ? Value(std::move(source)) : Value();
}

// clang-format off
constexpr Member kTable[] = {
  Method<&InitializeTable>("Initialize", {{"TableType"}, {"Id"}, {"Name"}, {"TotalsStateInput"}, {"ShowCharts"},
    {"ShowLastScan"}, {"IsForm"}, {"ShowEntries"}, {"Columns"}, {"SQL"}, {"OrderBy"}, {"DefaultSortOrder"}},
    "Makes the object a table. `TableType` is a `TABLETYPE_...`, `Id` a `TABLE_...`; `Columns` is an array of "
    "column ids; `SQL` may hold %NAME%, %ORG%, %SITE%, %MAILBOX% and %SORT%; `OrderBy` and `DefaultSortOrder` "
    "(\"ASC\", \"DESC\") serve when the request names no sort. `ShowCharts` and `Name` are accepted and not "
    "shown. Fails with 13 for columns that are no array of numbers, after all else was taken."),
  Method<&Table::SetTopNParameters>("SetTopNParameters", {{"pCtxt"}},
    "Takes the Top-N object and load type from the scope of a context; both are 0 for an undefined scope."),
  Method<&GetTableDataSrc>("GetDataSrc", {{"pCtxt"}},
    "Answers a new row source for the name of a context, ready to open; undefined for an unknown table type."),
  Method<&Table::BuildHTML>("BuildHTML",
    {{"pCtxt"}, {"Response"}, {"pDisplay"}, {"pColDB"}, {"szEmptyMessage"}, {"szTableName"}},
    "Writes the whole table: bookmark, entries, paging, header, one page of rows, totals. `pColDB` is a "
    "column catalogue or an object with `GetColumn(id)`. A step that fails is left out and noted; nothing is "
    "raised. `szTableName` is the bookmark of its links."),
  Method<&Table::GetId>("GetId",
    "Answers the id, a `TABLE_...`."),
  Method<&Table::GetColumns>("GetColumns",
    "Answers an array of the column ids, in their order."),
  Method<&Table::GetSQL>("GetSQL",
    "Answers the SQL with its placeholders."),
  Method<&Table::GetDefaultSortOrder>("GetDefaultSortOrder",
    "Answers \"ASC\", \"DESC\" or what the table was initialised with."),
  Method<&Table::GetOrderBy>("GetOrderBy",
    "Answers the text that the table is sorted by when the request names no sort."),
  Method<&Table::GetTopNObject>("GetTopNObject",
    "Answers the number of the Top-N object; 0 before `SetTopNParameters`."),
  Method<&Table::GetTopNLoadType>("GetTopNLoadType",
    "Answers the Top-N load type; 0 before `SetTopNParameters`."),
};

using D = KalvoTableDatabase;

constexpr Member kTableDatabase[] = {
  Method<&D::ValidTable>("ValidTable", {{"tableId"}},
    "Answers true for every number: `IsTableNull` tells which ids have a table."),
  Method<&D::IsTableNull>("IsTableNull", {{"nTableId"}},
    "Answers whether an id from 1 to 68 has no table; fails with 9 outside of them."),
  Method<&D::GetTable>("GetTable", {{"tableId"}},
    "Answers the table of an id, the same object each time; null for an id without one. Fails with 9 outside "
    "of 1 to 68."),
  Method<&D::InitializeGeneralTables>("InitializeGeneralTables",
    "Makes the tables of the general group again. A new catalogue has them already."),
  Method<&D::InitializeTaskTables>("InitializeTaskTables",
    "Makes the task tables again. A new catalogue has them already."),
  Method<&D::InitializeResourceTables>("InitializeResourceTables",
    "Makes the resource tables again. A new catalogue has them already."),
  Method<&D::InitializeConfigurationTables>("InitializeConfigurationTables",
    "Makes the configuration tables again. A new catalogue has them already."),
  Method<&D::InitializeTopNTables>("InitializeTopNTables",
    "Makes the Top-N tables again. A new catalogue has them already."),
  Method<&D::InitializeMAPITables>("InitializeMAPITables",
    "Makes the live mailbox tables again. A new catalogue has them already."),
};

constexpr Member kTableConstants[] = {
  Property<&TableConstants::TABLES_DSN>("TABLES_DSN",
    "The name of the reporting database: \"KalvoDB\"."),
  Property<&TableConstants::gszAscendingSort>("gszAscendingSort",
    "The word for ascending: \"ASC\"."),
  Property<&TableConstants::gszDescendingSort>("gszDescendingSort",
    "The word for descending: \"DESC\"."),
  Method<&TableConstants::TableSQL>("TableSQL", {{"tableId"}},
    "Answers the fixed SQL of a task table without a sort clause; \"\" for every other id."),
};
// clang-format on

}  // namespace

std::span<const Member> TableMembers() { return kTable; }
std::span<const Member> TableDatabaseMembers() { return kTableDatabase; }
std::span<const Member> TableConstantsMembers() { return kTableConstants; }

}  // namespace kalvo::host
