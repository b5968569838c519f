#include "adapters/sqlite/sqlite_diagnostics.h"

#include <sqlite3.h>

#include <string_view>

#include "adapters/sql/diagnostics.h"

namespace kalvo::sqlite {

namespace {

struct StateOfText {
  std::string_view text;  // the beginning of SQLite's message
  std::string_view sqlState;
};

struct StateOfCode {
  int code;
  std::string_view sqlState;
};

// clang-format off
constexpr StateOfText kTexts[] = {
  {"no such table",    "42S02"},
  {"no such column",   "42S22"},
  {"not authorized",   "42501"},
};
constexpr StateOfCode kCodes[] = {
  {SQLITE_ERROR,     "42000"},   // the SQL is wrong
  {SQLITE_AUTH,      "42501"},
  {SQLITE_READONLY,  "25006"},
  {SQLITE_NOMEM,     "HY001"},
  {SQLITE_TOOBIG,    "54000"},
  {SQLITE_CANTOPEN,  "08001"},
  {SQLITE_NOTADB,    "08001"},
};
// clang-format on

std::string_view StateOf(int code, std::string_view text) {
  for (const auto& row : kTexts) {
    if (text.starts_with(row.text)) return row.sqlState;
  }
  for (const auto& row : kCodes) {
    if (row.code == code) return row.sqlState;
  }
  return "HY000";
}

}  // namespace

Error LastError(sqlite3* connection) {
  const std::string_view text = sqlite3_errmsg(connection);
  const std::string_view state = StateOf(sqlite3_errcode(connection) & 0xff, text);
  return state.starts_with("08") ? sql::ConnectionError(state, text) : sql::DatabaseError(state, text);
}

}  // namespace kalvo::sqlite
