#include "adapters/sqlite/sqlite_database.h"

#include <sqlite3.h>

#include "adapters/sqlite/connection.h"

namespace kalvo::sqlite {

SqliteDatabase::SqliteDatabase(std::string file, const Options& options, const Locale& locale)
    : file_(std::move(file)), options_(options), locale_(locale) {
  PrepareLibrary(options.heapLimit);
}

std::unique_ptr<Connection> SqliteDatabase::Connect(std::string_view) {
  return std::make_unique<SqliteConnection>(std::make_shared<Session>(file_, options_, locale_));
}

std::string SqliteDatabase::DescribeDriver() { return std::string("SQLite ") + sqlite3_libversion(); }

}  // namespace kalvo::sqlite
