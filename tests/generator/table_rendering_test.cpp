#include <gtest/gtest.h>

#include "generator/rendering_fixture.h"

namespace kalvo::test {
namespace {

// ---- the whole ------------------------------------------------------------------------------------------

TEST(TableRendering, WritesBookmarkHeaderAndRows) {
  RenderingFixture page;
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Rows(1, 2)) + kEnd);
  EXPECT_EQ(page.database.steps.done.back(), "~Connection()") << "the source goes with the rendering";
  EXPECT_EQ(page.database.steps.Count("RecordSet.Close"), 1u);
  EXPECT_EQ(page.database.steps.Count("Connection.Close"), 1u);
}

TEST(TableRendering, ColumnsComeInTheTablesOrder) {
  RenderingFixture page("", 1);
  page.ids = {kName, kId, kName};
  page.Define();
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Row("[Name][Id][Name]") + Row("[Name=N][Id=1][Name=N]")) + kEnd);
}

TEST(TableRendering, ATitleStandsAboveTheTable) {
  RenderingFixture page;
  EXPECT_EQ(page.Render("Nothing.", "A & B"),
            kAnchor + ("<table border=\"0\">\r\n<tr><th align=\"left\">A & B</th></tr></table>\r\n"s + kStart) +
                Rows(1, 2) + kEnd);
}

TEST(TableRendering, TablesOfAPageHaveBookmarksOfTheirOwn) {
  RenderingFixture page;
  EXPECT_EQ(Between(page.Render(), "name=\"", "\""), "1chart");
  EXPECT_EQ(Between(page.Render(), "name=\"", "\""), "2chart");
}

TEST(TableRendering, AnEmptyTableShowsItsMessageAndIsNotClosed) {
  RenderingFixture page("", 0);
  page.entries = page.form = true;
  page.Define();
  page.Administrator();
  EXPECT_EQ(page.Render("No <b>rows</b>.", "Title"),
            kAnchor +
                "<table border=\"0\">\r\n<tr><th align=\"left\">Title</th></tr></table>\r\n"
                "<p><em>No <b>rows</b>.</em></p>\r\n"s);
  EXPECT_EQ(page.database.steps.Count("RecordSet.Close"), 0u);
  EXPECT_EQ(page.database.steps.done.back(), "~Connection()");
}

TEST(TableRendering, AFailedOpenIsSummedUpAndNothingElseIsWritten) {
  RenderingFixture page;
  page.database.steps.Fail("Execute", codes::kSqlSyntax, "near order");
  EXPECT_EQ(page.Render("Nothing.", "Title"),
            "<p>Error Generating Table: &nbsp;KalvodbDataSrc.OpenDS<br>Error number: 0x80040E14; &nbsp; Description: "
            "near order</p>\r\n<p>Error Generating Table: &nbsp;Failure retrieving the table information.</p>\r\n");
  EXPECT_EQ(page.database.steps.Count("Connection.Close"), 0u);
  page.database.steps.Fail("Execute", 0x10000, "a number whose low word is 0");
  EXPECT_NE(page.Render().find("Failure retrieving the table information."), std::string::npos);
}

TEST(TableRendering, TheSummaryOfAFailedOpenShowsDetailsWithTableTracing) {
  RenderingFixture page("Debug=Table");
  page.database.steps.Fail("Connect", codes::kFailed, "gone");
  const std::string html = page.Render();
  EXPECT_NE(
      html.find("Failure retrieving the table information.<br>Error number: 0x80004005; &nbsp; Description: gone"),
      std::string::npos);
}

TEST(TableRendering, AnUnknownTypeIsAnEmptyTable) {
  RenderingFixture page("Debug=Table");
  page.type = static_cast<KalvoTableType>(3);
  page.Define();
  EXPECT_EQ(page.Render(), "<p>Table Index: 1 ()</p>"s + kAnchor + "<p><em>Nothing.</em></p>\r\n");
}

// ---- warning --------------------------------------------------------------------------------------------

