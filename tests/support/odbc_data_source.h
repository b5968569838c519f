#pragma once

#include <filesystem>
#include <string>

#include "support/temporary_folder.h"

namespace kalvo::test {

// An ODBC configuration in a temporary folder. While the object lives it is this process's own (`ODBCINI`), and that
// of the programs it starts. The driver manager keeps what it has read for some seconds, so a name that has been
// connected to is not given another meaning in the same process.
class OdbcDataSources {
 public:
  OdbcDataSources();
  ~OdbcDataSources();

  // Adds a data source: its name and its lines, such as `PostgresServer::DataSource` gives them.
  void Add(const std::string& name, const std::string& lines);

  // The lines of a data source that is a SQLite file.
  static std::string Sqlite(const std::filesystem::path& file);

  // The configuration file, for the `ODBCINI` of another process.
  std::filesystem::path File() const { return folder_.Path() / "odbc.ini"; }

 private:
  TemporaryFolder folder_;
  std::string text_;
};

}  // namespace kalvo::test
