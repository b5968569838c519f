#include "database/schema.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "adapters/sql/windowed_statement.h"
#include "database/sample_databases.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/database.h"
#include "kalvo/table.h"
#include "kalvo/table_database.h"
#include "support/postgres_server.h"

namespace kalvo::test {
namespace {

TEST(Schema, HasNoWordLeftOpenForAnyEngine) {
  using schema::Engine;
  for (const Engine engine : {Engine::Sqlite, Engine::Postgresql, Engine::Mariadb, Engine::SqlServer}) {
    for (const std::string& statement : schema::TableStatements(engine)) {
      EXPECT_EQ(statement.find('@'), std::string::npos) << statement;
    }
    EXPECT_GT(schema::IndexStatements(engine).size(), 15u);
  }
}

TEST(Schema, ListsItsTablesWithTheirColumns) {
  const auto tables = schema::Tables();
  const auto group = std::ranges::find(tables, "EXDB_GROUP", &schema::Table::name);
  ASSERT_NE(group, tables.end());
  EXPECT_EQ(group->columns, (std::vector<std::string>{"GroupId", "Name", "Description"}));
  const auto current = std::ranges::find(tables, "EXDB_SERVERCURRENT", &schema::Table::name);
  ASSERT_NE(current, tables.end());
  EXPECT_EQ(current->columns.size(), 3u) << "a key is no column";
}

TEST(Schema, SaysWhatARowOfEachTableIs) {
  const std::string_view text = schema::Text();
  for (const schema::Table& table : schema::Tables()) {
    const std::size_t at = text.find("create table " + table.name + " ");
    ASSERT_NE(at, std::string_view::npos) << table.name;
    const std::string_view before = text.substr(0, at - 1);
    EXPECT_TRUE(before.substr(before.rfind('\n') + 1).starts_with("-- ")) << table.name;
  }
}

// What the adapter asks for the first page of the charge-back of an organization, in the order it begins with.
std::string FirstPageOfChargeback() {
  const auto table = std::make_shared<KalvoTableDatabase>(SampleDatabases::Shared().PlatformOf(Engine::Sqlite))
                         ->GetTable(TABLE_CHARGEBACK_Organization);
  std::string sql = table->GetSQL();
  sql.resize(sql.find("%SORT%"));
  sql.replace(sql.find("%ORG%"), 5, "'Meridian'");
  sql += table->GetOrderBy() + " " + table->GetDefaultSortOrder();
  auto windowed = sql::WindowedStatement::Of(sql, sql::NullOrder::Said).value();
  windowed.BreakTies(7);
  return windowed.Forward(0, 1001);
}

TEST(Schema, PostgresqlReadsTheFirstPageOfAChargebackByItsIndex) {
  EXPECT_NE(FirstPageOfChargeback().find(" order by MbName asc nulls first, "), std::string::npos);
  std::string script;
  for (const std::string& statement : schema::TableStatements(schema::Engine::Postgresql)) script += statement + ";\n";
  for (const std::string& statement : schema::IndexStatements(schema::Engine::Postgresql)) script += statement + ";\n";
  PostgresServer server;
  server.Execute(script +
                 "insert into EXDB_SERVER (ServerId, ComputerName, DistOrgName, DistSiteName, DomainName, Missing, "
                 "ServerState, ServerGroupId) select i, 'S' || i, 'Meridian', 'Oslo', 'D', 0, 2, 1 "
                 "from generate_series(1, 20) i;\n"
                 "insert into EXDB_MAILBOX (MailboxId, ServerId, MbName, MbDistName, MsgCount, MsgSize) "
                 "select i, i % 20 + 1, md5(i::text), '/o=' || i, i, i from generate_series(1, 50000) i;\n"
                 "analyze;\n");
  // The script fails unless a line of the plan names the index.
  EXPECT_NO_THROW(
      server.Execute("do $test$ declare line text; plan text := ''; begin for line in execute $query$explain " +
                     FirstPageOfChargeback() +
                     "$query$ loop plan := plan || line; end loop; if position('exdb_mailbox_name' in plan) = 0 "
                     "then raise exception '%', plan; end if; end $test$;"));
}

class SchemaOnEngine : public testing::TestWithParam<Engine> {};

// The same tables with the same columns and as many rows, whichever engine holds the sample.
TEST_P(SchemaOnEngine, HoldsTheWholeSample) {
  const auto rowsOf = [](Engine engine, const std::string& table) {
    const std::string sql = "select count(*) as n from " + table;
    const auto connection = SampleDatabases::Shared().PlatformOf(engine).database.Connect("KalvoDB");
    const auto records = connection->Execute({sql, sql, ""});
    std::string scratch;
    EXPECT_FALSE(records->IsEmpty());
    return std::string(records->GetRows().Text(0, 0, scratch));
  };
  for (const schema::Table& table : schema::Tables()) {
    EXPECT_EQ(rowsOf(GetParam(), table.name), rowsOf(Engine::Sqlite, table.name)) << table.name;
    const std::string sql = "select * from " + table.name + " where (1 = 0)";
    const auto connection = SampleDatabases::Shared().PlatformOf(GetParam()).database.Connect("KalvoDB");
    const auto records = connection->Execute({sql, sql, ""});
    std::vector<std::string> expected, actual;
    for (const std::string& column : table.columns) expected.push_back(ToLower(column));
    for (std::int32_t i = 0; i < records->FieldCount(); ++i) actual.push_back(ToLower(records->FieldName(i)));
    EXPECT_EQ(actual, expected) << table.name;
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, SchemaOnEngine,
                         testing::Values(Engine::Sqlite, Engine::SqliteOdbc, Engine::Postgresql, Engine::Mariadb),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