TEST(TableRendering, AFormWarnsAdministrators) {
  const struct {
    const char* why;
    bool administrator, form;
    const char *query, *warning;
  } kCases[] = {
      {"an administrator's form", true, true, "", "WARNING: Sorting will lose unsubmitted changes"},
      {"of several pages", true, true, "PageSize=1", "WARNING: Sorting/paging will lose unsubmitted changes"},
      {"anybody else's", false, true, "", ""},
      {"no form", true, false, "", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    RenderingFixture page(c.query);
    page.form = c.form;
    page.ids = {kId, kName};
    page.Define();
    if (c.administrator) page.Administrator();
    const std::string row =
        *c.warning ? Row("<th colspan=\"2\" align=\"left\">"s + c.warning + "</th>") + Row("[Id][Name]") : "";
    const std::string html = page.Render();
    EXPECT_EQ(html.find("WARNING") == std::string::npos, row.empty());
    EXPECT_NE(html.find(row), std::string::npos);
  }
}

// ---- totals ---------------------------------------------------------------------------------------------

TEST(TableRendering, ATotalsRowEndsTheTable) {
  RenderingFixture page;
  page.totals = true;
  page.ids = {kId, kName};
  page.Define();
  EXPECT_NE(page.Render().find(Row("[Id=2][Name=N]") + Row("[TOTAL][+Name]") + kEnd), std::string::npos);
}

TEST(TableRendering, EveryPageHasTheTotalsRow) {
  RenderingFixture page("First=2&PageSize=1", 5);
  page.totals = true;
  page.Define();
  EXPECT_NE(page.Render().find(Row("[Id=2]") + Row("[TOTAL]")), std::string::npos);
}

TEST(TableRendering, WithoutTotalsNobodyIsAskedForThem) {
  RenderingFixture page;
  page.Render();
  EXPECT_EQ(page.database.steps.Count("NextRecordset"), 0u);
}

TEST(TableRendering, TotalsThatFailAreReportedInTheLastRow) {
  RenderingFixture page;
  page.totals = true;
  page.Define();
  page.database.results.pop_back();
  EXPECT_NE(page.Render().find("<tr>\r\n[Id=2]<p>Error Generating Table: &nbsp;KalvodbDataSrc.MoveTotals<br>Error "
                               "number: 0x5B; &nbsp; Description: Object variable or With block variable not "
                               "set</p>\r\n</tr>\r\n"s +
                               kEnd),
            std::string::npos);
  page.Records(2);
  page.database.results[1].rows.clear();
  EXPECT_NE(page.Render().find("[Id=2]<p>Error Generating Table: &nbsp;Totals query not implemented for this "
                               "table.</p>\r\n</tr>\r\n"s +
                               kEnd),
            std::string::npos);
}

// ---- failing steps --------------------------------------------------------------------------------------

TEST(TableRendering, AFailedCellIsWrittenAsNothing) {
  RenderingFixture page;
  page.totals = true;
  page.ids = {kId, kName};
  page.Define();
  page.columns.steps.Fail("Id.Header");
  page.columns.steps.Fail("Name.Data", codes::kFailed, "", 2);
  page.columns.steps.Fail("Id.Total");
  EXPECT_EQ(page.Render(),
            kAnchor + (kStart + Row("[Name]") + Row("[Id=1][Name=N]") + Row("[Id=2]") + Row("[TOTAL]")) + kEnd);
}

TEST(TableRendering, WhatIsReportedWhileACellIsMadeStandsBeforeIt) {
  RenderingFixture page("", 1);
  page.columns.Add(kName, "Nobody");
  page.ids = {kId, kName};
  page.Define();
  EXPECT_NE(page.Render().find("[Id=1]<p>Error Generating Table: &nbsp;GetField: Unknown field \"Nobody\"</p>\r\n"
                               "[Nobody=]</tr>"),
            std::string::npos);
}

TEST(TableRendering, WhereTheCatalogueFailsTheColumnBeforeIsShownAgain) {
  RenderingFixture page("", 1);
  page.ids = {kId, kName};
  page.Define();
  page.columns.steps.Fail("Column", 9, "", 2);
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Row("[Id][Id]") + Row("[Id=1][Id=1]")) + kEnd);
}

TEST(TableRendering, ACatalogueThatAlwaysFailsShowsNoCells) {
  RenderingFixture page("", 1);
  page.columns.steps.Fail("Column", 9);
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Row("") + Row("")) + kEnd);
}

TEST(TableRendering, AnIdWithoutAColumnShowsNoCell) {
  RenderingFixture page("", 1);
  page.ids = {kId, 29, kName};
  page.Define();
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Row("[Id][Name]") + Row("[Id=1][Name=N]")) + kEnd);
}

TEST(TableRendering, ARefusedWriteIsSkipped) {
  RenderingFixture page;
  page.page->response->refused = "[Id=1]";
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Row("[Id]") + Row("") + Row("[Id=2]")) + kEnd);
}

TEST(TableRendering, AFailedCloseIsReportedBehindTheTable) {
  RenderingFixture page;
  page.database.steps.Fail("RecordSet.Close", codes::kFailed, "busy");
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Rows(1, 2)) + kEnd +
                               "<p>Error Generating Table: &nbsp;KalvodbDataSrc.CloseDS: rs.Close<br>Error number: "
                               "0x80004005; &nbsp; Description: busy</p>\r\n");
}

TEST(TableRendering, AfterThePageNothingIsRaised) {
  RenderingFixture page;
  page.context->OnEndPage();
  page.display->OnEndPage();
  EXPECT_EQ(ErrorOf([&] { page.Render(); }).Number(), 0);
}

class EndingColumn : public TableColumn {
 public:
  void AppendHeader(std::string&, Context&, Display&) override { throw std::runtime_error("the page has ended"); }
  void AppendData(std::string&, Context&, Display&, RowSource&) override {}
  void AppendTotal(std::string&, Context&, Display&, RowSource&, bool&) override {}
};

TEST(TableRendering, TheEndOfThePagePassesThrough) {
  RenderingFixture page;
  page.columns.Add(kId, std::make_shared<EndingColumn>());
  EXPECT_THROW(page.Render(), std::runtime_error);
}

