#include <gtest/gtest.h>

#include <regex>

#include "adapters/database/test_engine.h"
#include "adapters/odbc/odbc_database.h"
#include "adapters/sqlite/sqlite_database.h"
#include "kalvo/platform/error.h"

namespace kalvo::test {
namespace {

TEST(Driver, OfOdbcNamesItselfAndTheServer) {
  const struct {
    TestEngine& engine;
    const char* driver;
  } kCases[] = {
      {OdbcSqliteEngine(), "sqlite3odbc\\.so [0-9.]+ for SQLite 3\\.[0-9.]+$"},
      {OdbcPostgresEngine(), "psqlodbc[aw]\\.so [0-9.]+ for PostgreSQL [0-9.]+$"},
      {OdbcMariaDbEngine(), "libmaodbc\\.so [0-9.]+ for MariaDB [0-9.]+$"},
  };
  odbc::OdbcDatabase database;
  for (const auto& c : kCases) {
    const std::string driver = database.DescribeDriver(c.engine.dataSource);
    EXPECT_TRUE(std::regex_search(driver, std::regex(c.driver))) << driver;
  }
}

TEST(Driver, OfNoDataSourceFails) {
  odbc::OdbcDatabase database;
  EXPECT_THROW(database.DescribeDriver("NoSuchSource"), Error);
}

TEST(Driver, OfSqliteIsItsLibrary) {
  const auto connection = Connect(SqliteEngine());
  EXPECT_EQ(sqlite::SqliteDatabase::DescribeDriver(),
            "SQLite " + FirstText(*connection, "select sqlite_version() as Version"));
}

}  // namespace
}  // namespace kalvo::test
