#pragma once

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include "adapters/sqlite/sqlite_database.h"

namespace kalvo::sqlite {

struct CloseConnection {
  void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
};

struct FinalizeStatement {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

// An open connection, kept by whoever still reads from it: the `Connection` and its record sets.
class Session {
 public:
  Session(const std::string& file, const Options& options, const Locale& locale);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  Statement Prepare(std::string_view sql);

  // Moves to the next row; false at the end.
  bool Step(sqlite3_stmt* statement);

  // From now on every statement sees the file as it is at the next one.
  void BeginSnapshot();

  // Whether the file can still be read: asked of a session that was kept.
  bool CanRead();

  // Ends what the last user left behind. False when the session cannot be used again.
  bool Rest();

  // From now on the time limit runs again.
  void StartTimeLimit() { deadline_ = Clock::now() + options_.timeLimit; }

  const Locale& GetLocale() const { return locale_; }
  std::int32_t WindowRows() const { return options_.windowRows; }

 private:
  using Clock = std::chrono::steady_clock;

  static int Progress(void* session);
  void ReadOnce();
  bool RunUnguarded(const char* sql);
  bool EndSnapshot();

  const Options options_;
  const Locale& locale_;
  Clock::time_point deadline_;
  std::unique_ptr<sqlite3, CloseConnection> connection_;
};

class SqliteConnection final : public Connection {
 public:
  explicit SqliteConnection(std::shared_ptr<Session> session) : session_(std::move(session)) {}

  std::unique_ptr<RecordSet> Execute(const Batch& batch) override;
  void Close() override { session_.reset(); }

 private:
  std::shared_ptr<Session> session_;
};

}  // namespace kalvo::sqlite
