#include "adapters/sqlite/session_keeper.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <filesystem>
#include <fstream>

#include "kalvo/platform/error.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

class SessionKeeperTest : public testing::Test {
 protected:
  SessionKeeperTest() {
    sqlite::PrepareLibrary();
    Write(file_, "create table T (Id integer); insert into T values (1)");
  }

  static void Write(const fs::path& file, const char* sql) {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &connection), SQLITE_OK);
    sqlite3_set_authorizer(connection, nullptr, nullptr);
    EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(connection);
    sqlite3_close(connection);
  }

  static int Number(sqlite::Session& session, const char* sql) {
    const sqlite::Statement statement = session.Prepare(sql);
    EXPECT_TRUE(session.Step(statement.get()));
    return sqlite3_column_int(statement.get(), 0);
  }

  // The address of the session that is lent now, which goes back at once.
  const sqlite::Session* Lent() { return keeper_->Take().get(); }

  TemporaryFolder folder_;
  const fs::path file_ = folder_.Path() / "t.db";
  std::shared_ptr<sqlite::SessionKeeper> keeper_ =
      std::make_shared<sqlite::SessionKeeper>(file_, sqlite::Options{}, kEnglishUnitedStates);
};

TEST_F(SessionKeeperTest, ASessionThatWasLetGoIsLentAgain) {
  const sqlite::Session* first = Lent();
  EXPECT_EQ(Lent(), first);
}

TEST_F(SessionKeeperTest, WhoeverHoldsASessionHoldsItAlone) {
  const auto first = keeper_->Take();
  const auto second = keeper_->Take();
  EXPECT_NE(first, second);
  EXPECT_EQ(Number(*second, "select count(*) from T"), 1);
}

TEST_F(SessionKeeperTest, AKeptSessionSeesWhatWasWrittenMeanwhile) {
  Lent();
  Write(file_, "insert into T values (2); create table Fresh (Id integer)");
  const auto session = keeper_->Take();
  EXPECT_EQ(Number(*session, "select count(*) from T"), 2);
  EXPECT_EQ(Number(*session, "select count(*) from Fresh"), 0);
}

TEST_F(SessionKeeperTest, AFileThatTookTheOthersPlaceIsOpened) {
  Lent();
  const fs::path fresh = folder_.Path() / "fresh.db";
  Write(fresh, "create table T (Id integer); insert into T values (7), (8), (9)");
  fs::rename(fresh, file_);
  EXPECT_EQ(Number(*keeper_->Take(), "select count(*) from T"), 3);
}

TEST_F(SessionKeeperTest, AFileThatIsGoneFailsAsOpeningItDoes) {
  Lent();
  fs::remove(file_);
  EXPECT_THROW(keeper_->Take(), Error);
  EXPECT_FALSE(fs::exists(file_));
}

TEST_F(SessionKeeperTest, AFileThatIsNoDatabaseAnyMoreFailsAsOpeningItDoes) {
  Lent();
  std::ofstream(file_, std::ios::trunc) << std::string(8192, 'x');
  EXPECT_THROW(keeper_->Take(), Error);
}

TEST_F(SessionKeeperTest, ASessionThatIsKeptHoldsBackNoWriter) {
  {
    const auto session = keeper_->Take();
    const sqlite::Statement reading = session->Prepare("select Id from T");
    EXPECT_TRUE(session->Step(reading.get()));
  }
  Write(file_, "begin exclusive; insert into T values (2); commit");
  EXPECT_EQ(Number(*keeper_->Take(), "select count(*) from T"), 2);
}

TEST_F(SessionKeeperTest, ASessionWithAStatementLeftOpenIsNotLentAgain) {
  auto session = keeper_->Take();
  sqlite::Statement reading = session->Prepare("select Id from T");
  EXPECT_TRUE(session->Step(reading.get()));
  session.reset();
  EXPECT_EQ(Number(*keeper_->Take(), "select count(*) from T"), 1);
}

TEST_F(SessionKeeperTest, ASessionOutlivesItsKeeper) {
  const auto session = keeper_->Take();
  keeper_.reset();
  EXPECT_EQ(Number(*session, "select count(*) from T"), 1);
}

}  // namespace
}  // namespace kalvo::test
