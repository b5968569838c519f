#pragma once

#include <memory>
#include <string>

#include "support/process.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

// A PostgreSQL server in a temporary folder, on a free loopback port, empty and all its own, stopped and removed
// with the object. Starting takes a second or two, so a test program keeps one for all its tests:
//
//   PostgresServer server;
//   server.Execute("create table T (Id integer)");
//   OdbcDataSources sources;
//   sources.Add("KalvoDB", server.DataSource());
class PostgresServer {
 public:
  PostgresServer();

  // Runs statements, semicolons between them, as the owner of everything. Throws when one of them fails.
  void Execute(const std::string& sql);

  // The lines of an ODBC data source that leads here.
  std::string DataSource() const;

 private:
  std::string Program(const char* name) const;

  TemporaryFolder folder_;
  int port_;
  std::unique_ptr<Server> server_;
};

}  // namespace kalvo::test
