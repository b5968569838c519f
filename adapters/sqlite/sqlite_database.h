#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "adapters/sql/windowed_rows.h"
#include "adapters/sqlite/heap.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/locale.h"

namespace kalvo::sqlite {

class SessionKeeper;

struct Options {
  std::chrono::milliseconds timeLimit{15000};   // for running one statement, and for fetching its rows
  std::chrono::milliseconds busyTimeout{5000};  // how long a writer of the file is waited for
  std::size_t heapLimit = kHeapLimit;           // of all of the process's SQLite connections together
  std::function<bool()> isWanted{};             // asked while a statement runs; false stops it as a deadline does
  std::int32_t windowRows = sql::kWindowRows;   // of a report that are fetched at a time
};

// The reporting database in one SQLite file. Every data source name opens this file, read-only, on a connection
// that reads and calls plain functions and nothing else. A file that is missing or is none of SQLite's fails with
// 0x80004005; none is ever created. A connection is used by one thread at a time. The last one that was let go stays
// open for whoever connects next, as long as the path names the same file.
class SqliteDatabase final : public Database {
 public:
  // `file` is a path. `locale` outlives the database.
  explicit SqliteDatabase(std::string file, const Options& options = {}, const Locale& locale = kEnglishUnitedStates);

  std::unique_ptr<Connection> Connect(std::string_view dataSource) override;

  // SQLite's own library with its version: "SQLite 3.40.1".
  static std::string DescribeDriver();

 private:
  std::shared_ptr<SessionKeeper> sessions_;
};

}  // namespace kalvo::sqlite
