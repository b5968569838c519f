#include <gtest/gtest.h>

#include <atomic>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "adapters/database/test_engine.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace std::chrono_literals;

const std::string kLongText = [] {
  std::string text;
  while (text.size() < 200'000) text += "Zeile \xC3\xBC \xF0\x9D\x84\x9E; ";
  return text;
}();

constexpr const char* kName = "O'Neil \\ \"x\" \xF0\x9D\x84\x9E \xE6\xBC\xA2";

std::string Literal(const std::string& text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? "''" : std::string(1, c);
  return out + "'";
}

void MakeFacts(TestEngine& engine) {
  const bool escapes = engine.dataSource == "KalvoOnMariaDb";
  engine.Execute(std::string(escapes ? "set session sql_mode = 'NO_BACKSLASH_ESCAPES';" : "") +
                 "create table Facts (Id integer not null, Name varchar(40), Note " + engine.longTextType +
                 ", Large bigint, Ratio double precision, Price numeric(10,2), Moment " + engine.dateTimeType +
                 ", Code " + engine.bytesType + ");" +
                 "insert into Facts values (1, 'Ann', '', 5000000000, 0.1, 12.50, '2024-02-03 10:04:05', " +
                 engine.bytesLiteral + ");" + "insert into Facts values (2, " + Literal(kName) + ", " +
                 Literal(kLongText) + ", -1, 1e20, 15, '2024-02-03 00:00:00', null);" +
                 "insert into Facts values (3, null, null, null, null, null, null, null);");
}

class DatabaseContract : public testing::TestWithParam<EngineCase> {
 protected:
  void SetUp() override {
    static std::set<std::string> filled;
    engine_ = &GetParam().engine();
    if (filled.insert(GetParam().name).second) MakeFacts(*engine_);
    connection_ = Connect(*engine_);
  }

  std::unique_ptr<RecordSet> Records(const std::string& sql) { return Query(*connection_, sql); }

  // The error of a query, which must fail.
  Error ErrorOfQuery(const std::string& sql) {
    return ErrorOf([&] { Records(sql); });
  }

  TestEngine* engine_ = nullptr;
  std::unique_ptr<Connection> connection_;
};

enum Field { Id, Name, Note, Large, Ratio, Price, Moment, Code };

TEST_P(DatabaseContract, GivesEveryTypeItsText) {
  const auto records = Records("select Id, Name, Note, Large, Ratio, Price, Moment, Code from Facts order by Id");
  const Rows& rows = records->GetRows();
  ASSERT_EQ(rows.RowCount(), 3);
  ASSERT_EQ(rows.FieldCount(), 8);
  const struct {
    const char* why;
    Field field;
    int row;
    std::string text;
  } kCases[] = {
      {"an integer", Id, 0, "1"},
      {"a text", Name, 0, "Ann"},
      {"an empty text", Note, 0, ""},
      {"an integer beyond 32 bits", Large, 0, "5000000000"},
      {"a number with a fraction", Ratio, 0, "0.1"},
      {"a decimal without its trailing zeros", Price, 0, "12.5"},
      {"a moment", Moment, 0, "2/3/2024 10:04:05 AM"},
      {"quotes, backslashes and letters outside of the basic plane", Name, 1, kName},
      {"a long text", Note, 1, kLongText},
      {"a negative integer", Large, 1, "-1"},
      {"a large number", Ratio, 1, "1E+20"},
      {"a whole decimal", Price, 1, "15"},
      {"a day", Moment, 1, "2/3/2024"},
      {"a null text", Name, 2, ""},
      {"a null long text", Note, 2, ""},
      {"a null integer", Large, 2, ""},
      {"a null number", Ratio, 2, ""},
      {"a null decimal", Price, 2, ""},
      {"a null moment", Moment, 2, ""},
      {"null bytes", Code, 2, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    std::string scratch = "left over";
    EXPECT_EQ(rows.Text(c.field, c.row, scratch), c.text);
  }
}

TEST_P(DatabaseContract, GivesBytesAsTheyAre) {
  const auto records = Records("select Code, Id from Facts order by Id");
  const Rows& rows = records->GetRows();
  const std::vector<std::uint8_t> expected = {0, 1, 2, 3, 0xFC, 0xFD, 0xFE, 0xFF};
  const auto bytes = rows.Binary(0, 0);
  ASSERT_TRUE(bytes.has_value());
  EXPECT_EQ(std::vector<std::uint8_t>(bytes->begin(), bytes->end()), expected);
  EXPECT_FALSE(rows.Binary(0, 1).has_value());
  const Error error = ErrorOf([&] { rows.Binary(1, 0); });
  EXPECT_EQ(error.Number(), 13);
}

TEST_P(DatabaseContract, GivesBoundColumnsTheSameTexts) {
  const auto records = Records(
      "select Id, Name, Large, Ratio, Price, Moment from Facts where Name is null or Id < 3 "
      "order by Id DESC");
  const std::vector<std::string> expected[] = {
      {"3", "", "", "", "", ""},
      {"2", kName, "-1", "1E+20", "15", "2/3/2024"},
      {"1", "Ann", "5000000000", "0.1", "12.5", "2/3/2024 10:04:05 AM"},
  };
  for (int row = 0; row < 3; ++row) {
    for (int field = 0; field < 6; ++field) EXPECT_EQ(TextOf(*records, field, row), expected[row][field]);
  }
}

TEST_P(DatabaseContract, GivesComputedValuesTheirText) {
  const auto records =
      Records("select count(*), sum(Large), max(Moment), min(Moment), max(Ratio), sum(Price), max(Name) from Facts");
  const std::vector<std::string> expected = {"3", "4999999999", "2/3/2024 10:04:05 AM", "2/3/2024", "1E+20", "27.5"};
  for (int i = 0; i < 6; ++i) EXPECT_EQ(TextOf(*records, i, 0), expected[i]) << i;
}

TEST_P(DatabaseContract, GivesSumsOfNothingAsNull) {
  const auto records = Records("select sum(Large) as Total, count(*) as Many from Facts where Id > 1000");
  EXPECT_FALSE(records->IsEmpty());
  EXPECT_EQ(TextOf(*records, 0, 0), "");
  EXPECT_EQ(TextOf(*records, 1, 0), "0");
}

TEST_P(DatabaseContract, TakesAnIntegerBeyond32BitsBehindASmallOne) {
  const auto records = Records("select sum(Large * 3) as S from Facts group by Id order by Id DESC");
  EXPECT_EQ(TextOf(*records, 0, 2), "15000000000");
}

TEST_P(DatabaseContract, NamesTheFieldsOfAnEmptyResult) {
  const auto records = Records("select Id, Name as ServerName from Facts where 1 = 0");
  EXPECT_TRUE(records->IsEmpty());
  EXPECT_EQ(records->FieldCount(), 2);
  EXPECT_EQ(ToLower(records->FieldName(0)), "id");
  EXPECT_EQ(ToLower(records->FieldName(1)), "servername");
  EXPECT_EQ(records->GetRows().RowCount(), 0);
  EXPECT_THROW(records->FieldName(2), Error);
}

TEST_P(DatabaseContract, TakesTheStatementThatTotalsEndWith) {
  EXPECT_TRUE(Records("select 1 where (1 = 0)")->IsEmpty());
}

TEST_P(DatabaseContract, ReportsNamesThatDifferInCaseAlone) {
  const auto records = Records("select Id as Server, Name as SERVER from Facts");
  EXPECT_EQ(records->FieldCount(), 2);
  EXPECT_EQ(ToLower(records->FieldName(0)), ToLower(records->FieldName(1)));
}

TEST_P(DatabaseContract, RunsTheStatementsOfABatchOneByOne) {
  const auto first = Records("select Id from Facts order by Id DESC\r\n\r\nselect sum(Id) as Total from Facts");
  const auto second = first->NextRecordset();
  EXPECT_EQ(TextOf(*second, 0, 0), "6");
  EXPECT_EQ(ToLower(second->FieldName(0)), "total");
  EXPECT_EQ(TextOf(*first, 0, 0), "3");
  EXPECT_EQ(first->GetRows().RowCount(), 3);
}

TEST_P(DatabaseContract, FailsWith91BehindTheLastStatementAndHarmsNothing) {
  const auto records = Records("select Id from Facts order by Id");
  const Error error = ErrorOf([&] { records->NextRecordset(); });
  EXPECT_EQ(error.Number(), 91);
  EXPECT_EQ(TextOf(*records, 0, 2), "3");
}

TEST_P(DatabaseContract, ReportsTheErrorOfTheSecondStatementWhenItIsAskedFor) {
  const auto records = Records("select Id from Facts order by Id\r\n\r\nselect Id from Nowhere");
  EXPECT_EQ(records->GetRows().RowCount(), 3);
  const Error error = ErrorOf([&] { records->NextRecordset(); });
  EXPECT_EQ(error.Number(), codes::kUnknownTable);
  EXPECT_EQ(TextOf(*records, 0, 0), "1");
  EXPECT_EQ(FirstText(*connection_, "select count(*) from Facts"), "3") << "the connection is usable";
}

TEST_P(DatabaseContract, KeepsTheOrderOfManyRows) {
  const auto records =
      Records("select a.Id, b.Id as Second from Numbers a, Numbers b where b.Id <= 5 order by a.Id, b.Id");
  const Rows& rows = records->GetRows();
  ASSERT_EQ(rows.RowCount(), 5000);
  std::string scratch;
  for (int row = 0; row < 5000; ++row) {
    ASSERT_EQ(rows.Text(0, row, scratch), std::to_string(row / 5 + 1));
    ASSERT_EQ(rows.Text(1, row, scratch), std::to_string(row % 5 + 1));
  }
}

TEST_P(DatabaseContract, ReadsManyRowsOfLongColumns) {
  const auto records =
      Records("select n.Id, f.Note from Numbers n, Facts f where f.Id = 2 and n.Id <= 20 order by n.Id");
  const Rows& rows = records->GetRows();
  ASSERT_EQ(rows.RowCount(), 20);
  std::string scratch;
  for (int row = 0; row < 20; ++row) {
    ASSERT_EQ(rows.Text(0, row, scratch), std::to_string(row + 1));
    ASSERT_EQ(rows.Text(1, row, scratch), kLongText);
  }
}

TEST_P(DatabaseContract, NumbersItsErrors) {
  const struct {
    const char* why;
    const char* sql;
    std::int32_t number;
  } kCases[] = {
      {"an unknown table", "select Id from Nowhere", codes::kUnknownTable},
      {"an unknown column", "select Missing from Facts", codes::kSqlSyntax},
      {"an unknown column to sort by", "select Id from Facts order by Missing", codes::kSqlSyntax},
      {"no SQL at all", "nonsense", codes::kSqlSyntax},
      {"an empty sort text", "select Id from Facts order by  ", codes::kSqlSyntax},
      {"a direction without a name", "select Id from Facts order by  ASC", codes::kSqlSyntax},
      {"a text that does not end", "select 'Id from Facts", codes::kSqlSyntax},
  };
  const std::regex form("\\[[0-9A-Z]{5}\\] [^\r\n]+");
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const Error error = ErrorOfQuery(c.sql);
    EXPECT_EQ(error.Number(), c.number) << error.Description();
    EXPECT_TRUE(std::regex_match(error.Description(), form)) << error.Description();
  }
}

TEST_P(DatabaseContract, RefusesToWrite) {
  for (const char* sql : {"delete from Facts", "update Facts set Name = 'x'", "insert into Facts (Id) values (4)",
                          "drop table Facts", "create table Mine (Id integer)"}) {
    SCOPED_TRACE(sql);
    EXPECT_EQ(ErrorOfQuery(sql).Number(), codes::kFailed);
  }
  EXPECT_EQ(FirstText(*connection_, "select count(*) from Facts where Name = 'Ann'"), "1");
}

TEST_P(DatabaseContract, StopsAStatementAtItsTimeLimit) {
  const auto impatient = Connect(*engine_, 300ms);
  const auto before = std::chrono::steady_clock::now();
  const Error error = ErrorOf([&] {
    Query(*impatient, "select sum(a.Id * b.Id + c.Id * d.Id) from Numbers a, Numbers b, Numbers c, Numbers d")
        ->GetRows();
  });
  EXPECT_EQ(error.Number(), codes::kFailed);
  EXPECT_EQ(error.Description(), "[HYT00] The query was stopped after 0.3 seconds.");
  EXPECT_LT(std::chrono::steady_clock::now() - before, 5s);
  EXPECT_EQ(FirstText(*impatient, "select count(*) from Facts"), "3") << "the connection is usable";
}

TEST_P(DatabaseContract, StopsAStatementThatNobodyWantsAnyMore) {
  std::atomic<int> asked{0};
  const auto connection = Connect(*engine_, std::chrono::minutes(5), [&] { return ++asked < 3; });
  EXPECT_THROW(
      Query(*connection, "select sum(a.Id * b.Id + c.Id * d.Id) from Numbers a, Numbers b, Numbers c, Numbers d")
          ->GetRows(),
      Error);
  EXPECT_GE(asked, 3);
  asked = -1'000'000;
  EXPECT_EQ(FirstText(*connection, "select count(*) from Facts"), "3") << "the connection is usable";
}

// A server ends a connection a little after its client does.
int ConnectionsOnceThereAre(TestEngine& engine, int expected) {
  int count = engine.OpenConnections();
  for (int i = 0; i < 250 && count != expected; ++i) {
    std::this_thread::sleep_for(20ms);
    count = engine.OpenConnections();
  }
  return count;
}

TEST_P(DatabaseContract, ClosesItsConnection) {
  ASSERT_EQ(ConnectionsOnceThereAre(*engine_, 1), 1);
  auto another = Connect(*engine_);
  auto records = Query(*another, "select Id from Facts");
  EXPECT_EQ(ConnectionsOnceThereAre(*engine_, 2), 2);
  records.reset();
  another.reset();
  EXPECT_EQ(ConnectionsOnceThereAre(*engine_, 1), 1);
}

TEST_P(DatabaseContract, KnowsWhatIsClosed) {
  const auto records = Records("select Id from Facts");
  records->Close();
  EXPECT_THROW(records->GetRows(), Error);
  EXPECT_THROW(records->Close(), Error);
  connection_->Close();
  EXPECT_EQ(ErrorOfQuery("select 1 as One").Number(), codes::kFailed);
}

TEST_P(DatabaseContract, ServesThreadsWithAConnectionEach) {
  const auto database = engine_->Open(15s, {});
  std::vector<std::thread> threads;
  std::atomic<int> right = 0;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      const auto connection = database->Connect(engine_->dataSource);
      for (int turn = 0; turn < 10; ++turn) right += FirstText(*connection, "select sum(Id) from Numbers") == "500500";
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(right, 40);
}

std::string NameOf(const testing::TestParamInfo<EngineCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Engines, DatabaseContract, testing::ValuesIn(kEngines), NameOf);

}  // namespace
}  // namespace kalvo::test
