#include "kalvo/table_database.h"

#include <gtest/gtest.h>

#include <cctype>
#include <map>
#include <set>

#include "fakes/page_fixture.h"
#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/control_column.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

constexpr int kFirst = 2, kLast = 67;

class TableDatabase : public testing::Test {
 protected:
  Table& Of(int id) { return *database_.GetTable(id); }
  std::string Sql(int id) { return Of(id).GetSQL(); }

  PageFixture page_;
  KalvoTableDatabase database_{page_.platform};
  KalvoColumnDatabase columns_;
};

const std::string kNoTotals = "\r\n\r\nselect 1 where (1 = 0)";

// ---- slots ----------------------------------------------------------------------------------------------

TEST_F(TableDatabase, EveryIdIsValid) {
  for (const int id : {0, 1, 2, 67, 68, 75, -5, 1000000}) EXPECT_TRUE(database_.ValidTable(id)) << id;
}

TEST_F(TableDatabase, SixtySixSlotsAreFilled) {
  for (int id = 1; id <= 68; ++id) {
    SCOPED_TRACE(id);
    const bool filled = id >= kFirst && id <= kLast;
    EXPECT_EQ(database_.IsTableNull(id), !filled);
    EXPECT_EQ(database_.GetTable(id) != nullptr, filled);
    if (filled) {
      EXPECT_EQ(Of(id).GetId(), id);
    }
  }
}

TEST_F(TableDatabase, AnIdOutsideOfTheSlotsFails) {
  for (const int id : {0, 69, 70, 71, 72, 73, 74, 75, -5}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(ErrorOf([&] { database_.GetTable(id); }).Number(), 9);
    EXPECT_EQ(ErrorOf([&] { database_.IsTableNull(id); }).Number(), 9);
  }
}

TEST_F(TableDatabase, AnswersTheSameTableEveryTime) { EXPECT_EQ(database_.GetTable(2), database_.GetTable(2)); }

TEST_F(TableDatabase, EachInitializerMakesItsOwnGroup) {
  using Initializer = void (KalvoTableDatabase::*)();
  const auto range = [](int first, int last) {
    std::set<int> ids;
    for (int id = first; id <= last; ++id) ids.insert(id);
    return ids;
  };
  std::set<int> resources = range(25, 34);
  resources.merge(range(38, 43));
  const struct {
    Initializer initialize;
    std::set<int> ids;
  } kCases[] = {
      {&KalvoTableDatabase::InitializeGeneralTables, {2}},
      {&KalvoTableDatabase::InitializeTaskTables, range(3, 24)},
      {&KalvoTableDatabase::InitializeResourceTables, resources},
      {&KalvoTableDatabase::InitializeConfigurationTables, {35, 36, 37}},
      {&KalvoTableDatabase::InitializeTopNTables, range(44, 61)},
      {&KalvoTableDatabase::InitializeMAPITables, range(62, 67)},
  };
  for (const auto& c : kCases) {
    std::map<int, std::shared_ptr<Table>> before;
    for (int id = 1; id <= 68; ++id) before[id] = database_.GetTable(id);
    (database_.*c.initialize)();
    std::set<int> made;
    for (int id = 1; id <= 68; ++id) {
      if (database_.GetTable(id) != before[id]) made.insert(id);
    }
    EXPECT_EQ(made, c.ids);
  }
}

// ---- columns and order ----------------------------------------------------------------------------------

TEST_F(TableDatabase, EveryListedColumnIsInTheCatalogueOnceATable) {
  for (int id = kFirst; id <= kLast; ++id) {
    SCOPED_TRACE(id);
    const auto ids = Of(id).GetColumns();
    EXPECT_FALSE(ids.empty());
    EXPECT_EQ(std::set<std::int16_t>(ids.begin(), ids.end()).size(), ids.size());
    for (const std::int16_t column : ids) EXPECT_NE(columns_.GetColumn(column), nullptr) << column;
  }
}

TEST_F(TableDatabase, TablesListTheirColumnsInOrder) {
  const struct {
    int table;
    std::vector<std::int16_t> columns;
  } kCases[] = {
      {2, {1, 2, 3, 4, 6, 8, 5, 9, 10, 13}},
      {5, {67, 16, 42, 7, 43}},
      {7, {81, 86, 85, 83, 84, 82}},
      {9, {80, 74, 75, 76}},
      {22, {127, 124, 125}},
      {33, {15, 17, 24, 23}},
      {37, {27, 15, 16, 21, 22}},
      {43, {63}},
      {44, {101, 88, 94, 95, 96}},
      {54, {101, 88, 98, 94, 95}},
      {57, {101, 90, 97, 100, 104}},
      {60, {101, 88, 97, 100, 103, 102}},
      {62, {120, 116, 105, 113, 114, 109, 110}},
      {65, {115, 108, 111, 112, 109, 110}},
      {67, {118, 119}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.table);
    EXPECT_EQ(Of(c.table).GetColumns(), c.columns);
  }
}

