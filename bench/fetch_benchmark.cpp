// Fetches the same 100 000 rows through each adapter and, beside it, through a bare loop over the same client
// library that looks at every value and keeps none. Ends with the adapter's time as a multiple of the loop's.

#include <benchmark/benchmark.h>
#include <sql.h>
#include <sqlext.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>

#include "adapters/odbc/odbc_database.h"
#include "adapters/sqlite/heap.h"
#include "adapters/sqlite/sqlite_database.h"

namespace kalvo {
namespace {

constexpr int kRows = 100'000;
constexpr int kFields = 8;
constexpr const char* kDataSource = "KalvoFetch";
constexpr std::string_view kQuery = "select Id, Name, Site, Large, Ratio, Moment, Flag, Note from Facts order by Id";

// A SQLite file with the rows, an ODBC data source that is the file, both removed at the end.
class Facts {
 public:
  Facts() {
    std::string name = (std::filesystem::temp_directory_path() / "kalvo-bench-XXXXXX").string();
    if (!mkdtemp(name.data())) throw std::runtime_error("no temporary folder");
    folder_ = name;
    sqlite::PrepareLibrary();
    Fill();
    std::ofstream(folder_ / "odbc.ini") << "[" << kDataSource << "]\nDriver=SQLite3\nDatabase=" << File() << "\n";
    setenv("ODBCINI", (folder_ / "odbc.ini").c_str(), 1);
  }
  ~Facts() { std::filesystem::remove_all(folder_); }

  std::string File() const { return folder_ / "facts.db"; }

 private:
  void Fill() const {
    sqlite3* connection = nullptr;
    sqlite3_open(File().c_str(), &connection);
    const std::string sql =
        "create table Facts (Id integer primary key, Name varchar(60), Site varchar(60), Large bigint, Ratio double,"
        " Moment datetime, Flag smallint, Note varchar(120));"
        "with recursive N(i) as (select 1 union all select i + 1 from N where i < " +
        std::to_string(kRows) +
        ") insert into Facts select i, 'MAIL' || (i % 1000), 'Site number ' || (i % 40), i * 1000003, i / 7.0,"
        " datetime('2024-01-01', '+' || i || ' minutes'), i % 2, 'A remark of some length on row ' || i from N;";
    const int result = sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
    sqlite3_close(connection);
    if (result != SQLITE_OK) throw std::runtime_error("the rows cannot be made");
  }

  std::filesystem::path folder_;
};

const Facts& TheFacts() {
  static const Facts facts;
  return facts;
}

void CountRows(benchmark::State& state) {
  state.SetItemsProcessed(state.iterations() * kRows);
  state.SetLabel("rows");
}

void FetchThrough(benchmark::State& state, Database& database) {
  const auto connection = database.Connect(kDataSource);
  for (auto _ : state) {
    const auto records = connection->Execute({kQuery, kQuery, ""});
    if (records->GetRows().RowCount() != kRows) throw std::runtime_error("rows are missing");
  }
  CountRows(state);
}

void SqliteAdapter(benchmark::State& state) {
  sqlite::SqliteDatabase database(TheFacts().File());
  FetchThrough(state, database);
}

void SqliteBareLoop(benchmark::State& state) {
  sqlite3* connection = nullptr;
  sqlite3_open_v2(TheFacts().File().c_str(), &connection, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
  for (auto _ : state) {
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(connection, kQuery.data(), static_cast<int>(kQuery.size()), &statement, nullptr);
    int rows = 0;
    for (; sqlite3_step(statement) == SQLITE_ROW; ++rows) {
      for (int i = 0; i < kFields; ++i) {
        const int type = sqlite3_column_type(statement, i);
        if (type == SQLITE_INTEGER) {
          benchmark::DoNotOptimize(sqlite3_column_int64(statement, i));
        } else if (type == SQLITE_FLOAT) {
          benchmark::DoNotOptimize(sqlite3_column_double(statement, i));
        } else {
          benchmark::DoNotOptimize(sqlite3_column_text(statement, i));
          benchmark::DoNotOptimize(sqlite3_column_bytes(statement, i));
        }
      }
    }
    sqlite3_finalize(statement);
    if (rows != kRows) throw std::runtime_error("rows are missing");
  }
  sqlite3_close(connection);
  CountRows(state);
}

void OdbcAdapter(benchmark::State& state) {
  TheFacts();
  odbc::OdbcDatabase database;
  FetchThrough(state, database);
}

void OdbcBareLoop(benchmark::State& state) {
  TheFacts();
  SQLHENV environment = nullptr;
  SQLHDBC connection = nullptr;
  SQLAllocHandle(SQL_HANDLE_ENV, nullptr, &environment);
  SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  SQLAllocHandle(SQL_HANDLE_DBC, environment, &connection);
  std::string source = std::string("DSN=") + kDataSource;
  SQLDriverConnect(connection, nullptr, reinterpret_cast<SQLCHAR*>(source.data()), SQL_NTS, nullptr, 0, nullptr,
                   SQL_DRIVER_NOPROMPT);
  std::string query(kQuery);
  for (auto _ : state) {
    SQLHSTMT statement = nullptr;
    SQLAllocHandle(SQL_HANDLE_STMT, connection, &statement);
    SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(query.data()), SQL_NTS);
    int rows = 0;
    for (; SQL_SUCCEEDED(SQLFetch(statement)); ++rows) {
      for (SQLUSMALLINT i = 1; i <= kFields; ++i) {
        char value[256];
        SQLLEN length = 0;
        SQLGetData(statement, i, SQL_C_CHAR, value, sizeof value, &length);
        benchmark::DoNotOptimize(value);
      }
    }
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    if (rows != kRows) throw std::runtime_error("rows are missing");
  }
  SQLDisconnect(connection);
  SQLFreeHandle(SQL_HANDLE_DBC, connection);
  SQLFreeHandle(SQL_HANDLE_ENV, environment);
  CountRows(state);
}

void InTurns(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kMillisecond)->Repetitions(3)->DisplayAggregatesOnly();
}

BENCHMARK(SqliteBareLoop)->Apply(InTurns);
BENCHMARK(SqliteAdapter)->Apply(InTurns);
BENCHMARK(OdbcBareLoop)->Apply(InTurns);
BENCHMARK(OdbcAdapter)->Apply(InTurns);

// Prints the runs as usual and remembers their median processor times for the ratios.
class Reporter final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.aggregate_name == "median") times_[run.run_name.function_name] = run.GetAdjustedCPUTime();
    }
    ConsoleReporter::ReportRuns(runs);
  }

  void PrintRatio(const char* adapter, const char* loop) const {
    const auto above = times_.find(adapter), below = times_.find(loop);
    if (above == times_.end() || below == times_.end()) return;
    std::printf("%s takes %.2f times %s\n", adapter, above->second / below->second, loop);
  }

 private:
  std::map<std::string, double> times_;
};

}  // namespace
}  // namespace kalvo

int main(int count, char** arguments) {
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 1;
  kalvo::Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatio("SqliteAdapter", "SqliteBareLoop");
  reporter.PrintRatio("OdbcAdapter", "OdbcBareLoop");
}
