// How a table shows its pages: the entries, the links to the other pages, and what becomes of links that fail.
#include <gtest/gtest.h>

#include "generator/rendering_fixture.h"

namespace kalvo::test {
namespace {

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
