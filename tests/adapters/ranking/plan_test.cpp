// The database reads rankings over their keys: a plan that scans mailboxes, messages or rankings would cost more
// with every mailbox.

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "adapters/ranking/sample_fixture.h"
#include "adapters/ranking/statement.h"
#include "database/schema.h"
#include "support/postgres_server.h"

namespace kalvo::test {
namespace {

using namespace ranking;

class Database {
 public:
  Database() { sqlite3_open(":memory:", &handle_); }
  ~Database() { sqlite3_close(handle_); }

  std::vector<std::string> Run(const std::string& sql) {
    std::vector<std::string> last;
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle_, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
      ADD_FAILURE() << sqlite3_errmsg(handle_) << "\n" << sql;
      return last;
    }
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const int column = sqlite3_column_count(statement) - 1;
      last.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
    }
    sqlite3_finalize(statement);
    return last;
  }

 private:
  sqlite3* handle_ = nullptr;
};

TEST(RankingPlan, ReadsEveryTableOverAnIndex) {
  Database database;
  for (const std::string& statement : schema::TableStatements(schema::Engine::Sqlite)) database.Run(statement);
  for (const std::string& statement : schema::IndexStatements(schema::Engine::Sqlite)) database.Run(statement);
  for (const Kind& kind : AllKinds()) {
    for (const Scope scope : kScopes) {
      const Statement statement = MakeStatement(kind, scope, "x", {});
      SCOPED_TRACE(statement.sql);
      const auto plan = database.Run("explain query plan " + statement.sql);
      std::size_t searches = 0;
      for (const std::string& step : plan) {
        if (step.starts_with("SEARCH ")) ++searches;
        // What is scanned is the ranking's own rows, once they are merged.
        EXPECT_TRUE(!step.starts_with("SCAN ") || step == "SCAN r" || step.starts_with("SCAN (subquery")) << step;
      }
      EXPECT_GE(searches, 3u);
    }
  }
}

// PostgreSQL prefers to read a small table whole; told not to, it has to have an index for every one of them.
TEST(RankingPlan, HasAnIndexForEveryTableOnPostgresql) {
  PostgresServer server;
  for (const std::string& statement : schema::TableStatements(schema::Engine::Postgresql)) server.Execute(statement);
  for (const std::string& statement : schema::IndexStatements(schema::Engine::Postgresql)) server.Execute(statement);
  for (const Kind& kind : AllKinds()) {
    for (const Scope scope : kScopes) {
      const std::string sql = MakeStatement(kind, scope, "x", {}).sql;
      EXPECT_NO_THROW(server.Execute(
          "set enable_seqscan = off;\ndo $plan$ declare line text; begin for line in execute $sql$explain " + sql +
          "$sql$ loop if line like '%Seq Scan%' then raise exception '%', line; end if; end loop; end $plan$;"))
          << sql;
    }
  }
}

}  // namespace
}  // namespace kalvo::test