TEST_F(TableDatabase, TablesOfTheSameReportShareTheirColumns) {
  const std::pair<int, int> kCases[] = {{13, 14}, {13, 16}, {17, 18}, {19, 20}, {21, 22}, {23, 24}, {30, 34},
                                        {31, 32}, {39, 40}, {39, 42}, {44, 45}, {44, 46}, {47, 48}, {49, 50},
                                        {49, 51}, {52, 53}, {56, 58}, {56, 60}, {57, 59}, {57, 61}, {66, 67}};
  for (const auto& [a, b] : kCases) EXPECT_EQ(Of(a).GetColumns(), Of(b).GetColumns()) << a << " and " << b;
}

TEST_F(TableDatabase, TablesAreOrderedAsTheyShould) {
  const struct {
    int table;
    const char *orderBy, *order;
  } kCases[] = {
      {2, "AlertTime", "DESC"},
      {3, "BackupStart", "ASC"},
      {4, "ComputerName", "ASC"},
      {6, "sb.BackupLength", "DESC"},
      {7, "PercentUsed", "DESC"},
      {8, "PercentUsed", "DESC"},
      {9, "RecipientName", "ASC"},
      {12, "Attrib2", "ASC"},
      {16, "Attrib2", "ASC"},
      {17, "", ""},
      {21, "", ""},
      {22, "", "ASC"},
      {24, "", ""},
      {25, "Name", "ASC"},
      {35, "Name", "ASC"},
      {37, "ComputerName", "ASC"},
      {38, "DbFileString", "ASC"},
      {42, "MbName", "ASC"},
      {43, "MbName", "ASC"},
      {44, "", ""},
      {45, "", "DESC"},
      {46, "", "DESC"},
      {47, "", ""},
      {61, "", ""},
      {62, "", ""},
      {67, "", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.table);
    EXPECT_EQ(Of(c.table).GetOrderBy(), c.orderBy);
    EXPECT_EQ(Of(c.table).GetDefaultSortOrder(), c.order);
  }
}

// ---- settings, by what a rendering does ------------------------------------------------------------------

TEST_F(TableDatabase, TablesShowWhatTheirSettingsSay) {
  const std::set<int> forms = {2, 9, 37};
  const std::set<int> noEntries = {26, 27, 29, 43};
  const std::set<int> scans = {7,  8,  10, 30, 31, 32, 33, 34, 38, 39, 40, 41, 42, 44, 45, 46,
                               47, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61};
  const std::set<int> totals = {7,  29, 30, 31, 32, 34, 38, 39, 40, 41, 42, 44, 45, 46, 47, 48, 49,
                                50, 51, 52, 53, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67};
  for (int id = kFirst; id <= kLast; ++id) {
    SCOPED_TRACE(id);
    PageFixture page(id == 66 || id == 67 ? "MessageId=m" : "");
    page.Administrator();
    page.MayDrillDown();
    page.context->SetName("EXCH01");
    page.context->SetMailbox("Ken");
    page.context->SetTopN(TOPN_SITE);
    page.database.results = {{{"x"}, {{"1"s}}}, {{"x"}, {{"1"s}}}};
    page.ranking.rows = {{}};
    page.live->messages->items = page.live->folders->items = page.live->attachments->items = {{}};
    KalvoTableDatabase database(page.platform);
    database.GetTable(id)->BuildHTML(*page.context, *page.page->response, *page.display, columns_, "", "");
    const std::string& html = page.Text();
    EXPECT_EQ(html.find("WARNING: Sorting will") != std::string::npos, forms.count(id) == 1);
    EXPECT_EQ(html.find("Number of Entries:") != std::string::npos, noEntries.count(id) == 0);
    EXPECT_EQ(html.find("<strong>TOTAL</strong>") != std::string::npos, totals.count(id) == 1);
    const bool block = html.find("<table border=\"0\">\r\n<tr>") != std::string::npos;
    EXPECT_EQ(block, noEntries.count(id) == 0 || scans.count(id) == 1);
  }
}

TEST_F(TableDatabase, EachTableReadsTheSourceOfItsType) {
  for (int id = kFirst; id <= kLast; ++id) {
    SCOPED_TRACE(id);
    PageFixture page("Debug=Table");
    KalvoTableDatabase database(page.platform);
    database.GetTable(id)->BuildHTML(*page.context, *page.page->response, *page.display, columns_, "", "");
    const char* label = id <= 43 ? "(KalvoDB Table)" : id <= 61 ? "(TopN Table)" : "(MAPI Table)";
    EXPECT_NE(page.Text().find(label), std::string::npos);
  }
}

