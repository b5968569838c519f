// Pages as `kalvo page` prints them, over the small sample, on every database that the sample can stand behind.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>

#include "database/sample/sample.h"
#include "database/sample_databases.h"
#include "source_folder.h"
#include "support/golden.h"
#include "support/mariadb_server.h"
#include "support/odbc_data_source.h"
#include "support/postgres_server.h"
#include "support/process.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

const std::filesystem::path kFolder = std::filesystem::path(KALVO_SOURCE_DIR) / "tests/golden/pages";

enum class Rows { Sample, None, NoDatabase };

// Where a server's own wording shows, its version among it, or its own order of rows that nothing tells apart, the
// page is held on SQLite alone; so is one without rows, which is the same on every server.
enum class On { Every, Sqlite };

struct PageCase {
  const char* golden;
  const char* page;
  std::vector<std::string> arguments;
  Rows rows = Rows::Sample;
  On on = On::Every;
};

const PageCase kCases[] = {
    {"alerts", "alerts.asp", {}},
    {"alerts_second_page", "alerts.asp", {"--query", "First=51&PageSize=50"}},
    {"alerts_last_page", "alerts.asp", {"--query", "First=-1"}},
    {"alerts_all", "alerts.asp", {"--query", "PageSize=-1"}},
    {"alerts_sorted", "alerts.asp", {"--query", "Sort=Attrib3&SortOrder=ASC"}},
    {"alerts_debug", "alerts.asp", {"--query", "Debug=SQL&Debug=Table&PageSize=10"}},
    {"alerts_administrator", "alerts.asp", {"--session", "KalvoAdministrator=Yes"}},
    {"alerts_bad_sort", "alerts.asp", {"--query", "Sort=NoSuchColumn"}, Rows::Sample, On::Sqlite},
    {"second_table_sorted", "two_tables.asp", {"--query", "Sort=&Sort=Name&SortOrder=&SortOrder=DESC"}},
    {"own_columns", "own_columns.asp", {"--query", "PageSize=5"}},
    {"own_row_source", "own_row_source.asp", {}},
    {"own_host", "own_host.asp", {}},
    {"alerts_empty", "alerts.asp", {}, Rows::None, On::Sqlite},
    {"alerts_no_database", "alerts.asp", {}, Rows::NoDatabase, On::Sqlite},
};

// The sample behind every engine, each started and filled when it is first asked for.
class Sources {
 public:
  static Sources& Shared() {
    static Sources sources;
    return sources;
  }

  // The lines of the data source.
  std::string Lines(Engine engine) {
    std::string& lines = lines_[engine];
    if (lines.empty()) lines = Start(engine);
    return lines;
  }

  std::filesystem::path SampleFile() const { return folder_.Path() / "kalvo.db"; }

 private:
  Sources() {
    sample::SilentProgress progress;
    sample::MakeSample({folder_.Path()}, progress);
  }

  std::string Start(Engine engine) {
    sample::SilentProgress progress;
    const auto script = [&] {
      return SampleScript(sample::MakeOrganization(sample::SampleSize::Small, 1, progress), engine);
    };
    switch (engine) {
      case Engine::Postgresql:
        postgres_ = std::make_unique<PostgresServer>();
        postgres_->Execute(script());
        return postgres_->DataSource();
      case Engine::Mariadb:
        mariadb_ = std::make_unique<MariaDbServer>();
        mariadb_->Execute(script());
        return mariadb_->DataSource();
      default: return OdbcDataSources::Sqlite(SampleFile());
    }
  }

  TemporaryFolder folder_;
  std::map<Engine, std::string> lines_;
  std::unique_ptr<PostgresServer> postgres_;
  std::unique_ptr<MariaDbServer> mariadb_;
};

std::string RunPage(const PageCase& page, Engine engine) {
  TemporaryFolder folder;
  const auto output = folder.Path() / "output";
  std::vector<std::string> command = {KALVO_PROGRAM, "page"};
  const auto add = [&](const std::string& option, const std::string& value) {
    command.insert(command.end(), {option, value});
  };
  OdbcDataSources sources;  // inherited by the program
  if (page.rows == Rows::Sample && engine != Engine::Sqlite) {
    sources.Add("KalvoDB", Sources::Shared().Lines(engine));
  } else if (page.rows == Rows::Sample) {
    add("--database", "sqlite:" + Sources::Shared().SampleFile().string());
  } else if (page.rows == Rows::None) {
    const auto empty = folder.Path() / "empty.db";
    std::filesystem::copy_file(Sources::Shared().SampleFile(), empty);
    Run({{"/usr/bin/sqlite3", empty.string(), "delete from RMC_ALERT"}, output, "", ""});
    if (engine == Engine::Sqlite) {
      add("--database", "sqlite:" + empty.string());
    } else {
      sources.Add("KalvoDB", OdbcDataSources::Sqlite(empty));
    }
  }
  command.insert(command.end(), page.arguments.begin(), page.arguments.end());
  command.push_back((kFolder / page.page).string());
  Run({command, output, "", ""});
  return ReadFile(output);
}

class Pages : public testing::TestWithParam<Engine> {};

TEST_P(Pages, AreTheGoldenOnes) {
  for (const PageCase& page : kCases) {
    const bool onSqlite = GetParam() == Engine::Sqlite || GetParam() == Engine::SqliteOdbc;
    if (page.on == On::Sqlite && !onSqlite) continue;
    if (page.rows == Rows::NoDatabase && GetParam() == Engine::Sqlite) continue;
    SCOPED_TRACE(page.golden);
    // Where an engine's own wording shows, the page has a golden file of that engine.
    const std::string variant = GetParam() == Engine::Sqlite ? "" : NameOf(GetParam());
    ExpectGolden("pages/" + std::string(page.golden) + ".html", RunPage(page, GetParam()), {variant});
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, Pages, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
