#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "kalvo/platform/database.h"

namespace kalvo::test {

// A database with an adapter in front of it: where the contract's tables are, and how they are reached.
class TestEngine {
 public:
  virtual ~TestEngine() = default;

  // Runs statements, semicolons between them, past the adapter.
  virtual void Execute(const std::string& sql) = 0;

  // `isWanted` ends a statement that nobody wants any more, where it is given.
  virtual std::unique_ptr<Database> Open(std::chrono::milliseconds timeLimit, std::function<bool()> isWanted) = 0;

  // How many connections of this process to the database there are.
  virtual int OpenConnections() = 0;

  std::string dataSource;  // that the adapter knows it by
  std::string dateTimeType;
  std::string longTextType;
  std::string bytesType;
  std::string bytesLiteral;  // the bytes 00 01 02 03 FC FD FE FF
};

// The engines of the contract, made when they are first asked for and kept until the program ends.
TestEngine& SqliteEngine();
TestEngine& OdbcSqliteEngine();
TestEngine& OdbcPostgresEngine();
TestEngine& OdbcMariaDbEngine();

struct EngineCase {
  const char* name;
  TestEngine& (*engine)();
};

inline std::ostream& operator<<(std::ostream& out, const EngineCase& engine) { return out << engine.name; }

inline constexpr EngineCase kEngines[] = {
    {"Sqlite", SqliteEngine},
    {"OdbcSqlite", OdbcSqliteEngine},
    {"OdbcPostgres", OdbcPostgresEngine},
    {"OdbcMariaDb", OdbcMariaDbEngine},
};

// A connection to an engine.
std::unique_ptr<Connection> Connect(TestEngine& engine, std::chrono::milliseconds timeLimit = std::chrono::seconds(15),
                                    std::function<bool()> isWanted = {});

// The record set of a text that is its table's own.
std::unique_ptr<RecordSet> Query(Connection& connection, const std::string& sql);

// The text of a value of a result.
std::string TextOf(RecordSet& records, int field, int row);

// The first value that a query gives.
std::string FirstText(Connection& connection, const std::string& sql);

}  // namespace kalvo::test
