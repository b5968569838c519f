#include "database/sample_databases.h"

#include <set>
#include <sstream>

#include "adapters/odbc/odbc_database.h"
#include "adapters/ranking/make_ranking.h"
#include "adapters/sqlite/sqlite_database.h"
#include "database/sample/sample.h"
#include "database/sample/sample_steps.h"
#include "database/sample/script_writer.h"
#include "fakes/clock.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/ranking.h"
#include "support/mariadb_server.h"
#include "support/odbc_data_source.h"
#include "support/postgres_server.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

// A database whose one data source goes by another name in the ODBC configuration: the library knows but one.
class NamedSource : public Database {
 public:
  NamedSource(std::string name, const odbc::Options& options) : odbc_(options), name_(std::move(name)) {}
  std::unique_ptr<Connection> Connect(std::string_view) override { return odbc_.Connect(name_); }

 private:
  odbc::OdbcDatabase odbc_;
  std::string name_;
};

}  // namespace

std::string NameOf(Engine engine) {
  switch (engine) {
    case Engine::Sqlite: return "sqlite";
    case Engine::SqliteOdbc: return "sqliteodbc";
    case Engine::Postgresql: return "postgresql";
    case Engine::Mariadb: return "mariadb";
  }
  return "";
}

std::string SampleScript(const sample::Organization& organization, Engine engine) {
  std::ostringstream script;
  sample::SilentProgress progress;
  sample::ScriptWriter writer(script,
                              engine == Engine::Postgresql ? schema::Engine::Postgresql : schema::Engine::Mariadb);
  sample::WriteSample(organization, writer, progress);
  writer.Finish();
  return script.str();
}

// The SQLite file, and the ODBC configuration that leads to every engine.
struct SampleDatabases::Sources {
  TemporaryFolder folder;
  OdbcDataSources odbc;
  std::unique_ptr<PostgresServer> postgres;
  std::unique_ptr<MariaDbServer> mariadb;
  std::set<Engine> added;

  std::string File() const { return (folder.Path() / "kalvo.db").string(); }
};

// One engine, ready to be asked.
class SampleDatabases::Started {
 public:
  explicit Started(std::unique_ptr<Database> database)
      : database_(std::move(database)),
        ranking_(ranking::MakeRanking(*database_)),
        platform{*database_, *ranking_, clock_} {}

 private:
  std::unique_ptr<Database> database_;
  std::unique_ptr<TopNFactory> ranking_;
  FakeClock clock_;

 public:
  const Platform platform;
};

SampleDatabases& SampleDatabases::Shared() {
  static SampleDatabases databases;
  return databases;
}

SampleDatabases::SampleDatabases() : sources_(std::make_unique<Sources>()) {
  sample::SilentProgress progress;
  sample::MakeSample({sources_->folder.Path()}, progress);
  organization_ =
      std::make_unique<sample::Organization>(sample::MakeOrganization(sample::SampleSize::Small, 1, progress));
}

SampleDatabases::~SampleDatabases() = default;

const sample::Organization& SampleDatabases::GetOrganization() { return *organization_; }

// Makes the engine's server and its data source where they are not there yet.
void SampleDatabases::AddSource(Engine engine) {
  if (!sources_->added.insert(engine).second) return;
  std::string lines = OdbcDataSources::Sqlite(sources_->File());
  if (engine == Engine::Postgresql) {
    sources_->postgres = std::make_unique<PostgresServer>();
    sources_->postgres->Execute(SampleScript(*organization_, engine));
    lines = sources_->postgres->DataSource();
  } else if (engine == Engine::Mariadb) {
    sources_->mariadb = std::make_unique<MariaDbServer>();
    sources_->mariadb->Execute(SampleScript(*organization_, engine));
    lines = sources_->mariadb->DataSource();
  }
  sources_->odbc.Add(NameOf(engine), lines);
}

const Platform& SampleDatabases::PlatformOf(Engine engine, std::int32_t windowRows) {
  std::unique_ptr<Started>& started = started_[{engine, windowRows}];
  if (started) return started->platform;
  std::unique_ptr<Database> database;
  if (engine == Engine::Sqlite) {
    sqlite::Options options;
    options.windowRows = windowRows;
    database = std::make_unique<sqlite::SqliteDatabase>(sources_->File(), options);
  } else {
    AddSource(engine);
    odbc::Options options;
    options.windowRows = windowRows;
    database = std::make_unique<NamedSource>(NameOf(engine), options);
  }
  started = std::make_unique<Started>(std::move(database));
  return started->platform;
}

}  // namespace kalvo::test
