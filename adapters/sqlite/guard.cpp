#include "adapters/sqlite/guard.h"

#include <sqlite3.h>

#include <algorithm>
#include <string_view>

namespace kalvo::sqlite {

namespace {

// What a driver asks of a connection for its own ends. None of them writes or undoes a protection.
constexpr std::string_view kDriverPragmas[] = {
    "count_changes", "empty_result_callbacks", "encoding",   "foreign_key_list",
    "foreign_keys",  "full_column_names",      "index_info", "index_list",
    "synchronous",   "short_column_names",     "table_info", "table_xinfo",
};

bool Reads(int action, const char* function) {
  switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_RECURSIVE: return true;
    case SQLITE_FUNCTION: return !function || sqlite3_stricmp(function, "load_extension") != 0;
    default: return false;
  }
}

bool BelongsToDriver(int action, const char* pragma) {
  if (action == SQLITE_TRANSACTION) return true;
  return action == SQLITE_PRAGMA && pragma &&
         std::find(std::begin(kDriverPragmas), std::end(kDriverPragmas), pragma) != std::end(kDriverPragmas);
}

extern "C" int KalvoAuthorizeReading(void*, int action, const char*, const char* second, const char*, const char*) {
  return Reads(action, second) ? SQLITE_OK : SQLITE_DENY;
}

extern "C" int KalvoAuthorizeDriver(void*, int action, const char* first, const char* second, const char*,
                                    const char*) {
  return Reads(action, second) || BelongsToDriver(action, first) ? SQLITE_OK : SQLITE_DENY;
}

extern "C" int KalvoGuardConnection(sqlite3* connection, const char**, const sqlite3_api_routines*) {
  return sqlite3_set_authorizer(connection, KalvoAuthorizeDriver, nullptr);
}

}  // namespace

void AllowReadingOnly(sqlite3* connection) { sqlite3_set_authorizer(connection, KalvoAuthorizeReading, nullptr); }

void GuardEveryConnection() { sqlite3_auto_extension(reinterpret_cast<void (*)()>(KalvoGuardConnection)); }

}  // namespace kalvo::sqlite
