#include <gtest/gtest.h>

#include "adapters/database/test_engine.h"
#include "host/parts/database_proof.h"
#include "host/parts/proving_database.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using host::Proof;
using namespace std::chrono_literals;

class ProofOfAnEngine : public testing::TestWithParam<EngineCase> {
 protected:
  ProofOfAnEngine() : engine_(GetParam().engine()) {}

  std::string Count(const std::string& table) {
    return FirstText(*Connect(engine_), "select count(*) as N from " + table);
  }

  TestEngine& engine_;
};

TEST_P(ProofOfAnEngine, FindsThatWritesAreRefusedAndChangesNothing) {
  const auto connection = Connect(engine_);
  EXPECT_EQ(host::ProveReadOnly(*connection).outcome, Proof::Outcome::NotMade) << "no table to try it on";
  engine_.Execute(
      "create table EXDB_SERVER (ServerId integer not null primary key); insert into EXDB_SERVER values (1), (2);");
  const Proof proof = host::ProveReadOnly(*connection);
  EXPECT_EQ(proof, (Proof{Proof::Outcome::Holds, "4 kinds of write refused"}));
  EXPECT_EQ(Count("EXDB_SERVER"), "2");
  EXPECT_THROW(Count("KALVO_PROOF"), Error);
  EXPECT_EQ(FirstText(*connection, "select 1 as One"), "1") << "the connection serves on";
  engine_.Execute("drop table EXDB_SERVER;");
}

TEST_P(ProofOfAnEngine, FindsThatAStatementStops) {
  const auto database = engine_.Open(300ms, {});
  EXPECT_EQ(host::ProveStops(*database, engine_.dataSource),
            (Proof{Proof::Outcome::Holds, "a slow statement was stopped at its time limit"}));
}

INSTANTIATE_TEST_SUITE_P(Engines, ProofOfAnEngine, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return std::string(engine.param.name); });

// A connection that refuses what it is told to, and takes everything else.
struct Told {
  std::vector<std::string> refused;  // how statements begin that are refused
  std::string refusal;
  std::vector<std::string> ran;
};

class NoRows final : public Rows {
  std::int32_t RowCount() const override { return 0; }
  std::int32_t FieldCount() const override { return 0; }
  std::string_view Text(std::int32_t, std::int32_t, std::string&) const override { return ""; }
  std::optional<std::span<const std::uint8_t>> Binary(std::int32_t, std::int32_t) const override { return {}; }
};

class Nothing final : public RecordSet {
  bool IsEmpty() override { return true; }
  std::int32_t FieldCount() override { return 0; }
  std::string FieldName(std::int32_t) override { return ""; }
  const Rows& GetRows() override { return rows_; }
  std::unique_ptr<RecordSet> NextRecordset() override { return nullptr; }
  void Close() override {}
  NoRows rows_;
};

class Scripted final : public Connection {
 public:
  explicit Scripted(Told& told) : told_(told) {}
  std::unique_ptr<RecordSet> Execute(const Batch& batch) override {
    const std::string sql(batch.sql);
    told_.ran.push_back(sql);
    for (const std::string& word : told_.refused) {
      if (sql.starts_with(word)) throw Error(codes::kFailed, told_.refusal);
    }
    return std::make_unique<Nothing>();
  }
  void Close() override {}

 private:
  Told& told_;
};

class ScriptedDatabase final : public Database {
 public:
  explicit ScriptedDatabase(Told& told) : told_(told) {}
  std::unique_ptr<Connection> Connect(std::string_view) override { return std::make_unique<Scripted>(told_); }

 private:
  Told& told_;
};

TEST(ProofOfReading, IsBrokenByTheFirstWriteThatIsTaken) {
  Told told;
  Scripted connection(told);
  const Proof proof = host::ProveReadOnly(connection);
  EXPECT_EQ(proof.outcome, Proof::Outcome::Broken);
  EXPECT_EQ(proof.finding,
            "the data source is not read-only: it took \"delete from EXDB_SERVER where (1 = 0)\"; connect as a role "
            "that may select and nothing else");
  EXPECT_EQ(told.ran, (std::vector<std::string>{"select * from EXDB_SERVER where (1 = 0)", "begin",
                                                "delete from EXDB_SERVER where (1 = 0)", "rollback"}));
}

TEST(ProofOfReading, TakesAwayATableThatCouldBeMade) {
  Told told{{"delete", "update", "insert"}, "[25006] read-only", {}};
  Scripted connection(told);
  const Proof proof = host::ProveReadOnly(connection);
  EXPECT_EQ(proof.outcome, Proof::Outcome::Broken);
  EXPECT_NE(proof.finding.find("it took \"create table KALVO_PROOF (Id integer)\""), std::string::npos)
      << proof.finding;
  EXPECT_EQ(told.ran.back(), "drop table KALVO_PROOF");
}

TEST(ProofOfReading, IsNotMadeByAWriteThatWasStopped) {
  Told told{{"delete"}, "[HYT00] stopped", {}};
  Scripted connection(told);
  EXPECT_EQ(host::ProveReadOnly(connection).outcome, Proof::Outcome::NotMade);
}

TEST(ProofOfReading, IsNotMadeWithoutATable) {
  Told told{{"select *"}, "[42S02] none", {}};
  Scripted connection(told);
  EXPECT_EQ(host::ProveReadOnly(connection).outcome, Proof::Outcome::NotMade);
  for (const std::string& sql : told.ran) EXPECT_TRUE(sql.starts_with("select")) << sql;
}

TEST(ProofOfStopping, IsNotMadeWhereNothingIsSlow) {
  Told told;
  ScriptedDatabase database(told);
  EXPECT_EQ(host::ProveStops(database, "x").outcome, Proof::Outcome::NotMade);
}

TEST(ProofOfStopping, IsBrokenWhenTheConnectionServesNoMore) {
  Told told{{"select", "with"}, "[HYT00] stopped", {}};
  ScriptedDatabase database(told);
  const Proof proof = host::ProveStops(database, "x");
  EXPECT_EQ(proof.outcome, Proof::Outcome::Broken);
  EXPECT_EQ(proof.finding, "after a statement was stopped, the connection serves no more: [HYT00] stopped");
}

TEST(ProvingDatabase, IsUsedOnceItIsProved) {
  Told told;
  int proofs = 0;
  const Proof holds{Proof::Outcome::Holds, ""};
  host::ProvingDatabase database(std::make_unique<ScriptedDatabase>(told), [&] {
    ++proofs;
    return host::DatabaseProof{holds, holds};
  });
  EXPECT_TRUE(database.Connect("x"));
  EXPECT_TRUE(database.Connect("x"));
  EXPECT_EQ(proofs, 1);
}

TEST(ProvingDatabase, IsUsedByNobodyWhenItTakesWrites) {
  Told told;
  const Proof holds{Proof::Outcome::Holds, ""}, broken{Proof::Outcome::Broken, "it took <x>"};
  host::ProvingDatabase database(std::make_unique<ScriptedDatabase>(told), [&] {
    return host::DatabaseProof{broken, holds};
  });
  for (int i = 0; i < 2; ++i) {
    const Error error = ErrorOf([&] { database.Connect("x"); });
    EXPECT_EQ(error.Number(), codes::kFailed);
    EXPECT_EQ(error.Description(), "[HY000] it took \u2039x\u203A");
  }
}

}  // namespace
}  // namespace kalvo::test
