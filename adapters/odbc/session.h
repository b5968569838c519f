#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/odbc/handle.h"
#include "adapters/odbc/odbc_database.h"
#include "adapters/odbc/watchdog.h"

namespace kalvo::odbc {

// The databases whose ways differ from what ODBC says.
enum class Engine { Sqlite, PostgreSql, MariaDb, Other };

// An open connection, kept by whoever still reads from it: the `Connection` and its record sets.
class Session {
 public:
  // Opens the data source and makes the connection read-only and its literals safe, where the engine offers it.
  Session(std::shared_ptr<EnvironmentHandle> environment, std::string_view dataSource, const Options& options,
          const Locale& locale);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Engine GetEngine() const { return engine_; }
  const Locale& GetLocale() const { return locale_; }
  std::int32_t WindowRows() const { return options_.windowRows; }
  SQLHDBC Get() const { return connection_.Get(); }

  // A text that the driver tells of itself or of the server, by its number: "" when it does not.
  std::string Info(SQLUSMALLINT what) const;

  // From now on every statement sees the database as it is at the next one; a snapshot that was there is ended.
  void BeginSnapshot();

  // Runs a step that waits for the database, for no longer than the time limit.
  template <typename Step>
  void Limited(SQLHSTMT statement, Step&& step) {
    const Watchdog::Watch watch(watchdog_, statement, options_.timeLimit, options_.isWanted);
    try {
      step();
    } catch (const Error&) {
      if (watch.Fired()) ThrowTimeout();
      throw;
    }
  }

 private:
  [[noreturn]] void ThrowTimeout() const;
  Engine FindEngine() const;
  void SetUp();
  void Run(std::string_view statement);

  const Options options_;
  const Locale& locale_;
  std::shared_ptr<EnvironmentHandle> environment_;
  ConnectionHandle connection_;
  Engine engine_ = Engine::Other;
  bool inSnapshot_ = false;
  Watchdog watchdog_;
};

}  // namespace kalvo::odbc