// ---- SQL ------------------------------------------------------------------------------------------------

TEST_F(TableDatabase, CurrentAlertsAreSelectedToTheLetter) {
  EXPECT_EQ(Sql(2),
            "select a.*, s.missing, at.AlertTypeCode\r\n"
            "from RMC_Alert A left join exdb_server s on a.attrib2 = s.computername, RMC_AlertType at "
            "where a.alerttypeid = at.alerttypeid and at.subsystem = 'Exchange Manager'\r\n"
            " order by %SORT%\r\n\r\nselect 1 where (1 = 0)");
}

TEST_F(TableDatabase, LatestBackupsAreTheUnionOfBothTypes) {
  const auto of = [](const std::string& type) {
    return "select s.DistOrgName, s.DistSiteName, s.ComputerName, s.Missing, s.LastQuickScan, (select "
           "max(sb.BackupStart) from EXDB_ServerBackup sb where s.ServerId = sb.ServerId and sb.BackupType = " +
           type + ") as BackupStart, " + type + " as BackupType from EXDB_Server s where s.ServerState = 2";
  };
  EXPECT_EQ(Sql(3), of("1") + " union all " + of("2") + " order by %SORT%" + kNoTotals);
}

TEST_F(TableDatabase, FixedQueriesAreSortedAndHaveNoTotals) {
  for (const int id : {4, 5, 9, 11, 12, 13, 14, 15, 16}) {
    SCOPED_TRACE(id);
    const std::string fixed(TableConstants().TableSQL(static_cast<KalvoTableConstants>(id)));
    EXPECT_EQ(Sql(id), fixed + " order by %SORT%" + kNoTotals);
  }
}

TEST_F(TableDatabase, RankedServersCarryTheirOwnOrder) {
  for (int id = TABLE_PERFORMANCE_AVGMSGS_DESC; id <= TABLE_PERFORMANCE_AVGMEMUSAGE_ASC; ++id) {
    SCOPED_TRACE(id);
    EXPECT_EQ(Sql(id).find("%SORT%"), std::string::npos);
    const std::string order = id % 2 == 1 ? " DESC" : " ASC";
    EXPECT_NE(Sql(id).find(order + kNoTotals), std::string::npos);
    for (const std::int16_t column : Of(id).GetColumns()) {
      const auto definition = std::dynamic_pointer_cast<KalvoColumn>(columns_.GetColumn(column));
      EXPECT_FALSE(definition->Definition().sortColumn) << "nothing could sort it";
    }
  }
}

TEST_F(TableDatabase, EveryOtherBatchIsSortedByTheRequestAndHasTwoStatements) {
  for (int id = kFirst; id <= TABLE_AmbiguousAddressResolution; ++id) {
    SCOPED_TRACE(id);
    const std::string sql = Sql(id);
    const auto split = sql.find("\r\n\r\n");
    ASSERT_NE(split, std::string::npos);
    EXPECT_EQ(sql.find("\r\n\r\n", split + 1), std::string::npos);
    EXPECT_EQ(sql.find("%SORT%", split), std::string::npos) << "totals are not sorted";
    if (id < TABLE_PERFORMANCE_AVGMSGS_DESC || id > TABLE_PERFORMANCE_AVGMEMUSAGE_ASC) {
      EXPECT_EQ(sql.substr(split - 16, 16), " order by %SORT%");
    }
    const bool showsTotals = (id >= 29 && id <= 32) || id == 7 || id == 34 || (id >= 38 && id <= 42);
    EXPECT_EQ(sql.substr(split) != kNoTotals, showsTotals) << "totals that are shown are selected";
  }
}

TEST_F(TableDatabase, RankedAndLiveTablesHaveNoSql) {
  for (int id = TABLE_TOPN_MBCNT; id <= kLast; ++id) EXPECT_EQ(Sql(id), "") << id;
}

// The names that a statement's select list gives its fields, in lower case; "*" for all of a table.
std::set<std::string> Selected(std::string statement) {
  statement = ToLower(statement);
  std::set<std::string> names;
  std::string item;
  int depth = 0;
  for (std::size_t i = 7; i < statement.size(); ++i) {
    const bool from = depth == 0 && statement.compare(i, 5, "from ") == 0;
    if (depth == 0 && (statement[i] == ',' || from)) {
      while (!item.empty() && std::isspace(static_cast<unsigned char>(item.back()))) item.pop_back();
      names.insert(item.substr(item.find_last_of(" .") + 1));
      item.clear();
      if (from) break;
      continue;
    }
    depth += statement[i] == '(' ? 1 : statement[i] == ')' ? -1 : 0;
    item += statement[i];
  }
  return names;
}

