#include "support/odbc_data_source.h"

#include <cstdlib>

namespace kalvo::test {

OdbcDataSources::OdbcDataSources() {
  WriteFile(File(), text_);
  setenv("ODBCINI", File().c_str(), 1);
}

OdbcDataSources::~OdbcDataSources() { unsetenv("ODBCINI"); }

void OdbcDataSources::Add(const std::string& name, const std::string& lines) {
  text_ += "[" + name + "]\n" + lines + "\n";
  WriteFile(File(), text_);
}

std::string OdbcDataSources::Sqlite(const std::filesystem::path& file) {
  return "Driver=SQLite3\nDatabase=" + file.string() + "\n";
}

}  // namespace kalvo::test
