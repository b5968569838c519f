#include "adapters/odbc/odbc_database.h"

#include "adapters/odbc/odbc_record_set.h"
#include "adapters/odbc/session.h"
#include "adapters/sql/diagnostics.h"
#include "adapters/sqlite/guard.h"
#include "adapters/sqlite/heap.h"
#include "kalvo/platform/append.h"

namespace kalvo::odbc {

OdbcDatabase::OdbcDatabase(const Options& options, const Locale& locale) : options_(options), locale_(locale) {}

OdbcDatabase::~OdbcDatabase() = default;

std::unique_ptr<Connection> OdbcDatabase::Connect(std::string_view dataSource) {
  return std::make_unique<OdbcConnection>(Open(dataSource));
}

std::string OdbcDatabase::DescribeDriver(std::string_view dataSource) {
  const std::shared_ptr<Session> session = Open(dataSource);
  std::string out;
  Append(out, session->Info(SQL_DRIVER_NAME), ' ', session->Info(SQL_DRIVER_VER), " for ", session->Info(SQL_DBMS_NAME),
         ' ', session->Info(SQL_DBMS_VER));
  return out;
}

// One connection is made at a time: PostgreSQL's driver sets the locale of the process while it connects.
std::shared_ptr<Session> OdbcDatabase::Open(std::string_view dataSource) {
  const std::lock_guard lock(mutex_);
  if (!environment_) MakeEnvironment();
  return std::make_shared<Session>(environment_, dataSource, options_, locale_);
}

// SQLite's driver opens its files for writing and with loading of libraries switched on; the guard is in place
// before it opens the first.
void OdbcDatabase::MakeEnvironment() {
  sqlite::PrepareLibrary();
  sqlite::GuardEveryConnection();
  auto environment = std::make_shared<EnvironmentHandle>(nullptr);
  if (!environment->Get()) throw sql::ConnectionError("HY001", "There is no memory for ODBC.");
  SQLSetEnvAttr(environment->Get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  environment_ = environment;
}

}  // namespace kalvo::odbc
