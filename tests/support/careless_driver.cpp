// An ODBC driver for a database that nobody knows and that takes every statement. It holds no data and changes none.
// A statement with the word "recursive" never ends, cancelled or not, where the data source says `Stubborn=1`.

#include <odbcinst.h>
#include <sqlext.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace {

int handle;  // whatever a handle points to
bool stubborn = false;

void Tell(SQLPOINTER out, SQLSMALLINT room, SQLSMALLINT* length, const char* text) {
  if (out && room > 0) {
    std::strncpy(static_cast<char*>(out), text, static_cast<std::size_t>(room) - 1);
    static_cast<char*>(out)[room - 1] = '\0';
  }
  if (length) *length = static_cast<SQLSMALLINT>(std::strlen(text));
}

}  // namespace

extern "C" {

SQLRETURN SQL_API SQLAllocHandle(SQLSMALLINT, SQLHANDLE, SQLHANDLE* made) {
  *made = &handle;
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLFreeHandle(SQLSMALLINT, SQLHANDLE) { return SQL_SUCCESS; }
SQLRETURN SQL_API SQLSetEnvAttr(SQLHENV, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }
SQLRETURN SQL_API SQLSetConnectAttr(SQLHDBC, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }
SQLRETURN SQL_API SQLSetStmtAttr(SQLHSTMT, SQLINTEGER, SQLPOINTER, SQLINTEGER) { return SQL_SUCCESS; }
SQLRETURN SQL_API SQLGetStmtAttr(SQLHSTMT, SQLINTEGER, SQLPOINTER out, SQLINTEGER, SQLINTEGER*) {
  *static_cast<SQLPOINTER*>(out) = &handle;
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLDriverConnect(SQLHDBC, SQLHWND, SQLCHAR*, SQLSMALLINT, SQLCHAR*, SQLSMALLINT, SQLSMALLINT*,
                                   SQLUSMALLINT) {
  char value[8] = "";
  SQLGetPrivateProfileString("KalvoDB", "Stubborn", "", value, sizeof value, "odbc.ini");
  stubborn = value[0] == '1';
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLDisconnect(SQLHDBC) { return SQL_SUCCESS; }
SQLRETURN SQL_API SQLGetInfo(SQLHDBC, SQLUSMALLINT what, SQLPOINTER out, SQLSMALLINT room, SQLSMALLINT* length) {
  Tell(out, room, length, what == SQL_DBMS_NAME ? "Careless" : what == SQL_DRIVER_ODBC_VER ? "03.52" : "1.0");
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLExecDirect(SQLHSTMT, SQLCHAR* text, SQLINTEGER length) {
  const std::string sql(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
  while (stubborn && sql.find("recursive") != sql.npos) usleep(100'000);
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLNumResultCols(SQLHSTMT, SQLSMALLINT* count) {
  *count = 0;
  return SQL_SUCCESS;
}
SQLRETURN SQL_API SQLFetch(SQLHSTMT) { return SQL_NO_DATA; }
SQLRETURN SQL_API SQLFreeStmt(SQLHSTMT, SQLUSMALLINT) { return SQL_SUCCESS; }
SQLRETURN SQL_API SQLCancel(SQLHSTMT) { return SQL_SUCCESS; }
SQLRETURN SQL_API SQLGetDiagRec(SQLSMALLINT, SQLHANDLE, SQLSMALLINT, SQLCHAR*, SQLINTEGER*, SQLCHAR*, SQLSMALLINT,
                                SQLSMALLINT*) {
  return SQL_NO_DATA;
}

}  // extern "C"
