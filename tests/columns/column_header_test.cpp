#include <gtest/gtest.h>

#include "column_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

constexpr char kPage[] = "/KalvoforExchange/Tasks/Page.asp?";

TEST(ColumnHeader, HoldsTheEncodedNameAndNoArrowsWithoutSorting) {
  ColumnFixture page;
  page.column.name = "A<br>B & C";
  EXPECT_EQ(page.Header(), page.display->TableHeaderCell("A&lt;br&gt;B &amp; C", "", "", "", ""));
}

TEST(ColumnHeader, SortLinksBeginAtTheFirstRowAndKeepThePageSize) {
  ColumnFixture page("PageSize=25&First=51&x=1");
  page.column.name = "Size";
  page.column.sortColumn = true;
  const std::string up = std::string(kPage) + "x=1&Sort=Value&SortOrder=ASC&First=1&PageSize=25";
  const std::string down = std::string(kPage) + "x=1&Sort=Value&SortOrder=DESC&First=1&PageSize=25";
  EXPECT_EQ(page.Header(), page.display->TableHeaderCell("Size", up, down, "", ""));
}

TEST(ColumnHeader, CarriesThePageSizeAsARoundedNumber) {
  ColumnFixture page("PageSize=2.5");
  page.column.sortColumn = true;
  EXPECT_NE(page.Header().find("PageSize=2\""), std::string::npos);
}

TEST(ColumnHeader, ASortableColumnFailsWithAPageSizeBeyond16Bits) {
  ColumnFixture page("PageSize=40000");
  EXPECT_EQ(ErrorOf([&] { page.Header(); }).Number(), 0);
  page.column.sortColumn = true;
  EXPECT_EQ(ErrorOf([&] { page.Header(); }).Number(), 6);
}

TEST(ColumnHeader, ChartLinksAreAcceptedAndShowNothing) {
  ColumnFixture page;
  const auto headerOf = [&](const char* pieChartLink, const char* lineGraphLink) {
    KalvoColumn column;
    column.Initialize(COL_SERVER_COMPUTER, "Name", "Field", HYPERLINK_NONE, pieChartLink, lineGraphLink,
                      column_KeepTotal, true, FORMATTYPE_NUMBER, 0, "", 1, 1, "left", false, "");
    return column.ConstructHTMLHeader(*page.context, *page.display);
  };
  EXPECT_EQ(headerOf("pie.asp", "line.asp"), headerOf("", ""));
}

TEST(ColumnHeader, TheServerColumnOfATopNTableDropsOutForOneServer) {
  const struct {
    const char* why;
    KalvoTableColumnsConstants id;
    KalvoTableTopN scope;
    bool shown;
  } kCases[] = {
      {"one server", COL_TOPN_SERVER, TOPN_SINGLESERVER, false},
      {"a server group", COL_TOPN_SERVER, TOPN_SERVERGROUP, true},
      {"no scope", COL_TOPN_SERVER, TOPN_UNDEFINED, true},
      {"another column", COL_TOPN_MAILBOXNAME, TOPN_SINGLESERVER, true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.id = c.id;
    page.column.totalState = column_NoTotal;
    page.context->SetTopN(c.scope);
    EXPECT_EQ(!page.Header().empty(), c.shown);
    EXPECT_EQ(!page.Data().empty(), c.shown);
    EXPECT_EQ(page.Read(), c.shown ? "Value" : "");
    bool firstCell = true;
    EXPECT_EQ(!page.Total(firstCell).empty(), c.shown);
    EXPECT_EQ(firstCell, !c.shown) << "the next column carries the label";
  }
}

TEST(ColumnHeader, ADroppedColumnAsksNothingElse) {
  ColumnFixture page("PageSize=40000");
  page.column.id = COL_TOPN_SERVER;
  page.column.sortColumn = true;
  page.context->SetTopN(TOPN_SINGLESERVER);
  page.context->OnEndPage();
  EXPECT_EQ(page.Header(), "");
}

TEST(ColumnHeader, InitializeStoresWhatItIsGiven) {
  KalvoColumn column;
  column.Initialize(COL_SERVER_COMPUTER, "Name", "Field", HYPERLINK_SERVER, "pie", "line", column_NoTotal, true,
                    FORMATTYPE_NUMBER, 1024, "KB", 2, 3, "right", true, "none");
  const ColumnDefinition& stored = column.Definition();
  EXPECT_EQ(stored.id, COL_SERVER_COMPUTER);
  EXPECT_EQ(stored.name, "Name");
  EXPECT_EQ(stored.databaseField, "Field");
  EXPECT_EQ(stored.hyperLinkType, HYPERLINK_SERVER);
  EXPECT_EQ(stored.totalState, column_NoTotal);
  EXPECT_TRUE(stored.sortColumn);
  EXPECT_EQ(stored.formatType, FORMATTYPE_NUMBER);
  EXPECT_EQ(stored.dataScale, 1024);
  EXPECT_EQ(stored.units, "KB");
  EXPECT_EQ(stored.rows, 2);
  EXPECT_EQ(stored.columns, 3);
  EXPECT_EQ(stored.align, "right");
  EXPECT_TRUE(stored.noWrap);
}

TEST(ColumnHeader, TheFirstTotalStateKeepsTheTotal) {
  EXPECT_EQ(column_KeepTotal, 0);
  EXPECT_EQ(column_NoTotal, 1);
}

}  // namespace
}  // namespace kalvo::test
