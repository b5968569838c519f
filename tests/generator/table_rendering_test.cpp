#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "fakes/columns.h"
#include "fakes/page_fixture.h"
#include "kalvo/column_database.h"
#include "kalvo/table.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

constexpr std::int16_t kId = 1, kName = 2;

// A table of two columns over as many rows as wanted, numbered from 1, with a totals row.
struct RenderingFixture : PageFixture {
  explicit RenderingFixture(std::string_view query = "", int records = 2) : PageFixture(query) {
    columns.Add(kId, "Id");
    columns.Add(kName, "Name");
    Records(records);
    Define();
  }

  void Records(int records) {
    database.results = {{{"Id", "Name"}, {}}, {{"Id"}, {{std::int32_t{7}}}}};
    for (std::int32_t i = 1; i <= records; ++i) database.results[0].rows.push_back({i, "N"s});
  }
  void Define() {
    table->Initialize(type, TABLE_CURRENTALERTS, "Test", totals ? table_ShowTotals : table_NoTotals, charts, lastScan,
                      form, entries, ids, "select %SORT%", "Id", "ASC");
  }
  std::string Render(std::string_view emptyMessage = "Nothing.", std::string_view name = "") {
    table->BuildHTML(*context, *page->response, *display, columns, emptyMessage, name);
    return Taken();
  }

  KalvoTableType type = TABLETYPE_KALVODB;
  bool totals = false, charts = false, lastScan = false, form = false, entries = false;
  std::vector<std::int16_t> ids = {kId};
  FakeColumns columns;
  std::shared_ptr<Table> table = std::make_shared<Table>(platform);
};

constexpr char kAnchor[] = "\r\n<a name=\"1chart\"></a>\r\n";
constexpr char kStart[] = "\r\n<table border=\"1\" cellpadding=\"2\" cellspacing=\"0\">\r\n";
constexpr char kEnd[] = "\r\n</table>\r\n";

std::string Row(const std::string& cells) { return "<tr>\r\n" + cells + "</tr>\r\n"; }

std::string Rows(int first, int last) {
  std::string rows = Row("[Id]");
  for (int i = first; i <= last; ++i) rows += Row("[Id=" + std::to_string(i) + "]");
  return rows;
}

// The part of a text between two others.
std::string Between(const std::string& text, const std::string& from, const std::string& to) {
  const auto start = text.find(from);
  if (start == std::string::npos) return "(none)";
  const auto end = text.find(to, start + from.size());
  return text.substr(start + from.size(), end - start - from.size());
}

// The paging links of a text as "Next=51/20", image, first row and page size, in their order.
std::string PagingLinks(const std::string& html) {
  std::string links;
  for (auto at = html.find("<a href"); at != std::string::npos; at = html.find("<a href", at + 1)) {
    const std::string link = html.substr(at, html.find("</a>", at) - at);
    links += (links.empty() ? "" : " ") + Between(link, "Controls/", ".gif") + "=" + Between(link, "First=", "&amp;") +
             "/" + Between(link, "PageSize=", "#");
  }
  return links;
}

// ---- the whole ------------------------------------------------------------------------------------------

