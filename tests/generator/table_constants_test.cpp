#include "kalvo/table_constants.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace kalvo::test {
namespace {

std::string Sql(int table) { return std::string(TableConstants().TableSQL(static_cast<KalvoTableConstants>(table))); }

int Count(const std::string& text, std::string_view part) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(TableConstants, AreTheSameOnEveryObject) {
  for (int i = 0; i < 2; ++i) {
    const TableConstants constants;
    EXPECT_EQ(constants.TABLES_DSN(), "KalvoDB");
    EXPECT_EQ(constants.gszAscendingSort(), "ASC");
    EXPECT_EQ(constants.gszDescendingSort(), "DESC");
  }
}

TEST(TableConstants, OnlyNineTablesHaveAFixedQuery) {
  const std::set<int> fixed = {4, 5, 9, 11, 12, 13, 14, 15, 16};
  for (int id = -3; id <= 80; ++id) {
    SCOPED_TRACE(id);
    EXPECT_EQ(Sql(id).empty(), fixed.count(id) == 0);
  }
}

TEST(TableConstants, FixedQueriesHoldNoPlaceholdersAndNoOrder) {
  for (int id = 4; id <= 16; ++id) {
    SCOPED_TRACE(id);
    EXPECT_EQ(Sql(id).find('%'), std::string::npos);
    EXPECT_EQ(Sql(id).find("order by"), std::string::npos);
    EXPECT_TRUE(Sql(id).empty() || Sql(id).rfind("SELECT ", 0) == 0);
  }
}

TEST(TableConstants, QueriesKeepTheirSpacing) {
  EXPECT_EQ(Sql(9).back(), ' ');
  for (const int id : {4, 5, 11, 12, 13, 14, 15, 16}) EXPECT_NE(Sql(id).back(), ' ') << id;
  EXPECT_EQ(Count(Sql(13), " OR  at."), 6) << "two blanks behind each OR";
  EXPECT_EQ(Count(Sql(13), " OR at."), 0);
  for (const int id : {14, 16}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(Count(Sql(id), " OR at."), id == 14 ? 6 : 5);
    EXPECT_EQ(Count(Sql(id), "  "), 0);
  }
  EXPECT_EQ(Count(Sql(5), "AlertTypeCode = 5022"), 1);
  for (const int id : {12, 13, 14, 15, 16}) EXPECT_EQ(Count(Sql(id), "Code ="), 0) << "no blanks around = in " << id;
}

TEST(TableConstants, QueriesCarryTheirCodes) {
  const struct {
    int table;
    std::set<int> codes;
  } kCases[] = {
      {12, {5018}}, {13, {5001, 5002, 5006, 5008, 5009, 5013, 5036}}, {14, {5004, 5005, 5007, 5011, 5012, 5014, 5042}},
      {15, {5016}}, {16, {5030, 5031, 5032, 5033, 5034, 5035}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.table);
    std::set<int> codes;
    const std::string sql = Sql(c.table);
    constexpr std::string_view kStart = "AlertTypeCode=";
    for (auto at = sql.find(kStart); at != std::string::npos; at = sql.find(kStart, at + 1)) {
      codes.insert(std::stoi(sql.substr(at + kStart.size(), 4)));
    }
    EXPECT_EQ(codes, c.codes);
  }
  for (const int id : {4, 5, 9, 11}) EXPECT_EQ(Count(Sql(id), "s.serverstate = 2"), 1) << id;
}

TEST(TableConstants, TheShortQueriesAreTheseToTheLetter) {
  EXPECT_EQ(Sql(11), "SELECT s.* FROM EXDB_SERVER s Where s.Missing = 1 and s.serverstate = 2");
  EXPECT_EQ(Sql(12),
            "SELECT a.* FROM RMC_ALERT a, RMC_ALERTTYPE at WHERE at.AlertTypeId = a.AlertTypeId AND "
            "at.AlertTypeCode=5018");
}

}  // namespace
}  // namespace kalvo::test
