// How the rows of a report are fetched, on a database that is one list of numbers.

#include "adapters/sql/report_record_set.h"

#include <gtest/gtest.h>

#include <regex>

#include "adapters/sql/block_store.h"
#include "adapters/sql/diagnostics.h"
#include "kalvo/platform/conversion.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace sql;

constexpr char kStatement[] = "select n from T order by n";
constexpr char kTotals[] = "select sum(n) as n from T";
constexpr char kOtherTotals[] = "select sum(n) as n from U";

class Numbers final : public RecordSet {
 public:
  explicit Numbers(const std::vector<std::vector<std::int64_t>>& rows, std::int32_t fields)
      : store_(fields, kEnglishUnitedStates), fields_(fields) {
    for (const auto& row : rows) {
      for (const std::int64_t number : row) store_.AddInteger(number);
    }
  }
  bool IsEmpty() override { return store_.RowCount() == 0; }
  std::int32_t FieldCount() override { return fields_; }
  std::string FieldName(std::int32_t i) override { return i == fields_ - 1 ? "n" : "Counted"; }
  const Rows& GetRows() override { return store_; }
  std::unique_ptr<RecordSet> NextRecordset() override { throw ObjectNotSet(); }
  void Close() override {}

 private:
  BlockStore store_;
  std::int32_t fields_;
};

// Answers 0, 1, 2, ... up to a count, by the windows that it is asked for.
class FakeRunner final : public ReportRunner {
 public:
  explicit FakeRunner(std::int64_t count) : count_(count) {}

  std::vector<std::string> ran;
  std::string failing;  // a statement that holds this fails
  std::string silent;   // and one that holds this is stopped at its deadline
  std::int32_t windowRows = 10;

  NullOrder Nulls() const override { return NullOrder::First; }
  std::int32_t WindowRows() const override { return windowRows; }
  // What has run since the last look, as "snapshot" or what stands behind the order.
  std::string Ran() {
    std::string told;
    for (const std::string& statement : ran) {
      const auto order = statement.find(" order by ");
      told += (told.empty() ? "" : "; ") + (order == statement.npos ? statement : statement.substr(order + 10));
    }
    ran.clear();
    return told;
  }

 private:
  void BeginSnapshot() override { ran.push_back("snapshot"); }
  std::int32_t CountColumns(const std::string&) override { return 1; }
  std::unique_ptr<RecordSet> Run(const std::string& statement) override {
    ran.push_back(statement);
    if (!failing.empty() && statement.find(failing) != statement.npos) throw DatabaseError("42000", "No: " + statement);
    if (!silent.empty() && statement.find(silent) != statement.npos) throw TimeoutError(1);
    if (statement.find("count(*) as Counted, ") != statement.npos) return Make({{count_, 777}}, 2);
    if (statement.find("count(*)") != statement.npos) return Make({{count_}}, 1);
    if (statement.find("sum(") != statement.npos) return Make({{777}}, 1);
    return Window(statement);
  }

  static std::unique_ptr<RecordSet> Make(const std::vector<std::vector<std::int64_t>>& rows, std::int32_t fields) {
    return std::make_unique<Numbers>(rows, fields);
  }
  std::unique_ptr<RecordSet> Window(const std::string& statement) const {
    std::int64_t first = 0, length = count_;
    std::smatch found;
    if (std::regex_search(statement, found, std::regex(" limit (\\d+) offset (\\d+)"))) {
      length = std::stoll(found[1]);
      first = std::stoll(found[2]);
    }
    const bool backward = statement.find("1 desc") != statement.npos;
    std::vector<std::vector<std::int64_t>> rows;
    for (std::int64_t i = first; i < std::min(first + length, count_); ++i) {
      rows.push_back({backward ? count_ - 1 - i : i});
    }
    return Make(rows, 1);
  }

  std::int64_t count_;
};

struct Report {
  explicit Report(std::int64_t count, const char* totals = kOtherTotals)
      : runner(std::make_shared<FakeRunner>(count)), statements({kStatement, totals}) {}

  RecordSet& Open(std::int32_t firstRow = 1) {
    records = std::make_unique<ReportRecordSet>(runner, statements, firstRow);
    EXPECT_EQ(runner->ran.at(0), "snapshot");
    runner->ran.erase(runner->ran.begin());
    return *records;
  }
  std::string Text(std::int32_t row) {
    std::string scratch;
    return std::string(records->GetRows().Text(0, row, scratch));
  }

  std::shared_ptr<FakeRunner> runner;
  StatementQueue statements;
  std::unique_ptr<RecordSet> records;
};

TEST(ReportRecordSet, AShortReportIsOneStatement) {
  Report report(10);
  EXPECT_EQ(report.Open().GetRows().RowCount(), 10);
  EXPECT_EQ(report.Text(9), "9");
  EXPECT_EQ(report.runner->Ran(), "n asc, 1 asc limit 11 offset 0");
}