TEST(TableRendering, MovesPastTheLastRow) {
  RenderingFixture page("First=3&PageSize=1", 9);
  page.type = TABLETYPE_TOPN;
  page.context->SetTopN(TOPN_SITE);
  page.columns.Add(kId, "2");
  page.ranking.rows.assign(9, {{2, "x"s}});
  page.Define();
  page.Render();
  EXPECT_EQ(page.ranking.steps.Count("Count"), 1u) << "rows are counted once";
  EXPECT_EQ(page.ranking.steps.Count("MoveFirst"), 1u);
  EXPECT_EQ(page.ranking.steps.Count("MoveNext"), 3u) << "two before the first row and one behind it";
}

TEST(TableRendering, AFailedMoveShowsTheSameRowToTheEnd) {
  RenderingFixture page("Sort=2", 0);
  page.type = TABLETYPE_TOPN;
  page.context->SetTopN(TOPN_SITE);
  page.columns.Add(kId, "2");
  page.ranking.rows = {{{2, "a"s}}, {{2, "b"s}}, {{2, "c"s}}};
  page.ranking.steps.Fail("MoveNext");
  page.Define();
  const std::string failure =
      "<p>Error Generating Table: &nbsp;Move next.<br>Error number: 0x80004005; &nbsp; Description: Refused.</p>\r\n";
  EXPECT_NE(page.Render().find("<tr>\r\n[2=a]" + failure + "</tr>\r\n" + Row("[2=a]") + Row("[2=a]") + kEnd),
            std::string::npos);
}

TEST(TableRendering, ATableThatIsInitialisedAnewShowsItsNewColumnsFromTheNextRowOn) {
  RenderingFixture page;
  page.ids = {kId, kName, kId};
  page.Define();
  page.columns.steps.When("Id.Data", [&] {
    page.ids = {kName};
    page.Define();
  });
  EXPECT_NE(page.Render().find(Row("[Id][Name][Id]") + Row("[Id=1][Name=N][Id=1]") + Row("[Name=N]") + kEnd),
            std::string::npos);
}

TEST(TableRendering, AColumnThatIsMadeAnewFinishesItsCell) {
  RenderingFixture plain, anew;
  std::string rendered[2];
  for (RenderingFixture* page : {&plain, &anew}) {
    const auto catalogue = std::make_shared<KalvoColumnDatabase>();
    page->Administrator();
    page->context->SetName("EXCH01");
    page->context->SetMailbox("Ken");
    page->live->folders->items = {{{"Name", "Sub"s}, {"ExchangeId", "f1"s}, {"FolderSize", std::int32_t{1048576}}}};
    page->live->folders->totals = {{"FolderSize", std::int32_t{2097152}}};
    page->type = TABLETYPE_MAPI;
    page->table->Initialize(TABLETYPE_MAPI, TABLE_MAPI_FOLDERS, "", table_ShowTotals, false, false, false, false,
                            std::vector<std::int16_t>{COL_MAPI_FOLDERNAME, COL_MAPI_FOLDERSIZE}, "", "", "");
    if (page == &anew) {
      for (const char* step : {"Field", "Total"}) {
        page->live->steps.When(step, [catalogue] { catalogue->Initialize_MAPI_Columns(); });
      }
    }
    page->table->BuildHTML(*page->context, *page->page->response, *page->display, *catalogue, "", "");
    rendered[page == &anew] = page->Taken();
  }
  EXPECT_NE(rendered[0].find("1.00MB"), std::string::npos);
  EXPECT_NE(rendered[0].find("2.00MB"), std::string::npos);
  EXPECT_EQ(rendered[1], rendered[0]);
}

TEST(TableRendering, AUserWhoCannotBeToldIsNoAdministrator) {
  RenderingFixture page;
  page.form = true;
  page.Define();
  page.page->session->values["KalvoAdministrator"] = std::shared_ptr<Object>(std::make_shared<Context>());
  EXPECT_EQ(page.Render().find("WARNING"), std::string::npos);
}

// ---- debug lines ----------------------------------------------------------------------------------------

TEST(TableRendering, ItsTypeAndNumberAreTraced) {
  const struct {
    KalvoTableType type;
    const char* label;
  } kCases[] = {{TABLETYPE_KALVODB, "KalvoDB Table"}, {TABLETYPE_TOPN, "TopN Table"}, {TABLETYPE_MAPI, "MAPI Table"}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.label);
    RenderingFixture page("Debug=Table");
    page.type = c.type;
    page.Define();
    EXPECT_EQ(page.Render().rfind("<p>Table Index: 1 ("s + c.label + ")</p>", 0), 0u);
  }
}

TEST(TableRendering, ItsTimeIsTracedWithoutALineBreak) {
  RenderingFixture page("Debug=Time");
  EXPECT_NE(page.Render().find("[Id=2]</tr>\r\n<p>Table render from 1/2/1999 3:04:05 PM to 1/2/1999 3:04:05 PM (0.25 "
                               "seconds)</p>"s +
                               kEnd),
            std::string::npos);
}

}  // namespace
}  // namespace kalvo::test
