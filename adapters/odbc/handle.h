#pragma once

#include <sql.h>
#include <sqlext.h>

namespace kalvo::odbc {

// An ODBC handle, freed with its owner.
template <SQLSMALLINT Type>
class Handle {
 public:
  // Null when there is no memory for it.
  explicit Handle(SQLHANDLE parent) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(Type, parent, &handle_))) handle_ = SQL_NULL_HANDLE;
  }
  ~Handle() {
    if (handle_) SQLFreeHandle(Type, handle_);
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  SQLHANDLE Get() const { return handle_; }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

using EnvironmentHandle = Handle<SQL_HANDLE_ENV>;
using ConnectionHandle = Handle<SQL_HANDLE_DBC>;
using StatementHandle = Handle<SQL_HANDLE_STMT>;

}  // namespace kalvo::odbc
