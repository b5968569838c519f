#include "adapters/database/test_engine.h"

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>

#include "adapters/odbc/odbc_database.h"
#include "adapters/sqlite/heap.h"
#include "adapters/sqlite/sqlite_database.h"
#include "support/mariadb_server.h"
#include "support/odbc_data_source.h"
#include "support/postgres_server.h"

// MariaDB's driver is at odds with itself while one thread cancels what another waits for.
extern "C" const char* __tsan_default_suppressions() { return "race:libmaodbc.so\nmutex:libmaodbc.so\n"; }

namespace kalvo::test {

namespace {

// Rows of numbers from 1, for results of many rows and for queries that take long.
constexpr int kNumbers = 1000;

OdbcDataSources& Sources() {
  static OdbcDataSources sources;
  return sources;
}

// A SQLite file, written past the guard that the ODBC adapter puts on every connection of the process.
class SqliteFile {
 public:
  std::filesystem::path Path() const { return folder_.Path() / "reports.db"; }

  void Execute(const std::string& sql) const {
    sqlite3* connection = nullptr;
    sqlite3_open(Path().c_str(), &connection);
    sqlite3_set_authorizer(connection, nullptr, nullptr);
    const int result = sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
    const std::string message = sqlite3_errmsg(connection);
    sqlite3_close(connection);
    if (result != SQLITE_OK) throw std::runtime_error(message + " in " + sql);
  }

  int TimesOpen() const {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
      std::error_code ignored;
      if (std::filesystem::read_symlink(entry.path(), ignored) == Path()) ++count;
    }
    return count;
  }

 private:
  TemporaryFolder folder_;
};

void FillNumbers(TestEngine& engine) {
  std::string sql = "create table Numbers (Id integer not null primary key); insert into Numbers values (1)";
  for (int i = 2; i <= kNumbers; ++i) sql += ",(" + std::to_string(i) + ")";
  engine.Execute(sql + ";");
}

class OnSqliteFile : public TestEngine {
 public:
  OnSqliteFile() {
    sqlite::PrepareLibrary();
    dateTimeType = "datetime";
    longTextType = "text";
    bytesType = "blob";
    bytesLiteral = "x'00010203FCFDFEFF'";
    FillNumbers(*this);
  }

  void Execute(const std::string& sql) override { file_.Execute(sql); }
  int OpenConnections() override { return file_.TimesOpen(); }

 protected:
  std::unique_ptr<Database> OpenFile(std::chrono::milliseconds timeLimit, std::function<bool()> isWanted) {
    sqlite::Options options;
    options.isWanted = std::move(isWanted);
    options.timeLimit = timeLimit;
    return std::make_unique<sqlite::SqliteDatabase>(file_.Path(), options);
  }

  SqliteFile file_;
};

std::unique_ptr<Database> OpenOdbc(std::chrono::milliseconds timeLimit, std::function<bool()> isWanted) {
  odbc::Options options;
  options.isWanted = std::move(isWanted);
  options.timeLimit = timeLimit;
  return std::make_unique<odbc::OdbcDatabase>(options);
}

class DirectSqlite final : public OnSqliteFile {
 public:
  DirectSqlite() { dataSource = "KalvoDB"; }
  std::unique_ptr<Database> Open(std::chrono::milliseconds timeLimit, std::function<bool()> isWanted) override {
    return OpenFile(timeLimit, std::move(isWanted));
  }
};

class OdbcSqlite final : public OnSqliteFile {
 public:
  OdbcSqlite() {
    dataSource = "KalvoOnSqlite";
    Sources().Add(dataSource, OdbcDataSources::Sqlite(file_.Path()));
  }
  std::unique_ptr<Database> Open(std::chrono::milliseconds timeLimit, std::function<bool()> isWanted) override {
    return OpenOdbc(timeLimit, std::move(isWanted));
  }
};

class OdbcPostgres final : public TestEngine {
 public:
  OdbcPostgres() {
    dataSource = "KalvoOnPostgres";
    dateTimeType = "timestamp";
    longTextType = "text";
    bytesType = "bytea";
    bytesLiteral = "'\\x00010203FCFDFEFF'";
    Sources().Add(dataSource, server_.DataSource());
    FillNumbers(*this);
  }

  void Execute(const std::string& sql) override { server_.Execute(sql); }
  std::unique_ptr<Database> Open(std::chrono::milliseconds timeLimit, std::function<bool()> isWanted) override {
    return OpenOdbc(timeLimit, std::move(isWanted));
  }

  // Counted from a connection of its own, which is left out.
  int OpenConnections() override {
    return std::stoi(
        FirstText(*Connect(*this), "select count(*) - 1 from pg_stat_activity where backend_type = 'client backend'"));
  }

 private:
  PostgresServer server_;
};

class OdbcMariaDb final : public TestEngine {
 public:
  OdbcMariaDb() {
    dataSource = "KalvoOnMariaDb";
    dateTimeType = "datetime";
    longTextType = "longtext";
    bytesType = "varbinary(16)";
    bytesLiteral = "x'00010203FCFDFEFF'";
    Sources().Add(dataSource, server_.DataSource());
    FillNumbers(*this);
  }

  void Execute(const std::string& sql) override { server_.Execute(sql); }
  std::unique_ptr<Database> Open(std::chrono::milliseconds timeLimit, std::function<bool()> isWanted) override {
    return OpenOdbc(timeLimit, std::move(isWanted));
  }

  int OpenConnections() override {
    return std::stoi(
        FirstText(*Connect(*this), "select count(*) - 1 from information_schema.processlist where user = 'kalvo'"));
  }

 private:
  MariaDbServer server_;
};

template <typename Engine>
TestEngine& Only() {
  Sources();  // before the engine, so that it ends after it
  static Engine engine;
  return engine;
}

// A connection together with the database that made it.
class OwningConnection final : public Connection {
 public:
  OwningConnection(std::unique_ptr<Database> database, const std::string& dataSource)
      : database_(std::move(database)), connection_(database_->Connect(dataSource)) {}

  std::unique_ptr<RecordSet> Execute(const Batch& batch) override { return connection_->Execute(batch); }
  void Close() override { connection_->Close(); }

 private:
  std::unique_ptr<Database> database_;
  std::unique_ptr<Connection> connection_;
};

}  // namespace

TestEngine& SqliteEngine() { return Only<DirectSqlite>(); }
TestEngine& OdbcSqliteEngine() { return Only<OdbcSqlite>(); }
TestEngine& OdbcPostgresEngine() { return Only<OdbcPostgres>(); }
TestEngine& OdbcMariaDbEngine() { return Only<OdbcMariaDb>(); }

std::unique_ptr<Connection> Connect(TestEngine& engine, std::chrono::milliseconds timeLimit,
                                    std::function<bool()> isWanted) {
  return std::make_unique<OwningConnection>(engine.Open(timeLimit, std::move(isWanted)), engine.dataSource);
}

std::unique_ptr<RecordSet> Query(Connection& connection, const std::string& sql) {
  return connection.Execute({sql, sql, ""});
}

std::string TextOf(RecordSet& records, int field, int row) {
  std::string scratch;
  return std::string(records.GetRows().Text(field, row, scratch));
}

std::string FirstText(Connection& connection, const std::string& sql) { return TextOf(*Query(connection, sql), 0, 0); }

}  // namespace kalvo::test
