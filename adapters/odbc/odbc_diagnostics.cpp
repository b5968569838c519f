#include "adapters/odbc/odbc_diagnostics.h"

#include <sqlext.h>

#include "adapters/sql/diagnostics.h"

namespace kalvo::odbc {

Diagnostic FirstDiagnostic(SQLSMALLINT handleType, SQLHANDLE handle) {
  char state[SQL_SQLSTATE_SIZE + 1] = "";
  SQLINTEGER native = 0;
  SQLSMALLINT length = 0;
  std::string text(SQL_MAX_MESSAGE_LENGTH, '\0');
  for (int attempt = 0; attempt < 2; ++attempt) {
    const auto result = SQLGetDiagRec(handleType, handle, 1, reinterpret_cast<SQLCHAR*>(state), &native, Bytes(text),
                                      static_cast<SQLSMALLINT>(text.size()), &length);
    if (!SQL_SUCCEEDED(result)) return {"HY000", "The driver gives no reason."};
    if (static_cast<std::size_t>(length) < text.size()) break;
    text.resize(static_cast<std::size_t>(length) + 1);
  }
  text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
  return {state, text};
}

bool CheckStatement(SQLRETURN result, SQLHSTMT statement) {
  if (result == SQL_NO_DATA) return false;
  if (SQL_SUCCEEDED(result)) return true;
  const Diagnostic diagnostic = FirstDiagnostic(SQL_HANDLE_STMT, statement);
  throw sql::DatabaseError(diagnostic.sqlState, diagnostic.text);
}

void CheckConnection(SQLRETURN result, SQLHDBC connection) {
  if (SQL_SUCCEEDED(result)) return;
  const Diagnostic diagnostic = FirstDiagnostic(SQL_HANDLE_DBC, connection);
  throw sql::ConnectionError(diagnostic.sqlState, diagnostic.text);
}

}  // namespace kalvo::odbc