TEST(ReportRecordSet, ALongOneCountsItsRowsAndFetchesThoseThatAreAskedFor) {
  Report report(1000);
  EXPECT_EQ(report.Open().GetRows().RowCount(), 1000);
  EXPECT_EQ(report.runner->Ran(),
            "n asc, 1 asc limit 11 offset 0; select count(*) as Counted from (select n from T) Counted");
  const struct {
    const char* why;
    std::int32_t row;
    const char* ran;
  } kCases[] = {
      {"the first rows are there", 10, ""},
      {"a row in the middle", 300, "n asc, 1 asc limit 10 offset 300"},
      {"the same window again", 309, ""},
      {"walking on from its end takes more", 310, "n asc, 1 asc limit 20 offset 310"},
      {"and more", 330, "n asc, 1 asc limit 40 offset 330"},
      {"a row before", 329, "n asc, 1 asc limit 10 offset 329"},
      {"the last row comes from the end", 999, "n desc, 1 desc limit 1 offset 0"},
      {"and so do the last page's", 985, "n desc, 1 desc limit 10 offset 5"},
      {"in their order", 994, ""},
      {"to the end", 995, "n desc, 1 desc limit 5 offset 0"},
      {"back to the first", 0, "n asc, 1 asc limit 10 offset 0"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(report.Text(c.row), std::to_string(c.row));
    EXPECT_EQ(report.runner->Ran(), c.ran);
  }
  EXPECT_EQ(ErrorOf([&] { report.Text(1000); }).Number(), 9);
  EXPECT_EQ(ErrorOf([&] { report.Text(-1); }).Number(), 9);
}

TEST(ReportRecordSet, BeginsWithTheRowThatIsAskedForFirst) {
  constexpr char kCount[] = "; select count(*) as Counted from (select n from T) Counted";
  const struct {
    const char* why;
    std::int64_t count;
    std::int32_t firstRow, read;
    std::string ran;
  } kCases[] = {
      {"in the first window", 1000, 10, 9, std::string("n asc, 1 asc limit 11 offset 0") + kCount},
      {"further on", 1000, 301, 300, std::string("n asc, 1 asc limit 11 offset 300") + kCount},
      {"near the end, which then is known", 1000, 996, 995, "n asc, 1 asc limit 11 offset 995"},
      {"the last", 1000, -1, 999, std::string("n desc, 1 desc limit 11 offset 0") + kCount},
      {"the last of a few", 8, -1, 7, "n desc, 1 desc limit 11 offset 0"},
      {"behind the last: the first", 1000, 2001, 0,
       std::string("n asc, 1 asc limit 11 offset 2000; n asc, 1 asc limit 11 offset 0") + kCount},
      {"behind the last of a few", 8, 2001, 7, "n asc, 1 asc limit 11 offset 2000; n asc, 1 asc limit 11 offset 0"},
      {"of none", 0, -1, -1, "n desc, 1 desc limit 11 offset 0"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    Report report(c.count);
    EXPECT_EQ(report.Open(c.firstRow).GetRows().RowCount(), c.count);
    if (c.read >= 0) {
      EXPECT_EQ(report.Text(c.read), std::to_string(c.read));
    }
    EXPECT_EQ(report.runner->Ran(), c.ran);
    for (std::int32_t row = 0; row < c.count; ++row) ASSERT_EQ(report.Text(row), std::to_string(row));
  }
}

TEST(ReportRecordSet, AWalkOverAllRowsTakesWindowsOfABoundedLength) {
  Report report(5000);
  report.Open();
  for (std::int32_t row = 0; row < 5000; ++row) ASSERT_EQ(report.Text(row), std::to_string(row));
  std::size_t longest = 0;
  for (const std::string& statement : report.runner->ran) {
    std::smatch found;
    if (std::regex_search(statement, found, std::regex("limit (\\d+)"))) {
      longest = std::max<std::size_t>(longest, std::stoul(found[1]));
    }
  }
  EXPECT_EQ(longest, 160u);
  EXPECT_LT(report.runner->ran.size(), 40u);
}

TEST(ReportRecordSet, TotalsOfTheSameRowsAreCountedWithThem) {
  Report report(1000, kTotals);
  EXPECT_EQ(report.Open().GetRows().RowCount(), 1000);
  EXPECT_EQ(report.runner->Ran(), "n asc, 1 asc limit 11 offset 0; select count(*) as Counted, sum(n) as n from T");
  const auto totals = report.records->NextRecordset();
  EXPECT_EQ(totals->FieldCount(), 1);
  EXPECT_EQ(totals->FieldName(0), "n");
  std::string scratch;
  EXPECT_EQ(totals->GetRows().FieldCount(), 1);
  EXPECT_EQ(totals->GetRows().Text(0, 0, scratch), "777");
  EXPECT_EQ(totals->GetRows().Values(0)->integer, 777);
  EXPECT_EQ(report.runner->Ran(), "");
  EXPECT_EQ(ErrorOf([&] { totals->NextRecordset(); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { totals->FieldName(-1); }).Number(), 9);
  totals->Close();
  EXPECT_EQ(ErrorOf([&] { totals->GetRows(); }).Number(), 91);
}

TEST(ReportRecordSet, TotalsOfAShortReportRunAtTheirOwnStep) {
  Report report(10, kTotals);
  report.Open().GetRows();
  report.runner->Ran();
  std::string scratch;
  EXPECT_EQ(report.records->NextRecordset()->GetRows().Text(0, 0, scratch), "777");
  EXPECT_EQ(report.runner->Ran(), "select sum(n) as n from T");
}

TEST(ReportRecordSet, WhatCannotBeReadByWindowsRunsAsItStands) {
  Report report(1000);
  report.statements = StatementQueue({"select n from T"});
  EXPECT_EQ(report.Open().GetRows().RowCount(), 1000);
  EXPECT_EQ(report.runner->Ran(), "select n from T");
}

TEST(ReportRecordSet, WhereOnlyAllRowsCanBeReadTheyHaveOneOrder) {
  Report report(1000);
  report.runner->windowRows = 0;
  EXPECT_EQ(report.Open().GetRows().RowCount(), 1000);
  EXPECT_EQ(report.runner->Ran(), "n asc, 1 asc");
}

TEST(ReportRecordSet, AFormThatFailsGivesWayToTheReportsOwnStatement) {
  const struct {
    const char* why;
    const char* failing;
    const char* ran;
  } kCases[] = {
      {"the first window", "1 asc", "n asc, 1 asc limit 11 offset 0; snapshot; n"},
      {"the count", "count(*)",
       "n asc, 1 asc limit 11 offset 0; select count(*) as Counted from (select n from T) Counted; snapshot; n"},
      {"a window further on", "offset 300",
       "n asc, 1 asc limit 11 offset 0; select count(*) as Counted from (select n from T) Counted; "
       "n asc, 1 asc limit 10 offset 300; snapshot; n asc, 1 asc limit 1000 offset 0"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    Report report(1000);
    report.runner->failing = c.failing;
    EXPECT_EQ(report.Open().GetRows().RowCount(), 1000);
    EXPECT_EQ(report.Text(300), "300");
    EXPECT_EQ(report.runner->Ran(), c.ran);
  }
}

TEST(ReportRecordSet, ItsOwnErrorIsTheOneThatIsTold) {
  Report report(1000);
  report.runner->failing = "n from T";
  EXPECT_EQ(ErrorOf([&] { report.Open(); }).Description(), "[42000] No: select n from T order by n");
}

TEST(ReportRecordSet, AStatementThatOutstaysItsTimeIsNotRunAgain) {
  for (const char* silent : {"limit 11", "count(*)"}) {
    Report report(1000);
    report.runner->silent = silent;
    EXPECT_EQ(ErrorOf([&] { report.Open().GetRows(); }).Description(),
              "[HYT00] The query was stopped after 1 seconds.");
    EXPECT_NE(report.runner->ran.back().find(silent), std::string::npos);
  }
}

TEST(ReportRecordSet, ADatabaseThatIsGoneIsAskedForAWindowOnce) {
  Report report(1000);
  report.Open().GetRows();
  report.runner->failing = "select";
  report.runner->Ran();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(ErrorOf([&] { report.Text(300 + 10 * i); }).Number(), codes::kSqlSyntax);
  EXPECT_EQ(report.runner->Ran(), "n asc, 1 asc limit 10 offset 300; snapshot; n asc, 1 asc limit 1000 offset 0");
  EXPECT_EQ(report.Text(5), "5");
}

TEST(ReportRecordSet, AFailedTotalSpoilsNoRows) {
  Report report(1000);
  report.Open().GetRows();
  report.runner->failing = "sum(n)";
  EXPECT_EQ(ErrorOf([&] { report.records->NextRecordset(); }).Number(), codes::kSqlSyntax);
  report.runner->Ran();
  EXPECT_EQ(report.Text(300), "300");
  EXPECT_EQ(report.runner->Ran(), "snapshot; n asc, 1 asc limit 10 offset 300");
}

TEST(ReportRecordSet, ClosedItIsNotThere) {
  Report report(1000);
  report.Open().GetRows();
  report.records->Close();
  EXPECT_EQ(ErrorOf([&] { report.records->GetRows(); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { report.records->NextRecordset(); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { report.records->Close(); }).Number(), 91);
}

}  // namespace
}  // namespace kalvo::test
