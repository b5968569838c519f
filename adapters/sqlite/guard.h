#pragma once

struct sqlite3;

namespace kalvo::sqlite {

// From now on the connection reads and calls plain functions, and nothing else: no write, no pragma, no second
// file, no loaded library.
void AllowReadingOnly(sqlite3* connection);

// Does the like for every connection that anything in the process opens after the call, by whatever driver. The
// pragmas and the transactions that such a driver itself needs stay allowed. Safe to call more than once. Whoever
// writes SQLite files in the same process lifts the guard with `sqlite3_set_authorizer(connection, nullptr, nullptr)`.
void GuardEveryConnection();

}  // namespace kalvo::sqlite
