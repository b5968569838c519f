#include "kalvo/memory/memory_database.h"

#include <gtest/gtest.h>

#include "kalvo/enumerations.h"
#include "kalvo/memory/memory_page.h"
#include "kalvo/table_generator.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

// The HTML of a report over the database.
std::string ReportOf(MemoryDatabase& database, KalvoTableConstants id, std::vector<MemoryParameter> query = {}) {
  const MemoryParts parts(database);
  const auto page = std::make_shared<MemoryPage>(std::move(query));
  const auto generator = std::make_shared<KalvoforExchangeTableGenerator>(parts.platform);
  generator->OnStartPage(*page);
  generator->BuildTable(id, "", "Meridian");
  generator->OnEndPage();
  return page->Html();
}

bool Has(const std::string& html, std::string_view text) { return html.find(text) != html.npos; }

TEST(MemoryDatabase, AReportIsRenderedFromItsRowsAndTotals) {
  MemoryDatabase database({{"ComputerName", "Missing", "Mailboxes"}, {{"EXCH01", "0", "1200"}, {"EXCH02", "0", ""}}},
                          {{"Mailboxes"}, {{"1234567"}}});
  const std::string html = ReportOf(database, TABLE_RES_ORGANIZATION_SERVERSUMMARY);
  EXPECT_TRUE(Has(html, "EXCH01"));
  EXPECT_TRUE(Has(html, "1,200"));
  EXPECT_TRUE(Has(html, "1,234,567"));
}

TEST(MemoryDatabase, APageShowsTheRowsThatItIsAskedFor) {
  MemoryTable servers{{"ComputerName"}, {}};
  for (int i = 0; i < 100; ++i) servers.rows.push_back({"EXCH" + std::to_string(100 + i)});
  MemoryDatabase database(servers);
  const std::string html = ReportOf(database, TABLE_RES_ORGANIZATION_ALLSERVERS, {{"First", "41"}, {"PageSize", "20"}});
  EXPECT_FALSE(Has(html, "EXCH139"));
  EXPECT_TRUE(Has(html, "EXCH140"));
  EXPECT_TRUE(Has(html, "EXCH159"));
  EXPECT_FALSE(Has(html, "EXCH160"));
}

TEST(MemoryDatabase, HasNothingOutsideOfItsRows) {
  MemoryDatabase database({{"A", "B"}, {{"1", "2"}, {"3"}}});
  const auto records = database.Connect("any")->Execute({"any", "any", ""});
  const Rows& rows = records->GetRows();
  std::string scratch;
  EXPECT_EQ(rows.Text(1, 0, scratch), "2");
  const struct {
    const char* why;
    std::int32_t field, row;
  } kCases[] = {{"before the rows", 0, -1},
                {"behind them", 0, 2},
                {"before the fields", -1, 0},
                {"behind them", 2, 0},
                {"a row that is too short", 1, 1}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ErrorOf([&] { rows.Text(c.field, c.row, scratch); }).Number(), 9);
  }
  EXPECT_EQ(ErrorOf([&] { records->FieldName(2); }).Number(), 9);
  EXPECT_EQ(ErrorOf([&] { records->FieldName(-1); }).Number(), 9);
  EXPECT_FALSE(rows.Binary(0, 0));
}

TEST(MemoryDatabase, HasTotalsAndNothingBehindThem) {
  MemoryDatabase database({{"A"}, {}}, {{"S"}, {{"7"}}});
  const auto records = database.Connect("any")->Execute({"any", "any", ""});
  EXPECT_TRUE(records->IsEmpty());
  const auto totals = records->NextRecordset();
  EXPECT_EQ(totals->FieldName(0), "S");
  EXPECT_EQ(ErrorOf([&] { totals->NextRecordset(); }).Number(), 91);
}

TEST(MemoryParts, RankNothingAndStopTheClock) {
  MemoryDatabase database({});
  const MemoryParts parts(database);
  EXPECT_EQ(ErrorOf([&] { parts.platform.topN.NewResults(); }).Number(), 429);
  EXPECT_EQ(ErrorOf([&] { parts.platform.topN.NewServerLoader(); }).Number(), 429);
  EXPECT_EQ(ErrorOf([&] { parts.platform.topN.NewMailboxGroupLoader(); }).Number(), 429);
  EXPECT_EQ(parts.platform.clock.Now().serial, 36000);
  EXPECT_EQ(parts.platform.clock.Timer(), 0);
}

}  // namespace
}  // namespace kalvo::test
