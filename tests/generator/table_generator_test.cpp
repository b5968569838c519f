#include "kalvo/table_generator.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

struct GeneratorFixture : PageFixture {
  explicit GeneratorFixture(std::string_view query = "") : PageFixture(query) { generator->OnStartPage(*page); }

  std::string Sql() const { return database.sql; }

  std::shared_ptr<KalvoforExchangeTableGenerator> generator =
      std::make_shared<KalvoforExchangeTableGenerator>(platform);
};

TEST(TableGenerator, TakesTheHostObjectsInTheirOrderAndStartsItsOwn) {
  PageFixture host;
  const auto page = std::make_shared<FakePage>();
  const std::vector<std::string> once = {"Response()", "Request()", "Session()", "Server()"};
  std::vector<std::string> thrice;
  for (int i = 0; i < 3; ++i) thrice.insert(thrice.end(), once.begin(), once.end());
  KalvoforExchangeTableGenerator(host.platform).OnStartPage(*page);
  EXPECT_EQ(page->steps.SeenByThePage(), thrice) << "its own, the context's and the display's";
}

TEST(TableGenerator, AnEmptyReportShowsTheStandardMessage) {
  GeneratorFixture page;
  page.generator->BuildTable(TABLE_CURRENTALERTS);
  EXPECT_EQ(page.Text(), "\r\n<a name=\"1chart\"></a>\r\n<p><em>There are no items in this report.</em></p>\r\n");
}

TEST(TableGenerator, ATableMayHaveAMessageAndATitleOfItsOwn) {
  GeneratorFixture page;
  page.generator->BuildTable(TABLE_CURRENTALERTS, "", "", "", "", "", TOPN_UNDEFINED, "None.", "Title");
  EXPECT_EQ(page.Text(),
            "\r\n<a name=\"1chart\"></a>\r\n<table border=\"0\">\r\n<tr><th align=\"left\">Title</th></tr>"
            "</table>\r\n<p><em>None.</em></p>\r\n");
}

TEST(TableGenerator, IdsWithoutASlotFailAndWriteNothing) {
  for (const int id : {0, 69, 70, 71, 72, 73, 74, 75, -1, 999}) {
    SCOPED_TRACE(id);
    GeneratorFixture page;
    EXPECT_EQ(ErrorOf([&] { page.generator->BuildTable(static_cast<KalvoTableConstants>(id)); }).Number(), 9);
    EXPECT_EQ(page.Text(), "");
  }
}

TEST(TableGenerator, EmptySlotsSaySoAndCountNoTable) {
  GeneratorFixture page;
  page.generator->BuildTable(TABLE_ALLMANAGEDCOMPUTERS);
  EXPECT_EQ(page.Taken(), "<p>The table requested is invalid.</p>");
  page.generator->BuildTable(TABLE_TOTALTABLES);
  EXPECT_EQ(page.Taken(), "<p>The table requested is invalid.</p>");
  page.generator->BuildTable(TABLE_CURRENTALERTS);
  EXPECT_NE(page.Text().find("1chart"), std::string::npos);
}

TEST(TableGenerator, EveryScopeValueReplacesTheOneBefore) {
  GeneratorFixture page;
  page.generator->BuildTable(TABLE_RES_ORGANIZATION_SITESERVERSUMMARY, "", "Org", "Site");
  EXPECT_NE(page.Sql().find("s.DistOrgName = 'Org' and s.DistSiteName = 'Site'"), std::string::npos);
  page.generator->BuildTable(TABLE_RES_ORGANIZATION_SITESERVERSUMMARY, "", "Org");
  EXPECT_NE(page.Sql().find("s.DistOrgName = 'Org' and s.DistSiteName = ''"), std::string::npos);
  page.generator->BuildTable(TABLE_AmbiguousAddressResolution, "EXCH01", "", "", "Ken%");
  EXPECT_NE(page.Sql().find("s.ComputerName = 'EXCH01' and m.MbName like 'Ken%'"), std::string::npos);
  page.generator->BuildTable(TABLE_AmbiguousAddressResolution);
  EXPECT_NE(page.Sql().find("s.ComputerName = '' and m.MbName like ''"), std::string::npos);
}

