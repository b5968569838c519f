#include "adapters/sqlite/connection.h"

#include "adapters/sql/diagnostics.h"
#include "adapters/sql/report_record_set.h"
#include "adapters/sql/shape.h"
#include "adapters/sqlite/guard.h"
#include "adapters/sqlite/sqlite_diagnostics.h"
#include "adapters/sqlite/sqlite_record_set.h"

namespace kalvo::sqlite {

namespace {

constexpr int kStepsBetweenLooks = 1000;  // of SQLite's machine, between two looks at the deadline
constexpr int kLongestValue = 64 << 20;   // in bytes; longer ones fail
constexpr int kOpenFlags = SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE;

void Harden(sqlite3* connection) {
  sqlite3_db_config(connection, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
  sqlite3_db_config(connection, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
  sqlite3_limit(connection, SQLITE_LIMIT_LENGTH, kLongestValue);
  AllowReadingOnly(connection);
}

class Runner final : public sql::ReportRunner {
 public:
  explicit Runner(std::shared_ptr<Session> session) : session_(std::move(session)) {}

  sql::NullOrder Nulls() const override { return sql::NullOrder::First; }
  std::int32_t WindowRows() const override { return session_->WindowRows(); }

 private:
  void BeginSnapshot() override { session_->BeginSnapshot(); }
  std::int32_t CountColumns(const std::string& statement) override {
    return sqlite3_column_count(session_->Prepare(statement).get());
  }
  std::unique_ptr<RecordSet> Run(const std::string& statement) override {
    return std::make_unique<SqliteRecordSet>(session_, sql::StatementQueue({statement}));
  }

  const std::shared_ptr<Session> session_;
};

}  // namespace

Session::Session(const std::string& file, const Options& options, const Locale& locale)
    : options_(options), locale_(locale) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(file.c_str(), &opened, kOpenFlags, nullptr);
  connection_.reset(opened);
  if (!opened) throw sql::ConnectionError("HY001", "out of memory");
  if (result != SQLITE_OK) throw LastError(opened);
  sqlite3_busy_timeout(opened, static_cast<int>(options_.busyTimeout.count()));
  sqlite3_progress_handler(opened, kStepsBetweenLooks, &Session::Progress, this);
  Harden(opened);
  ReadOnce();
}

// SQLite looks into the file no sooner than at the first statement; whether it is a database belongs to opening it.
void Session::ReadOnce() {
  StartTimeLimit();
  const Statement statement = Prepare("select count(*) from sqlite_schema");
  Step(statement.get());
}

// A transaction is nothing that the guard allows; nothing of a page's runs while it is lifted.
bool Session::RunUnguarded(const char* sql) {
  sqlite3* connection = connection_.get();
  sqlite3_set_authorizer(connection, nullptr, nullptr);
  const bool done = sqlite3_exec(connection, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
  AllowReadingOnly(connection);
  return done;
}

bool Session::EndSnapshot() { return sqlite3_get_autocommit(connection_.get()) != 0 || RunUnguarded("rollback"); }

void Session::BeginSnapshot() {
  if (!EndSnapshot() || !RunUnguarded("begin")) throw LastError(connection_.get());
}

bool Session::CanRead() {
  try {
    ReadOnce();
    return true;
  } catch (const Error&) {
    return false;
  }
}

// A statement that is not at its end, or a transaction, would hold back whoever writes the file.
bool Session::Rest() { return !sqlite3_next_stmt(connection_.get(), nullptr) && EndSnapshot(); }

Statement Session::Prepare(std::string_view sql) {
  sqlite3_stmt* prepared = nullptr;
  const auto size = static_cast<int>(sql.size());
  if (sqlite3_prepare_v2(connection_.get(), sql.data(), size, &prepared, nullptr) != SQLITE_OK) {
    throw LastError(connection_.get());
  }
  if (!prepared) throw sql::DatabaseError("42000", "The statement is empty.");
  return Statement(prepared);
}

bool Session::Step(sqlite3_stmt* statement) {
  const int result = sqlite3_step(statement);
  if (result == SQLITE_ROW) return true;
  if (result == SQLITE_DONE) return false;
  if (result == SQLITE_INTERRUPT) throw sql::TimeoutError(std::chrono::duration<double>(options_.timeLimit).count());
  throw LastError(connection_.get());
}

int Session::Progress(void* session) {
  const auto& self = *static_cast<Session*>(session);
  return Clock::now() > self.deadline_ || (self.options_.isWanted && !self.options_.isWanted());
}

std::unique_ptr<RecordSet> SqliteConnection::Execute(const Batch& batch) {
  if (!session_) throw sql::ConnectionError("08003", "The connection is closed.");
  const sql::StatementQueue statements(sql::CheckedStatements(batch));
  if (!batch.readInPages) return std::make_unique<SqliteRecordSet>(session_, statements);
  return std::make_unique<sql::ReportRecordSet>(std::make_shared<Runner>(session_), statements, batch.firstRow);
}

}  // namespace kalvo::sqlite
