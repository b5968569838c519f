#include <gtest/gtest.h>
#include <sqlite3.h>

#include <sstream>

#include "adapters/ranking/make_ranking.h"
#include "adapters/sqlite/sqlite_database.h"
#include "database/sample/sample.h"
#include "database/sample_databases.h"
#include "fakes/clock.h"
#include "host/cli/database_check.h"
#include "kalvo/platform/platform.h"
#include "kalvo/platform/ranking.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace host;

struct Outcome {
  int status;
  std::string text;
  bool Says(std::string_view what) const { return text.find(what) != std::string::npos; }
};

Outcome Checked(const std::string& file) {
  sqlite::SqliteDatabase database(file);
  const auto ranking = ranking::MakeRanking(database);
  FakeClock clock;
  std::ostringstream out;
  const int status = CheckDatabase({database, *ranking, clock}, {"sqlite:" + file, "a driver", {}}, out);
  return {status, out.str()};
}

// A small sample of one's own, to be spoilt.
class CheckOfADatabase : public testing::Test {
 protected:
  CheckOfADatabase() {
    sample::SilentProgress progress;
    sample::MakeSample({folder_.Path()}, progress);
  }

  Outcome CheckedAfter(const std::string& sql) {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(File().c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
    return Checked(File());
  }

  std::string File() const { return (folder_.Path() / "kalvo.db").string(); }

 private:
  TemporaryFolder folder_;
};

TEST_F(CheckOfADatabase, FindsAllReportsOfTheSampleWorking) {
  const Outcome outcome = Checked(File());
  EXPECT_EQ(outcome.status, 0) << outcome.text;
  EXPECT_TRUE(outcome.Says("sqlite:" + File()));
  EXPECT_TRUE(outcome.Says("Server      SQLite 3."));
  EXPECT_TRUE(outcome.Says("all there"));
  EXPECT_TRUE(outcome.Says("60 of 60 work"));
  EXPECT_FALSE(outcome.Says("fails"));
}

TEST_F(CheckOfADatabase, NamesAMissingColumnAndTheReportsThatNeedIt) {
  const Outcome outcome = CheckedAfter("alter table EXDB_PARTITION drop column FreeSpace");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(
      outcome.Says("missing column EXDB_PARTITION.FreeSpace; needed by 7 TABLE_TASK_CAPACITYPLANNING_SUMMARY, "
                   "8 TABLE_TASK_CAPACITYPLANNING_SINGLESERVER\n"))
      << outcome.text;
  EXPECT_TRUE(outcome.Says("58 of 60 work"));
}

TEST_F(CheckOfADatabase, NamesAColumnThatIsReadWithAllOthers) {
  const Outcome outcome = CheckedAfter("alter table RMC_ALERT drop column Attrib9");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.Says("missing column RMC_ALERT.Attrib9; needed by 2 TABLE_CURRENTALERTS, 12 ")) << outcome.text;
  EXPECT_TRUE(outcome.Says("TABLE_CURRENTALERTS                                     fails: ")) << outcome.text;
}

TEST_F(CheckOfADatabase, NamesAMissingTable) {
  const Outcome outcome = CheckedAfter("drop table EXDB_RECIPIENTGROUPTOTALS");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.Says("missing table EXDB_RECIPIENTGROUPTOTALS ")) << outcome.text;
  EXPECT_TRUE(outcome.Says("needed by 29 TABLE_RES_MAILBOXGROUPS_MAILBOXESSUMMARY")) << outcome.text;
}

TEST_F(CheckOfADatabase, NamesARecordNumberThatTwoHistoriesShare) {
  const Outcome outcome = CheckedAfter(
      "update EXDB_SERVERTOTALS set ServerTotalsId = (select max(ServerBackupId) from "
      "EXDB_SERVERBACKUP) where ServerTotalsId = 1");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.Says("EXDB_SERVERTOTALS and EXDB_SERVERBACKUP share record number ")) << outcome.text;
}

TEST_F(CheckOfADatabase, NamesAServerWithTwoCurrentTotals) {
  const Outcome outcome = CheckedAfter("insert into EXDB_SERVERCURRENT values (1, 1, 1)");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.Says("several current totals or activities of server 1\n")) << outcome.text;
}

TEST_F(CheckOfADatabase, FindsNothingWrongWithAnEmptyOne) {
  const Outcome outcome = CheckedAfter("delete from EXDB_SERVER; delete from EXDB_GROUP; delete from RMC_ALERT");
  EXPECT_EQ(outcome.status, 0) << outcome.text;
}

TEST(CheckOfNoDatabase, SaysThatItDoesNotOpen) {
  const Outcome outcome = Checked("/nowhere/kalvo.db");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_TRUE(outcome.Says("Connection  fails: [")) << outcome.text;
}

class CheckOfAnEngine : public testing::TestWithParam<Engine> {};

TEST_P(CheckOfAnEngine, FindsAllReportsWorking) {
  std::ostringstream out;
  EXPECT_EQ(CheckDatabase(SampleDatabases::Shared().PlatformOf(GetParam()), {"odbc", "", {}}, out), 0) << out.str();
}

INSTANTIATE_TEST_SUITE_P(Engines, CheckOfAnEngine,
                         testing::Values(Engine::SqliteOdbc, Engine::Postgresql, Engine::Mariadb),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
