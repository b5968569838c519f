#include "adapters/sqlite/sqlite_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdlib>

#include "adapters/odbc/odbc_database.h"
#include "adapters/sqlite/connection.h"
#include "adapters/sqlite/guard.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"
#include "support/odbc_data_source.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

class SqliteFileTest : public testing::Test {
 protected:
  SqliteFileTest() {
    sqlite::PrepareLibrary();
    sqlite3* connection = nullptr;
    sqlite3_open(File().c_str(), &connection);
    sqlite3_set_authorizer(connection, nullptr, nullptr);
    sqlite3_exec(connection,
                 "create table T (Id integer, Declared datetime, Day date, Plain varchar(40), Any);"
                 "insert into T values (1, '2024-02-03T10:04:05.75', '2024-02-03', '2024-02-03 10:04:05', 7);"
                 "insert into T values (2, 'soon', '2024-13-03', null, 'seven');"
                 "insert into T values (3, null, null, 'x', 2.5);",
                 nullptr, nullptr, nullptr);
    sqlite3_close(connection);
  }

  std::filesystem::path File() const { return folder_.Path() / "t.db"; }

  static std::string Text(Connection& connection, const std::string& sql, int field = 0, int row = 0) {
    std::string scratch;
    return std::string(connection.Execute({sql, sql, ""})->GetRows().Text(field, row, scratch));
  }

  static Error ErrorOfQuery(Connection& connection, const std::string& sql) {
    return ErrorOf([&] { connection.Execute({sql, sql, ""})->GetRows(); });
  }

  static Error ConnectError(Database& database, const std::string& name) {
    return ErrorOf([&] { database.Connect(name); });
  }

  TemporaryFolder folder_;
};

TEST_F(SqliteFileTest, ADeclaredColumnIsADateInAnyIsoForm) {
  sqlite::SqliteDatabase database(File());
  const auto connection = database.Connect("KalvoDB");
  const std::string sql = "select Declared, Day, Plain, Any from T order by Id";
  EXPECT_EQ(Text(*connection, sql, 0, 0), "2/3/2024 10:04:05 AM");
  EXPECT_EQ(Text(*connection, sql, 1, 0), "2/3/2024");
  EXPECT_EQ(Text(*connection, sql, 2, 0), "2024-02-03 10:04:05") << "declared as text";
  EXPECT_EQ(Text(*connection, sql, 0, 1), "soon");
  EXPECT_EQ(Text(*connection, sql, 1, 1), "2024-13-03") << "there is no such month";
}

TEST_F(SqliteFileTest, AComputedColumnIsADateInTheExactForm) {
  sqlite::SqliteDatabase database(File());
  const auto connection = database.Connect("KalvoDB");
  EXPECT_EQ(Text(*connection, "select max(Plain) as D from T where Id < 3"), "2/3/2024 10:04:05 AM");
  EXPECT_EQ(Text(*connection, "select max(Day) as D from T where Id = 1"), "2024-02-03");
  EXPECT_EQ(Text(*connection, "select '2024-02-03 10:04:05.5' as D"), "2024-02-03 10:04:05.5");
}

TEST_F(SqliteFileTest, AColumnMayChangeItsTypeFromRowToRow) {
  sqlite::SqliteDatabase direct(File());
  OdbcDataSources sources;
  sources.Add("TypesChange", OdbcDataSources::Sqlite(File()));
  odbc::OdbcDatabase odbc;
  for (Database* database : {static_cast<Database*>(&direct), static_cast<Database*>(&odbc)}) {
    const auto connection = database->Connect("TypesChange");
    const std::string sql = "select Any, case when Id = 1 then 5000000000 else 'x' end as E from T order by Id";
    EXPECT_EQ(Text(*connection, sql, 0, 0), "7");
    EXPECT_EQ(Text(*connection, sql, 0, 1), "seven");
    EXPECT_EQ(Text(*connection, sql, 0, 2), "2.5");
    EXPECT_EQ(Text(*connection, sql, 1, 0), "5000000000");
    EXPECT_EQ(Text(*connection, sql, 1, 1), "x");
  }
}

