#pragma once

#include "kalvo/platform/error.h"

struct sqlite3;

namespace kalvo::sqlite {

// The error of the connection's last failed call, with the SQLSTATE that fits it.
Error LastError(sqlite3* connection);

}  // namespace kalvo::sqlite
