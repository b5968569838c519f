#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "adapters/sql/windowed_rows.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/locale.h"

namespace kalvo::odbc {

template <short Type>
class Handle;
class Session;

struct Options {
  std::chrono::milliseconds timeLimit{15000};   // for running one statement, and for fetching its rows
  std::chrono::milliseconds loginLimit{10000};  // for connecting, where the driver obeys
  std::function<bool()> isWanted{};             // asked while a statement runs, on another thread; false stops it
  bool unknownEngines = false;                  // whether a database is taken that cannot be told to read only
  std::int32_t windowRows = sql::kWindowRows;   // of a report that are fetched at a time
};

// The reporting database behind an ODBC data source. Where sources lie is the ODBC configuration's business
// (`ODBCINI`, `ODBCSYSINI`, the system's files). Each connection is used by one thread at a time; any number of
// them may be open. Nothing is opened before the first `Connect`, so a process may fork before that.
class OdbcDatabase final : public Database {
 public:
  // `locale` outlives the database.
  explicit OdbcDatabase(const Options& options = {}, const Locale& locale = kEnglishUnitedStates);
  ~OdbcDatabase() override;

  // A connection that only reads, where the database offers that: SQLite under the guard, PostgreSQL and MariaDB
  // in read-only transactions. Any other is refused unless the options take it. Fails with 0x80004005.
  std::unique_ptr<Connection> Connect(std::string_view dataSource) override;

  // The driver of a data source and the server behind it, each with its version, as the driver names them:
  // "psqlodbcw.so 13.02.0000 for PostgreSQL 15.0.5". Opens a connection and fails as `Connect` does.
  std::string DescribeDriver(std::string_view dataSource);

 private:
  std::shared_ptr<Session> Open(std::string_view dataSource);
  void MakeEnvironment();

  Options options_;
  const Locale& locale_;
  std::mutex mutex_;
  std::shared_ptr<Handle<1>> environment_;  // a SQL_HANDLE_ENV, made by the first connection
};

}  // namespace kalvo::odbc