TEST_F(SqliteFileTest, AFractionBehindANullReadsTheSameBothWays) {
  sqlite::SqliteDatabase direct(File());
  OdbcDataSources sources;
  sources.Add("FirstIsNull", OdbcDataSources::Sqlite(File()));
  odbc::OdbcDatabase odbc;
  for (Database* database : {static_cast<Database*>(&direct), static_cast<Database*>(&odbc)}) {
    const auto connection = database->Connect("FirstIsNull");
    const std::string sql = "select case Id when 1 then null when 2 then 15.0 else 1e-05 end as E from T order by Id";
    EXPECT_EQ(Text(*connection, sql, 0, 0), "");
    EXPECT_EQ(Text(*connection, sql, 0, 1), "15");
    EXPECT_EQ(Text(*connection, sql, 0, 2), "1E-05");
  }
}

TEST_F(SqliteFileTest, AFileThatIsMissingIsAnErrorAndIsNotCreated) {
  const auto missing = folder_.Path() / "missing.db";
  sqlite::SqliteDatabase direct(missing);
  EXPECT_EQ(ConnectError(direct, "KalvoDB").Number(), codes::kFailed);
  EXPECT_EQ(ConnectError(direct, "KalvoDB").Description(), "[08001] unable to open database file");
  OdbcDataSources sources;
  sources.Add("Missing", OdbcDataSources::Sqlite(missing));
  odbc::OdbcDatabase odbc;
  EXPECT_EQ(ConnectError(odbc, "Missing").Number(), codes::kFailed);
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(SqliteFileTest, AFileOfAnotherKindIsAnError) {
  WriteFile(folder_.Path() / "other.db", std::string(5000, 'x'));
  sqlite::SqliteDatabase database(folder_.Path() / "other.db");
  EXPECT_EQ(ConnectError(database, "KalvoDB").Number(), codes::kFailed);
  EXPECT_EQ(ConnectError(database, "KalvoDB").Description(), "[08001] file is not a database");
}

TEST_F(SqliteFileTest, AnUnknownDataSourceIsAnError) {
  OdbcDataSources sources;
  odbc::OdbcDatabase odbc;
  EXPECT_EQ(ConnectError(odbc, "Nowhere").Number(), codes::kFailed);
  EXPECT_EQ(ConnectError(odbc, "Nowhere").Description().substr(0, 8), "[IM002] ");
  EXPECT_EQ(ConnectError(odbc, "x;Driver=SQLite3;Database=y").Description().substr(0, 8), "[IM002] ");
}

TEST_F(SqliteFileTest, NothingBesidesReadingIsAllowed) {
  sqlite::SqliteDatabase direct(File());
  OdbcDataSources sources;
  sources.Add("Guarded", OdbcDataSources::Sqlite(File()));
  odbc::OdbcDatabase odbc;
  for (Database* database : {static_cast<Database*>(&direct), static_cast<Database*>(&odbc)}) {
    const auto connection = database->Connect("Guarded");
    for (const char* sql : {"select load_extension('libm.so.6')", "pragma query_only = 0", "attach 'x.db' as x",
                            "pragma journal_mode = delete", "create temporary table Mine (Id integer)", "vacuum",
                            "delete from T", "create trigger R after insert on T begin select 1; end"}) {
      EXPECT_EQ(ErrorOfQuery(*connection, sql).Number(), codes::kFailed) << sql;
    }
    EXPECT_EQ(Text(*connection, "select upper(Plain) as U from T where Id = 3"), "X");
  }
}

TEST_F(SqliteFileTest, AConnectionIsHardenedAgainstItsFile) {
  sqlite::Session session(File(), {}, kEnglishUnitedStates);
  sqlite3* connection = sqlite3_db_handle(session.Prepare("select 1").get());
  const struct {
    const char* why;
    int flag, expected;
  } kFlags[] = {
      {"nothing writes around SQLite's own rules", SQLITE_DBCONFIG_DEFENSIVE, 1},
      {"what the file's schema calls has to be harmless", SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
      {"no library is loaded", SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
  };
  for (const auto& c : kFlags) {
    int value = -1;
    sqlite3_db_config(connection, c.flag, -1, &value);
    EXPECT_EQ(value, c.expected) << c.why;
  }
  EXPECT_EQ(sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, -1), 64 << 20) << "the longest value";
  EXPECT_EQ(sqlite3_db_readonly(connection, "main"), 1);
}

TEST_F(SqliteFileTest, OfTheHeapThereAre256Mebibytes) {
  sqlite::SqliteDatabase database(File());
  const auto connection = database.Connect("KalvoDB");
  const auto statement = [](int values) {  // which holds so many values of 50 MB at once
    std::string sql = "select length(v0)";
    for (int i = 0; i < values; ++i) sql += ", v" + std::to_string(i);
    sql += " from (select ";
    for (int i = 0; i < values; ++i)
      sql += (i ? ", " : "") + std::string("hex(zeroblob(25000000)) as v") + std::to_string(i);
    return sql + " limit 1)";
  };
  EXPECT_EQ(Text(*connection, statement(1)), "50000000");
  EXPECT_EQ(ErrorOfQuery(*connection, statement(6)).Description(), "[HY001] out of memory");
  EXPECT_EQ(Text(*connection, "select count(*) as N from T"), "3") << "the connection is usable";
}

TEST_F(SqliteFileTest, WhatAStatementTookOfTheHeapIsGivenBack) {
  sqlite::Options options;
  options.heapLimit = 8 << 20;
  sqlite::SqliteDatabase database(File(), options);
  const auto connection = database.Connect("KalvoDB");
  const auto grown = [](int pieces) {  // a text that grows piece by piece, a thousand bytes each
    return "with recursive n(i) as (select 1 union all select i + 1 from n where i < " + std::to_string(pieces) +
           ") select length(group_concat(hex(zeroblob(500)), '')) as L from n";
  };
  for (int i = 0; i < 12; ++i) {
    ASSERT_EQ(Text(*connection, "select length(hex(zeroblob(1000000))) as L"), "2000000") << i;
    ASSERT_EQ(Text(*connection, grown(2000)), "2000000") << i;
  }
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(ErrorOfQuery(*connection, grown(20'000)).Description(), "[HY001] out of memory");
  EXPECT_EQ(Text(*connection, grown(2000)), "2000000") << "what was refused took nothing";
  sqlite::PrepareLibrary();
}

TEST_F(SqliteFileTest, AValueOfMoreThan64MebibytesIsRefused) {
  sqlite::SqliteDatabase database(File());
  const auto connection = database.Connect("KalvoDB");
  EXPECT_EQ(ErrorOfQuery(*connection, "select zeroblob(67108865) as B").Description(),
            "[54000] string or blob too big");
  EXPECT_EQ(Text(*connection, "select length(zeroblob(67108864)) as L"), "67108864");
}

TEST_F(SqliteFileTest, ALibraryIsNotLoaded) {
  sqlite::SqliteDatabase database(File());
  const auto connection = database.Connect("KalvoDB");
  EXPECT_EQ(ErrorOfQuery(*connection, "select load_extension('libm.so.6')").Description().substr(0, 7), "[42501]");
  EXPECT_EQ(ErrorOfQuery(*connection, "select LOAD_EXTENSION('libm.so.6')").Description().substr(0, 7), "[42501]");
  EXPECT_EQ(ErrorOfQuery(*connection, "delete from T").Description().substr(0, 7), "[42501]");
}

// The guard of connections that drivers open, as a driver meets it: a plain connection of SQLite's library.
TEST_F(SqliteFileTest, ADriverMayAskForItsOwnEndsAndNoMore) {
  sqlite::GuardEveryConnection();
  sqlite3* connection = nullptr;
  ASSERT_EQ(sqlite3_open(File().c_str(), &connection), SQLITE_OK);
  for (const char* sql :
       {"begin; commit", "pragma count_changes", "pragma empty_result_callbacks", "pragma encoding",
        "pragma foreign_key_list(T)", "pragma foreign_keys", "pragma full_column_names", "pragma index_info(x)",
        "pragma index_list(T)", "pragma synchronous", "pragma short_column_names", "pragma table_info(T)",
        "pragma table_xinfo(T)", "select upper('x')"}) {
    EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  }
  for (const char* sql : {"pragma journal_mode", "pragma query_only = 0", "pragma writable_schema = 1", "delete from T",
                          "attach 'x.db' as x", "select load_extension('libm.so.6')"}) {
    EXPECT_NE(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
  }
  sqlite3_close(connection);
}

TEST_F(SqliteFileTest, TheLibraryDoesNotCountItsMemoryUnderItsLock) { EXPECT_EQ(sqlite3_memory_used(), 0); }

TEST_F(SqliteFileTest, AConnectionOfOursMayNotEvenWhatADriverMay) {
  sqlite::SqliteDatabase database(File());
  const auto connection = database.Connect("KalvoDB");
  for (const char* sql : {"pragma table_info(T)", "begin", "pragma encoding"}) {
    EXPECT_EQ(ErrorOfQuery(*connection, sql).Description().substr(0, 7), "[42501]") << sql;
  }
}

TEST_F(SqliteFileTest, AStatementHasFifteenSecondsAndAWriterFive) {
  EXPECT_EQ(sqlite::Options().timeLimit, std::chrono::milliseconds(15'000));
  EXPECT_EQ(sqlite::Options().busyTimeout, std::chrono::milliseconds(5000));
  EXPECT_EQ(sqlite::Options().heapLimit, std::size_t{268'435'456});
}

TEST_F(SqliteFileTest, AClosedConnectionOrResultIsAnError) {
  sqlite::SqliteDatabase database(File());
  const auto connection = database.Connect("KalvoDB");
  const std::string two = "select Id from T select 2";
  const auto records = connection->Execute({two, two, ""});
  EXPECT_THROW(records->FieldName(-1), Error);
  EXPECT_THROW(records->FieldName(1), Error);
  EXPECT_EQ(records->FieldName(0), "Id");
  connection->Close();
  EXPECT_EQ(ErrorOfQuery(*connection, "select 1").Description(), "[08003] The connection is closed.");
  EXPECT_EQ(records->GetRows().RowCount(), 3) << "who still reads keeps it open";
  records->Close();
  EXPECT_THROW(records->GetRows(), Error);
  EXPECT_THROW(records->FieldCount(), Error);
  EXPECT_THROW(records->NextRecordset(), Error);
  EXPECT_THROW(records->Close(), Error);
}

TEST_F(SqliteFileTest, ATimestampIsADateToo) {
  sqlite::PrepareLibrary();
  sqlite3* connection = nullptr;
  sqlite3_open(File().c_str(), &connection);
  sqlite3_set_authorizer(connection, nullptr, nullptr);
  sqlite3_exec(connection, "create table S (At TIMESTAMP); insert into S values ('2024-02-03')", nullptr, nullptr,
               nullptr);
  sqlite3_close(connection);
  sqlite::SqliteDatabase database(File());
  EXPECT_EQ(Text(*database.Connect("KalvoDB"), "select At from S"), "2/3/2024");
}

TEST_F(SqliteFileTest, WithoutAnyHeapThereIsNoConnection) {
  sqlite::Options options;
  options.heapLimit = 0;
  sqlite::SqliteDatabase database(File(), options);
  EXPECT_EQ(ErrorOf([&] { database.Connect("KalvoDB"); }).Description(), "[HY001] out of memory");
  sqlite::PrepareLibrary();
}

TEST_F(SqliteFileTest, TheHeapIsLimited) {
  sqlite::Options options;
  options.heapLimit = 8 << 20;
  sqlite::SqliteDatabase database(File(), options);
  const auto connection = database.Connect("KalvoDB");
  const Error error = ErrorOfQuery(*connection, "select length(zeroblob(30000000) || 'x') as L");
  EXPECT_EQ(error.Number(), codes::kFailed);
  EXPECT_EQ(error.Description(), "[HY001] out of memory");
  EXPECT_EQ(Text(*connection, "select count(*) as N from T"), "3") << "the connection is usable";
  sqlite::PrepareLibrary();
}

}  // namespace
}  // namespace kalvo::test