TEST(TableGenerator, ARankedTableTakesItsScope) {
  GeneratorFixture page;
  page.generator->BuildTable(TABLE_TOPN_MBSPACE, "", "", "Site", "", "", TOPN_SITE);
  EXPECT_EQ(page.ranking.steps.SeenByThePage()[2], "Server.LoadSite(2, Site)");
  page.generator->BuildTable(TABLE_TOPN_MBSPACE);
  EXPECT_NE(page.Text().find("Internal error: No TopN Load type specified."), std::string::npos);
}

TEST(TableGenerator, EachTableOfAPageIsSortedByItsOwnPosition) {
  GeneratorFixture page("Sort=&Sort=MbName&SortOrder=&SortOrder=DESC");
  page.generator->BuildTable(TABLE_CURRENTALERTS);
  EXPECT_NE(page.Sql().find("order by AlertTime DESC"), std::string::npos);
  page.generator->BuildTable(TABLE_CHARGEBACK_Server);
  EXPECT_NE(page.Sql().find("order by MbName DESC"), std::string::npos);
}

TEST(TableGenerator, GivesTheFixedSqlWithoutAPage) {
  PageFixture host;
  const KalvoforExchangeTableGenerator generator(host.platform);
  EXPECT_EQ(generator.GetTableSQL(TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS),
            "SELECT s.* FROM EXDB_SERVER s Where s.Missing = 1 and s.serverstate = 2");
  for (const int id : {0, 2, 3, 6, 7, 8, 10, 17, 30, 44, 62, 75}) {
    EXPECT_EQ(generator.GetTableSQL(static_cast<KalvoTableConstants>(id)), "") << id;
  }
}

TEST(TableGenerator, TearDownChangesNothing) {
  GeneratorFixture page;
  page.generator->TearDown();
  page.generator->BuildTable(TABLE_CURRENTALERTS);
  EXPECT_NE(page.Taken(), "");
  page.generator->OnEndPage();
  page.generator->TearDown();
}

TEST(TableGenerator, AfterThePageItsOwnWritesFailAndATablesAreSkipped) {
  GeneratorFixture page;
  page.generator->OnEndPage();
  EXPECT_EQ(ErrorOf([&] { page.generator->BuildTable(TABLE_ALLMANAGEDCOMPUTERS); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { page.generator->BuildTable(TABLE_CURRENTALERTS); }).Number(), 0);
  EXPECT_EQ(page.Text(), "");
}

TEST(TableGenerator, WorksWithoutAPageAtAll) {
  PageFixture host;
  KalvoforExchangeTableGenerator generator(host.platform);
  EXPECT_EQ(ErrorOf([&] { generator.OnEndPage(); }).Number(), 0);
  EXPECT_EQ(ErrorOf([&] { generator.BuildTable(TABLE_CURRENTALERTS); }).Number(), 0);
}

TEST(TableGenerator, WithoutAPageATableThatOpensWritesNowhere) {
  PageFixture page;
  page.ranking.rows = {{{2, std::string("Ann")}}};
  KalvoforExchangeTableGenerator generator(page.platform);
  EXPECT_EQ(ErrorOf([&] { generator.BuildTable(TABLE_TOPN_MBCNT, "", "", "", "", "", TOPN_SITE); }).Number(), 0);
  EXPECT_EQ(page.ranking.steps.Count("MoveFirst"), 1u);
  EXPECT_EQ(page.Text(), "");
}

TEST(TableGenerator, TablesOutlastThePage) {
  GeneratorFixture page("PageSize=1");
  page.database.results = {{{"Name"}, {{"a"s}, {"b"s}}}};
  page.generator->BuildTable(TABLE_RES_SERVERGROUPS_MAILBOXESSUMMARY);
  EXPECT_NE(page.Taken().find("Number of Entries:"), std::string::npos);
  page.generator->OnEndPage();
  page.page->request = std::make_shared<FakeRequest>("");
  page.generator->OnStartPage(*page.page);
  page.generator->BuildTable(TABLE_RES_SERVERGROUPS_MAILBOXESSUMMARY);
  EXPECT_NE(page.Taken().find("Number of Entries:"), std::string::npos) << "shown from then on";
}

}  // namespace
}  // namespace kalvo::test
