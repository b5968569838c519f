#include "adapters/sqlite/sqlite_database.h"

#include <sqlite3.h>

#include "adapters/sqlite/connection.h"
#include "adapters/sqlite/session_keeper.h"

namespace kalvo::sqlite {

SqliteDatabase::SqliteDatabase(std::string file, const Options& options, const Locale& locale)
    : sessions_(std::make_shared<SessionKeeper>(std::move(file), options, locale)) {
  PrepareLibrary(options.heapLimit);
}

std::unique_ptr<Connection> SqliteDatabase::Connect(std::string_view) {
  return std::make_unique<SqliteConnection>(sessions_->Take());
}

std::string SqliteDatabase::DescribeDriver() { return std::string("SQLite ") + sqlite3_libversion(); }

}  // namespace kalvo::sqlite
