#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "database/sample/organization.h"
#include "kalvo/platform/platform.h"

namespace kalvo::test {

// The ways in which the sample can be asked. All but the first go over ODBC, two of them to servers of their own.
enum class Engine { Sqlite, SqliteOdbc, Postgresql, Mariadb };

inline constexpr Engine kEngines[] = {Engine::Sqlite, Engine::SqliteOdbc, Engine::Postgresql, Engine::Mariadb};

// "sqlite", "sqliteodbc", "postgresql", "mariadb".
std::string NameOf(Engine engine);

// The small sample of seed 1 behind every engine. A test program has one; each engine is started and filled when
// it is first asked for, and goes away with the program.
class SampleDatabases {
 public:
  static SampleDatabases& Shared();

  // The outside with this engine as its reporting database; the clock stands. `windowRows` is how many rows of a
  // report are fetched at a time.
  const Platform& PlatformOf(Engine engine, std::int32_t windowRows = 1000);

  // What the sample was made of.
  const sample::Organization& GetOrganization();

 private:
  class Started;
  SampleDatabases();
  ~SampleDatabases();

  struct Sources;
  void AddSource(Engine engine);

  std::unique_ptr<Sources> sources_;
  std::map<std::pair<Engine, std::int32_t>, std::unique_ptr<Started>> started_;
  std::unique_ptr<sample::Organization> organization_;
};

// The small sample as a script for an engine's own client.
std::string SampleScript(const sample::Organization& organization, Engine engine);

}  // namespace kalvo::test