TEST(TableRendering, WritesBookmarkHeaderAndRows) {
  RenderingFixture page;
  EXPECT_EQ(page.Render(), kAnchor + (kStart + Rows(1, 2)) + kEnd);
  EXPECT_EQ(page.database.steps.Count("~Connection"), 1u) << "the source goes with the rendering";
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
  EXPECT_EQ(page.database.steps.Count("~Connection"), 1u);
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

// ---- paging ---------------------------------------------------------------------------------------------

TEST(TableRendering, APageShowsItsRowsAndLeadsToTheOthers) {
  const struct {
    const char* why;
    int records;
    const char* query;
    int first, last;
    const char *displayed, *links;
  } kCases[] = {
      {"the first page", 120, "", 1, 50, "1 - 50", "Next=51/0 Last=%2D1/0 All=1/1000"},
      {"the second page", 120, "First=51&PageSize=50", 51, 100, "51 - 100",
       "First=1/50 Previous=1/50 Next=101/50 Last=%2D1/50 All=1/1000"},
      {"the last page", 110, "First=-1&PageSize=50", 61, 110, "61 - 110", "First=1/50 Previous=11/50 All=1/1000"},
      {"the last page of less than a page", 10, "First=-1", 1, 10, "-39 - 10", "First=1/0 Previous=1/0 All=1/1000"},
      {"previous is not below the first", 120, "First=21&PageSize=50", 21, 70, "21 - 70",
       "First=1/50 Previous=1/50 Next=71/50 Last=%2D1/50 All=1/1000"},
      {"the largest page has no link to all", 1300, "PageSize=-1", 1, 1000, "1 - 1000",
       "Next=1001/%2D1 Last=%2D1/%2D1"},
      {"a larger page has none either", 1600, "PageSize=1200", 1, 1200, "1 - 1200", "Next=1201/1200 Last=%2D1/1200"},
      {"a page size of 0 is carried as it is", 120, "PageSize=0", 1, 50, "1 - 50", "Next=51/0 Last=%2D1/0 All=1/1000"},
      {"a rounded page size", 9, "PageSize=2.5", 1, 2, "1 - 2", "Next=3/2 Last=%2D1/2 All=1/1000"},
      {"no number", 120, "PageSize=many&First=some", 1, 50, "1 - 50", "Next=51/0 Last=%2D1/0 All=1/1000"},
      {"a page size beyond 16 bits leaves All alone", 120, "PageSize=40000", 1, 50, "1 - 50", "All=1/1000"},
      {"a first row beyond 16 bits is the first", 120, "First=40000", 1, 50, "1 - 50",
       "Next=51/0 Last=%2D1/0 All=1/1000"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    RenderingFixture page(c.query, c.records);
    const std::string html = page.Render();
    EXPECT_EQ(Between(html, "Displaying Entries:</th><th align=\"left\">", "</th>"), c.displayed);
    EXPECT_EQ(Between(html, "Number of Entries:</th><th align=\"left\">", "</th>"), std::to_string(c.records));
    EXPECT_EQ(PagingLinks(html), c.links + " "s + c.links) << "above and below";
    EXPECT_NE(html.find(Rows(c.first, c.last)), std::string::npos);
    EXPECT_EQ(html.find("[Id=" + std::to_string(c.last + 1) + "]"), std::string::npos);
  }
}

TEST(TableRendering, TheNavigationRowIsOneCellOverAllColumns) {
  RenderingFixture page("PageSize=2", 9);
  page.ids = {kId, kName, kName};
  page.Define();
  const auto link = [](const char* first, const char* size, const char* image) {
    return "<a href=\"/KalvoforExchange/Tasks/Page.asp?Sort=&amp;SortOrder=&amp;First="s + first +
           "&amp;PageSize=" + size + "#1chart\"><img src=\"../Images/Controls/" + image +
           ".gif\" height=\"31\" width=\"40\" border=\"0\"></a>";
  };
  const std::string row =
      "<tr>\r\n<th colspan=\"3\" align=\"center\"><table border=\"0\" width=\"100%\"><tr>\r\n"
      "<td nowrap align=\"left\">&nbsp;</td><td nowrap align=\"right\">" +
      link("3", "2", "Next") + " " + link("%2D1", "2", "Last") + " " + link("1", "1000", "All") +
      "</td></tr>\r\n</table></th></tr>\r\n";
  const std::string html = page.Render();
  EXPECT_NE(html.find(kStart + row), std::string::npos);
  EXPECT_NE(html.find("</tr>\r\n" + row + kEnd), std::string::npos);
}

TEST(TableRendering, AllAloneBeginsWithABlank) {
  RenderingFixture page("First=-1&PageSize=2", 4);
  EXPECT_NE(page.Render().find("<td nowrap align=\"right\"> <a href="), std::string::npos);
}

TEST(TableRendering, PagingKeepsTheSortOfTheRequest) {
  RenderingFixture page("x=1&Sort=Name&SortOrder=DESC&PageSize=2", 9);
  EXPECT_NE(page.Render().find("?x=1&amp;Sort=Name&amp;SortOrder=DESC&amp;First=3&amp;PageSize=2#1chart"),
            std::string::npos);
}

TEST(TableRendering, ARowBeyondTheEndIsStillWritten) {
  RenderingFixture page("First=5", 2);
  const std::string html = page.Render();
  EXPECT_NE(html.find(kStart), std::string::npos);
  EXPECT_NE(html.find(Row("[Id]") + Row("[Id=]")), std::string::npos);
  EXPECT_EQ(html.find("[Id=1]"), std::string::npos);
}

// ---- entries --------------------------------------------------------------------------------------------

TEST(TableRendering, EntriesAreShownWhenTheTableSaysSo) {
  const struct {
    const char* why;
    bool entries, lastScan;
    const char *query, *block;
  } kCases[] = {
      {"neither", false, false, "", ""},
      {"entries", true, false, "",
       "<table border=\"0\">\r\n<tr><th align=\"left\">Number of Entries:</th><th align=\"left\">2</th><td>&nbsp;</td>"
       "</tr>\r\n</table>\r\n"},
      {"the last scan alone has an empty row", false, true, "", "<table border=\"0\">\r\n<tr></tr>\r\n</table>\r\n"},
      {"the range is traced when all rows are shown", true, false, "Debug=Table",
       "<table border=\"0\">\r\n<tr><th align=\"left\">Number of Entries:</th><th align=\"left\">2</th><td>&nbsp;</td>"
       "</tr>\r\n<p>First: 1; Last: 2</p></table>\r\n"},
      {"and shown when they are not", false, true, "PageSize=1",
       "<table border=\"0\">\r\n<tr><th align=\"left\">Number of Entries:</th><th align=\"left\">2</th><td>&nbsp;</td>"
       "</tr>\r\n<tr><th align=\"left\">Displaying Entries:</th><th align=\"left\">1 - 1</th></tr>\r\n</table>\r\n"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    RenderingFixture page(c.query);
    page.entries = c.entries;
    page.lastScan = c.lastScan;
    page.Define();
    EXPECT_EQ(Between(page.Render(), kAnchor, kStart), c.block);
  }
}

TEST(TableRendering, APagedTableShowsItsEntriesFromThenOn) {
  RenderingFixture page("PageSize=1");
  EXPECT_NE(page.Render().find("Number of Entries:"), std::string::npos);
  page.page->request = std::make_shared<FakeRequest>("");
  page.Start();
  EXPECT_NE(page.Render().find("Number of Entries:"), std::string::npos);
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

TEST(TableRendering, APagingLinkAsksForTheSortFieldAndThenForItsOrder) {
  RenderingFixture page("Sort=Name&SortOrder=DESC&PageSize=1");
  page.page->request->steps.done.clear();
  page.Render();
  const std::vector<std::string>& asked = page.page->request->steps.SeenByThePage();
  const auto size = std::find(asked.rbegin(), asked.rend(), "QueryItem(PageSize, 1)");
  ASSERT_NE(size, asked.rend());
  ASSERT_GE(size - asked.rbegin(), 2);
  EXPECT_EQ(*(size - 1), "QueryItem(Sort, 1)");
  EXPECT_EQ(*(size - 2), "QueryItem(SortOrder, 1)");
}

TEST(TableRendering, CountsBeyond32BitsArePagedWithoutOverflow) {
  RenderingFixture page("First=-1&PageSize=32767", 0);
  page.type = TABLETYPE_TOPN;
  page.context->SetTopN(TOPN_SITE);
  page.columns.Add(kId, "2");
  page.Define();
  page.ranking.count = std::numeric_limits<std::int32_t>::min();
  EXPECT_NE(page.Render().find("-2147516414 - -2147483648"), std::string::npos);
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

// ---- paging links that fail -----------------------------------------------------------------------------

TEST(TableRendering, ALinkThatCannotBeMadeIsLeftOut) {
  RenderingFixture page("First=3&PageSize=2", 9);
  page.page->server->steps.Fail("URLEncode");
  const std::string html = page.Render();
  EXPECT_EQ(PagingLinks(html), "");
  EXPECT_NE(html.find("<td nowrap align=\"left\">&nbsp;</td><td nowrap align=\"right\">&nbsp;</td>"),
            std::string::npos);
  EXPECT_NE(html.find(Row("[Id=3]") + Row("[Id=4]")), std::string::npos);
}

TEST(TableRendering, OfTwoLinksTheSecondTakesTheFirstWithIt) {
  RenderingFixture page("PageSize=2", 9);
  // "Next" names its bookmark and four values, then "Last" fails.
  page.page->server->steps.Fail("URLEncode", codes::kFailed, "Refused.", 6);
  EXPECT_EQ(PagingLinks(page.Render()), "");
}

TEST(TableRendering, ANavigationRowThatCannotBeMadeIsLeftOut) {
  RenderingFixture page("PageSize=2", 9);
  page.page->server->steps.Fail("HTMLEncode");
  const std::string html = page.Render();
  EXPECT_EQ(html.find("<table border=\"0\" width=\"100%\">"), std::string::npos);
  EXPECT_NE(html.find(kStart + Row("[Id]") + Row("[Id=1]") + Row("[Id=2]") + kEnd), std::string::npos);
}

}  // namespace
}  // namespace kalvo::test
