#pragma once

#include <sql.h>

#include <string>

namespace kalvo::odbc {

// What a handle's last call reported first.
struct Diagnostic {
  std::string sqlState;
  std::string text;
};

Diagnostic FirstDiagnostic(SQLSMALLINT handleType, SQLHANDLE handle);

// Passes a call's success on: true with data, false at the end of it. A failure of a statement or of a connection
// is thrown.
bool CheckStatement(SQLRETURN result, SQLHSTMT statement);
void CheckConnection(SQLRETURN result, SQLHDBC connection);

// The bytes of a text for the calls of ODBC, which take them without const.
inline SQLCHAR* Bytes(const std::string& text) { return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.data())); }

}  // namespace kalvo::odbc
