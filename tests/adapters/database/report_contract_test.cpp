// One contract for the reports of every database: what a page reads of them when it asks for some of their rows.

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "adapters/database/test_engine.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"
#include "support/patience.h"

namespace kalvo::test {
namespace {

using namespace std::chrono_literals;

constexpr int kRows = 3000;  // more than are fetched at a time

std::unique_ptr<RecordSet> Report(Connection& connection, const std::string& sql) {
  return connection.Execute({sql, sql, "", true});
}

class ReportContract : public testing::TestWithParam<EngineCase> {
 protected:
  void SetUp() override {
    static std::set<std::string> filled;
    engine_ = &GetParam().engine();
    if (filled.insert(GetParam().name).second) {
      engine_->Execute(
          "create table Sizes (Id integer not null, Size integer, Parity integer); "
          "insert into Sizes select a.Id + 1000 * (b.Id - 1), 7, a.Id % 2 from Numbers a, Numbers b where b.Id <= 3; "
          "insert into Sizes values (0, null, null);");
    }
    connection_ = Connect(*engine_);
  }

  bool IsSqlite() const { return std::string(GetParam().name).find("Sqlite") != std::string::npos; }

  TestEngine* engine_ = nullptr;
  std::unique_ptr<Connection> connection_;
};

TEST_P(ReportContract, HasEachRowOnceInOneOrder) {
  // Parity leaves most rows equal; the row without one comes first ascending and last descending.
  const auto ascending = Report(*connection_, "select Parity, Id from Sizes order by Parity");
  EXPECT_EQ(ascending->GetRows().RowCount(), kRows + 1);
  EXPECT_EQ(TextOf(*ascending, 1, 0), "0");
  EXPECT_EQ(TextOf(*ascending, 1, 1), "2");
  EXPECT_EQ(TextOf(*ascending, 1, 1500), "3000");
  EXPECT_EQ(TextOf(*ascending, 1, 1501), "1");
  EXPECT_EQ(TextOf(*ascending, 1, 3000), "2999");
  const auto descending = Report(*connection_, "select Parity, Id from Sizes order by Parity DESC");
  EXPECT_EQ(TextOf(*descending, 1, 0), "1");
  EXPECT_EQ(TextOf(*descending, 1, 3000), "0");
  EXPECT_EQ(TextOf(*descending, 1, 2999), "3000");
  EXPECT_EQ(TextOf(*descending, 1, 1499), "2999");
}

TEST_P(ReportContract, HasTheSameRowsWhereverAPageBegins) {
  constexpr std::string_view kSql = "select Id from Sizes order by Size, Parity";
  for (const std::int32_t firstRow : {1, 1500, 2900, 3001, 9000, -1}) {
    SCOPED_TRACE(firstRow);
    const auto records = connection_->Execute({kSql, kSql, "", true, firstRow});
    EXPECT_EQ(records->GetRows().RowCount(), kRows + 1);
    for (const auto& [row, id] : {std::pair{0, "0"}, {1, "2"}, {1500, "3000"}, {1501, "1"}, {2999, "2997"}}) {
      EXPECT_EQ(TextOf(*records, 0, row), id);
    }
  }
}

TEST_P(ReportContract, ItsRowsAndTotalsAreOfOneMoment) {
  const auto records = Report(
      *connection_, "select Id, Size from Sizes order by Id\r\n\r\nselect sum(Size) as S from Sizes where 1 = 1");
  EXPECT_EQ(records->GetRows().RowCount(), kRows + 1);
  const std::string change = "update Sizes set Size = 8 where Id >= 2000; delete from Sizes where Id = 1";
  if (IsSqlite()) {
    EXPECT_THROW(engine_->Execute(change), std::runtime_error) << "a file is not written while a report reads it";
  } else {
    engine_->Execute(change);
  }
  EXPECT_EQ(TextOf(*records, 0, 1), "1");
  EXPECT_EQ(TextOf(*records, 1, kRows), "7");
  EXPECT_EQ(TextOf(*records, 0, 1500), "1500");
  const auto totals = records->NextRecordset();
  EXPECT_EQ(TextOf(*totals, 0, 0), std::to_string(7 * kRows));
  if (!IsSqlite()) engine_->Execute("update Sizes set Size = 7 where Id > 0; insert into Sizes values (1, 7, 1)");
  EXPECT_EQ(TextOf(*Report(*connection_, "select sum(Size) as S from Sizes order by 1"), 0, 0),
            std::to_string(7 * kRows));
}

TEST_P(ReportContract, TotalsThatAreCountedWithTheRowsAreTheSame) {
  const auto records = Report(*connection_,
                              "select Id from Sizes where Parity = 1 or Id > 1 order by Id DESC\r\n\r\n"
                              "select sum(Id) as Ids, max(Size) as Size from Sizes where Parity = 1 or Id > 1");
  EXPECT_EQ(records->GetRows().RowCount(), kRows);
  const auto totals = records->NextRecordset();
  EXPECT_EQ(totals->FieldCount(), 2);
  EXPECT_FALSE(totals->IsEmpty());
  EXPECT_EQ(TextOf(*totals, 0, 0), std::to_string(kRows * (kRows + 1) / 2));
  EXPECT_EQ(TextOf(*totals, 1, 0), "7");
}

TEST_P(ReportContract, AStatementThatFailsSaysWhatItSaysElsewhereAndSpoilsNothing) {
  for (const char* sql : {"select Id from Nowhere order by Id", "select Nothing from Sizes order by Id",
                          "select Id from Sizes order by Nothing", "select Id from Sizes order by 5"}) {
    SCOPED_TRACE(sql);
    const Error own = ErrorOf([&] { Query(*Connect(*engine_), sql); });
    const Error told = ErrorOf([&] { Report(*connection_, sql); });
    EXPECT_NE(own.Number(), 0);
    EXPECT_EQ(told.Number(), own.Number());
    EXPECT_EQ(told.Description(), own.Description());
    EXPECT_EQ(TextOf(*Report(*connection_, "select Id from Sizes order by Id"), 0, 2000), "2000");
  }
}

TEST_P(ReportContract, AFailedTotalLeavesTheRows) {
  const auto records =
      Report(*connection_, "select Id from Sizes order by Id\r\n\r\nselect Nothing from Sizes where 1 = 1");
  records->GetRows();
  EXPECT_EQ(ErrorOf([&] { records->NextRecordset(); }).Number(), codes::kSqlSyntax);
  EXPECT_EQ(TextOf(*records, 0, 2500), "2500");
}

TEST_P(ReportContract, WhatCannotBeReadInPartsIsReadWhole) {
  for (const char* sql : {"select Id from Sizes order by Id limit 2500", "select Id from Sizes order by Id -- all"}) {
    SCOPED_TRACE(sql);
    EXPECT_EQ(TextOf(*Report(*connection_, sql), 0, 2400), "2400");
  }
}

TEST_P(ReportContract, IsStoppedAtItsTimeLimitAndNotRunAgain) {
  const auto impatient = Connect(*engine_, 500ms);
  const auto begun = std::chrono::steady_clock::now();
  const Error error = ErrorOf([&] {
    Report(*impatient,
           "select sum(a.Id * b.Id + c.Id * d.Id) as S from Numbers a, Numbers b, Numbers c, Numbers d order by 1");
  });
  EXPECT_TRUE(error.Description().starts_with("[HYT00]")) << error.Description();
  EXPECT_LT(std::chrono::steady_clock::now() - begun, 20s);
}

TEST_P(ReportContract, LeavesNoConnectionBehind) {
  {
    const auto records = Report(*connection_, "select Id from Sizes order by Id");
    EXPECT_EQ(TextOf(*records, 0, 2000), "2000");
  }
  connection_->Close();
  connection_.reset();
  EXPECT_TRUE(Eventually([&] { return engine_->OpenConnections() == 0; }));
}

INSTANTIATE_TEST_SUITE_P(Engines, ReportContract, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return engine.param.name; });

// A type that has no order: the report's own statement runs instead.
TEST(ReportsOnPostgres, OfATypeWithoutAnOrderAreReadWhole) {
  const auto connection = Connect(OdbcPostgresEngine());
  const auto records = Report(*connection, "select Id, cast('[1]' as json) as J from Numbers order by Id");
  EXPECT_EQ(records->GetRows().RowCount(), 1000);
  EXPECT_EQ(TextOf(*records, 1, 999), "[1]");
}

}  // namespace
}  // namespace kalvo::test
