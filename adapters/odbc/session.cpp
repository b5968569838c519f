#include "adapters/odbc/session.h"

#include <odbcinst.h>

#include <utility>

#include "adapters/odbc/odbc_diagnostics.h"
#include "adapters/sql/diagnostics.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::odbc {

namespace {

constexpr std::chrono::seconds kGrace{1};  // the server's own limit is a backstop behind the watchdog's

struct EngineName {
  std::string_view part;  // of the name that the driver gives the database
  Engine engine;
};

// The limit of a statement's time stands for "%", in milliseconds or in seconds.
struct SetUpStatement {
  Engine engine;
  std::string_view sql;
  int timeUnits;  // in a second
};

struct SnapshotStatement {
  Engine engine;
  std::string_view sql;
};

// What a data source of a driver is given when its own configuration is silent.
struct DriverDefault {
  std::string_view part;  // of the driver's name or its library's
  const char* key;
  std::string_view value;
};

// clang-format off
constexpr DriverDefault kDriverDefaults[] = {
  {"sqlite",  "NoCreat",      "1"},      // or a file that is missing is created
  {"sqlite",  "Timeout",      "5000"},   // or a writer is waited for 100 seconds
  {"maodbc",  "CONN_TIMEOUT", "10"},     // or a silent server is waited for without end
};
constexpr EngineName kEngines[] = {
  {"sqlite",     Engine::Sqlite},
  {"postgresql", Engine::PostgreSql},
  {"mariadb",    Engine::MariaDb},
  {"mysql",      Engine::MariaDb},
};
constexpr SetUpStatement kSetUp[] = {
  {Engine::PostgreSql, "set standard_conforming_strings = on", 1},
  {Engine::PostgreSql, "set statement_timeout = %", 1000},
  {Engine::PostgreSql, "set default_transaction_read_only = on", 1},
  // A backslash is a character like any other, and "x" is a name as everywhere else.
  {Engine::MariaDb,    "set session sql_mode = concat(@@sql_mode, ',NO_BACKSLASH_ESCAPES,ANSI_QUOTES')", 1},
  {Engine::MariaDb,    "set session max_statement_time = %", 1},
  {Engine::MariaDb,    "set session transaction read only", 1},
};
constexpr SnapshotStatement kSnapshots[] = {
  {Engine::Sqlite,     "begin"},
  {Engine::PostgreSql, "begin isolation level repeatable read read only"},
  {Engine::MariaDb,    "start transaction with consistent snapshot, read only"},
};
// clang-format on

std::string ConfiguredValue(const std::string& section, const char* key, const char* file) {
  char value[1024] = "";
  SQLGetPrivateProfileString(section.c_str(), key, "", value, sizeof value, file);
  return value;
}

// The driver of a data source: the name of its section, and its library.
std::string DriverOf(const std::string& dataSource) {
  const std::string driver = ConfiguredValue(dataSource, "Driver", "odbc.ini");
  return ToLowerAscii(driver + " " + (driver.empty() ? "" : ConfiguredValue(driver, "Driver", "odbcinst.ini")));
}

std::string ConnectionString(std::string_view dataSource) {
  if (dataSource.find_first_of(";={}[]") != std::string::npos) {
    throw sql::ConnectionError("IM002", "A data source name holds none of ; = { } [ ].");
  }
  const std::string name(dataSource);
  const std::string driver = DriverOf(name);
  std::string out;
  Append(out, "DSN=", name);
  for (const auto& row : kDriverDefaults) {
    const bool applies = driver.find(row.part) != std::string::npos;
    if (applies && ConfiguredValue(name, row.key, "odbc.ini").empty()) Append(out, ";", row.key, "=", row.value);
  }
  return out;
}

}  // namespace

Session::Session(std::shared_ptr<EnvironmentHandle> environment, std::string_view dataSource, const Options& options,
                 const Locale& locale)
    : options_(options), locale_(locale), environment_(std::move(environment)), connection_(environment_->Get()) {
  if (!connection_.Get()) throw sql::ConnectionError("HY001", "There is no memory for a connection.");
  const auto loginSeconds = std::chrono::ceil<std::chrono::seconds>(options_.loginLimit).count();
  SQLSetConnectAttr(connection_.Get(), SQL_ATTR_LOGIN_TIMEOUT, reinterpret_cast<SQLPOINTER>(loginSeconds), 0);
  const std::string connecting = ConnectionString(dataSource);
  CheckConnection(
      SQLDriverConnect(connection_.Get(), nullptr, Bytes(connecting), static_cast<SQLSMALLINT>(connecting.size()),
                       nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT),
      connection_.Get());
  engine_ = FindEngine();
  try {
    SetUp();
  } catch (...) {
    SQLDisconnect(connection_.Get());
    throw;
  }
}

Session::~Session() { SQLDisconnect(connection_.Get()); }

void Session::ThrowTimeout() const {
  throw sql::TimeoutError(std::chrono::duration<double>(options_.timeLimit).count());
}

std::string Session::Info(SQLUSMALLINT what) const {
  char text[256] = "";
  SQLSMALLINT length = 0;
  return SQL_SUCCEEDED(SQLGetInfo(connection_.Get(), what, text, sizeof text, &length)) ? text : "";
}

Engine Session::FindEngine() const {
  const std::string lower = ToLowerAscii(Info(SQL_DBMS_NAME));
  for (const auto& row : kEngines) {
    if (lower.find(row.part) != std::string::npos) return row.engine;
  }
  return Engine::Other;
}

void Session::SetUp() {
  if (engine_ == Engine::Other && !options_.unknownEngines) {
    throw sql::ConnectionError("0A000", Built([&](std::string& out) {
                                 Append(out, "The database \"", Info(SQL_DBMS_NAME),
                                        "\" is unknown here, and nothing would keep it from being written; "
                                        "unknown_engine = true in the settings takes it all the same.");
                               }));
  }
  for (const auto& row : kSetUp) {
    if (row.engine != engine_) continue;
    std::string statement(row.sql);
    if (const auto limit = statement.find('%'); limit != std::string::npos) {
      const auto seconds = std::chrono::ceil<std::chrono::seconds>(options_.timeLimit + kGrace).count();
      statement.replace(limit, 1, std::to_string(seconds * row.timeUnits));
    }
    Run(statement);
  }
}

void Session::BeginSnapshot() {
  if (std::exchange(inSnapshot_, false)) Run("rollback");
  for (const auto& row : kSnapshots) {
    if (row.engine == engine_) Run(row.sql);
  }
  inSnapshot_ = true;
}

void Session::Run(std::string_view sql) {
  const std::string text(sql);
  const StatementHandle statement(connection_.Get());
  if (!statement.Get()) throw sql::ConnectionError("HY001", "There is no memory for a statement.");
  Limited(statement.Get(), [&] {
    CheckStatement(SQLExecDirect(statement.Get(), Bytes(text), static_cast<SQLINTEGER>(text.size())), statement.Get());
  });
}

}  // namespace kalvo::odbc