TEST_F(TableDatabase, EveryFieldThatATablesColumnsReadIsSelected) {
  const std::map<int, std::vector<std::string>> byLink = {
      {HYPERLINK_SERVER, {"missing"}},
      {HYPERLINK_SERVER_MANAGED, {"missing", "serverstate"}},
      {HYPERLINK_ALERT_SERVER_MANAGED, {"missing", "alerttypecode"}},
      {HYPERLINK_CHARGEBACK_MAILBOX, {"computername", "mbdistname"}},
  };
  const std::map<int, std::vector<std::string>> byFormat = {
      {FORMATTYPE_BackupDateTime, {"lastquickscan"}},
      {FORMATTYPE_MEMBERSHIPCHECKBOX, {"groupname", "defaultgroup", "identifier"}},
      {FORMATTYPE_ALERTEDRESOURCE, {"alerttypecode"}},
  };
  const std::map<int, std::string> byControl = {{COL_CURRENTALERTS_DELETE, "alertid"},
                                                {COL_QUOTAVIOLATION_ID, "quotaviolationid"}};
  for (int id = kFirst; id <= TABLE_AmbiguousAddressResolution; ++id) {
    SCOPED_TRACE(id);
    const auto selected = Selected(Sql(id));
    if (selected.count("*")) continue;  // everything of a table, in the reports of alerts
    const auto needs = [&](const std::string& field) { EXPECT_EQ(selected.count(ToLower(field)), 1u) << field; };
    for (const std::int16_t column : Of(id).GetColumns()) {
      const auto data = std::dynamic_pointer_cast<KalvoColumn>(columns_.GetColumn(column));
      if (!data) {
        needs(byControl.at(column));
        continue;
      }
      needs(data->Definition().databaseField);
      if (const auto found = byLink.find(data->Definition().hyperLinkType); found != byLink.end()) {
        for (const std::string& field : found->second) needs(field);
      }
      if (const auto found = byFormat.find(data->Definition().formatType); found != byFormat.end()) {
        for (const std::string& field : found->second) needs(field);
      }
    }
  }
}

TEST_F(TableDatabase, EveryKeptTotalBehindTheFirstColumnIsSelected) {
  for (int id = kFirst; id <= TABLE_AmbiguousAddressResolution; ++id) {
    SCOPED_TRACE(id);
    const std::string sql = Sql(id);
    const auto totals = sql.substr(sql.find("\r\n\r\n") + 4);
    if (totals == kNoTotals.substr(4)) continue;
    const auto selected = Selected(totals);
    bool first = true;
    for (const std::int16_t column : Of(id).GetColumns()) {
      const auto& definition = std::dynamic_pointer_cast<KalvoColumn>(columns_.GetColumn(column))->Definition();
      const bool number =
          definition.formatType == FORMATTYPE_NUMERICVALUE || definition.formatType == FORMATTYPE_NUMBER;
      if (!first && number && definition.totalState == column_KeepTotal) {
        EXPECT_EQ(selected.count(ToLower(definition.databaseField)), 1u) << definition.databaseField;
      }
      first = false;
    }
  }
}

TEST_F(TableDatabase, EveryTablesOrderIsAmongItsSelectedFields) {
  for (int id = kFirst; id <= TABLE_AmbiguousAddressResolution; ++id) {
    SCOPED_TRACE(id);
    const auto selected = Selected(Sql(id));
    std::string order = ToLower(Of(id).GetOrderBy());
    order = order.substr(order.find('.') + 1);
    EXPECT_TRUE(order.empty() || selected.count("*") || selected.count(order)) << order;
  }
}

TEST_F(TableDatabase, ScopesAreAskedForWhereATableHasOne) {
  const struct {
    int table;
    std::vector<std::string> placeholders;
  } kCases[] = {
      {7, {"%NAME%"}},           {8, {"%NAME%"}},
      {10, {"%NAME%"}},          {30, {"%NAME%"}},
      {31, {"%ORG%"}},           {32, {"%ORG%", "%SITE%"}},
      {34, {"%NAME%"}},          {37, {"%NAME%"}},
      {38, {"%NAME%"}},          {39, {"%ORG%"}},
      {40, {"%ORG%", "%SITE%"}}, {41, {"%NAME%"}},
      {42, {"%NAME%"}},          {43, {"%NAME%", "%MAILBOX%"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.table);
    const std::set<std::string> expected(c.placeholders.begin(), c.placeholders.end());
    for (const char* placeholder : {"%NAME%", "%ORG%", "%SITE%", "%MAILBOX%"}) {
      EXPECT_EQ(Sql(c.table).find(placeholder) != std::string::npos, expected.count(placeholder) == 1) << placeholder;
    }
  }
}

}  // namespace
}  // namespace kalvo::test
