#pragma once

#include <string_view>

#include "kalvo/platform/error.h"

namespace kalvo::sql {

// The error for what a database reports while it runs a statement. The number follows from the SQLSTATE and,
// where a driver has HY000 for everything, from the text: 0x80040E37 for an unknown table, 0x80040E14 for a
// syntax error, an unknown column and the like, 0x80004005 for the rest. The description is "[SQLSTATE] text" in
// one line, with ‹ and › for angle brackets.
Error DatabaseError(std::string_view sqlState, std::string_view text);

// The error of a connection that cannot be made or kept: 0x80004005, whatever the SQLSTATE.
Error ConnectionError(std::string_view sqlState, std::string_view text);

// A statement that was stopped at its deadline: "[HYT00] ...".
Error TimeoutError(double seconds);
bool IsTimeout(const Error& error);

}  // namespace kalvo::sql
