#pragma once

#include <memory>
#include <string>

#include "support/process.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

// A MariaDB server in a temporary folder, on a free loopback port, with an empty database, stopped and removed with
// the object. Names of tables know no case there. Starting takes some seconds, so a test program keeps one for all
// its tests; it is used like `PostgresServer`.
class MariaDbServer {
 public:
  MariaDbServer();

  // Runs statements, semicolons between them, as the owner of everything. Throws when one of them fails.
  void Execute(const std::string& sql);

  // The lines of an ODBC data source that leads here.
  std::string DataSource() const;

 private:
  void RunClient(const std::string& database, const std::string& sql);
  void WriteSettings() const;

  TemporaryFolder folder_;
  int port_;
  std::unique_ptr<Server> server_;
};

}  // namespace kalvo::test
