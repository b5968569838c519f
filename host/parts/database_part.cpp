#include "host/parts/database_part.h"

#include <chrono>
#include <string>

#include "host/parts/parts.h"
#include "host/parts/setting_error.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"
#include "kalvo/table_constants.h"

#ifdef KALVO_HAS_SQLITE
#include "adapters/sqlite/sqlite_database.h"
#endif
#ifdef KALVO_HAS_ODBC
#include "adapters/odbc/odbc_database.h"
#endif

namespace kalvo::host {
namespace {

#if defined(KALVO_HAS_SQLITE) || defined(KALVO_HAS_ODBC)
// Both adapters name what ends a statement alike.
template <typename Options>
Options WithLimit(double seconds, std::function<bool()> isWanted) {
  Options options;
  options.isWanted = std::move(isWanted);
  options.timeLimit = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
  return options;
}
#endif

}  // namespace

std::unique_ptr<Database> MakeDatabase(const PartsSettings& settings, [[maybe_unused]] double secondsPerStatement,
                                       [[maybe_unused]] const Locale& locale,
                                       [[maybe_unused]] std::function<bool()> isWanted) {
  const std::string_view where = settings.database;
  if (const std::string_view file = PathBehind(kSqlite, where); !file.empty()) {
#ifdef KALVO_HAS_SQLITE
    return std::make_unique<sqlite::SqliteDatabase>(
        std::string(file), WithLimit<sqlite::Options>(secondsPerStatement, std::move(isWanted)), locale);
#else
    throw SettingError("this build has no adapter for SQLite");
#endif
  }
  if (where == kOdbc) {
#ifdef KALVO_HAS_ODBC
    auto options = WithLimit<odbc::Options>(secondsPerStatement, std::move(isWanted));
    options.unknownEngines = settings.unknownEngine;
    return std::make_unique<odbc::OdbcDatabase>(options, locale);
#else
    throw SettingError("this build has no adapter for ODBC");
#endif
  }
  throw SettingError("\"" + std::string(where) + "\" is not a reporting database; sqlite:FILE or odbc is");
}

std::string DescribeDriver([[maybe_unused]] Database& database) {
#ifdef KALVO_HAS_SQLITE
  if (dynamic_cast<sqlite::SqliteDatabase*>(&database)) return sqlite::SqliteDatabase::DescribeDriver();
#endif
#ifdef KALVO_HAS_ODBC
  if (auto* odbc = dynamic_cast<odbc::OdbcDatabase*>(&database)) {
    try {
      return odbc->DescribeDriver(TableConstants().TABLES_DSN());
    } catch (const Error&) {  // whoever opens the source next is told why it cannot be
    }
  }
#endif
  return {};
}

}  // namespace kalvo::host
