// How the rows of a live mailbox are sorted, moved through and read.
#include <gtest/gtest.h>

#include "datasrc/mapi_fixture.h"

namespace kalvo::test {
namespace {

TEST(MapiDataSrc, AnyTextSortsAndOneMeansDown) {
  const struct {
    const char* why;
    const char *query, *orderBy, *order, *sort, *traced;
  } kCases[] = {
      {"up", "Sort=Size&SortOrder=asc", "", "", "AddSortField(Size, 0)", "\"Size\" \"asc\""},
      {"down", "Sort=Size&SortOrder=DESC", "", "", "AddSortField(Size, 1)", "\"Size\" \"DESC\""},
      {"an odd word is down", "Sort=Size&SortOrder=up", "", "", "AddSortField(Size, 1)", "\"Size\" \"up\""},
      {"no word is down", "Sort=Size", "", "", "AddSortField(Size, 1)", "\"Size\" \"\""},
      {"a number is taken, too", "Sort=7", "", "ASC", "AddSortField(7, 0)", "\"7\" \"ASC\""},
      {"the table's", "", "Name", "ASC", "AddSortField(Name, 0)", "\"Name\" \"ASC\""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page(TABLE_MAPI_MESSAGES, "Debug=Table&"s + c.query);
    page.Use(TABLE_MAPI_MESSAGES, c.orderBy, c.order);
    EXPECT_EQ(page.source->OpenDS(), 0);
    EXPECT_EQ(page.Text(), "<p>Calling to GotoContainer.</p>\r\n<p>Sort Information: "s + c.traced + "</p>\r\n");
    const auto& done = page.live->steps.SeenByThePage();
    EXPECT_EQ(Texts(done.end() - 3, done.end()), (Texts{"ClearSortFields()", c.sort, "Sort()"}));
  }
}

TEST(MapiDataSrc, WithoutASortTheListingKeepsItsOrder) {
  SourceFixture page(TABLE_MAPI_MESSAGES, "Debug=Table");
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.Text(), "<p>Calling to GotoContainer.</p>\r\n<p>No supplied or default sort Information.</p>\r\n");
  EXPECT_EQ(page.live->steps.Count("Sort"), 0u);
}

TEST(MapiDataSrc, PublicFoldersAreTraced) {
  SourceFixture byId(TABLE_MAPI_PUBLICFOLDER_FOLDERS, "Debug=Table&PublicFolderId=p%3C1");
  byId.Administrator();
  byId.live->mailboxName = "M&M";
  byId.live->containerName = "\\A<B";
  byId.source->OpenDS();
  EXPECT_EQ(byId.Text(),
            "<p>Load by identifier \"p&lt;1\"</p>\r\n"
            "<p>Calling to GotoContainer.</p>\r\n"
            "<p>Load by identifier \"p&lt;1\" produced mailbox \"M&amp;M\" container \"\\A&lt;B\"</p>\r\n"
            "<p>No supplied or default sort Information.</p>\r\n");
  SourceFixture byPath(TABLE_MAPI_PUBLICFOLDER_FOLDERS, "Debug=Table");
  byPath.Administrator();
  byPath.context->SetMailbox("A&B");
  byPath.source->OpenDS();
  EXPECT_EQ(byPath.Text(),
            "<p>Loading public folder mailbox \"Kalvo EXCH01\" container \"A&amp;B\"</p>\r\n"
            "<p>Calling to GotoContainer.</p>\r\n"
            "<p>No supplied or default sort Information.</p>\r\n");
}

TEST(MapiDataSrc, MovesReadsAndTotals) {
  SourceFixture page(TABLE_MAPI_MESSAGES);
  page.source->OpenDS();
  EXPECT_EQ(page.source->GetRowIndex(), 0);
  EXPECT_EQ(page.source->MoveFirst(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 1);
  EXPECT_EQ(page.source->GetField("Name"), "One");
  EXPECT_EQ(page.source->GetField("Size"), "10");
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.source->GetField("Name"), "Two");
  EXPECT_EQ(page.source->GetField("Size"), "") << "null";
  EXPECT_EQ(page.source->GetField("Nothing"), "") << "an unknown field";
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.source->GetField("Name"), "");
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 3) << "past the end nothing moves";
  EXPECT_EQ(page.source->MoveTotals(), 0);
  EXPECT_EQ(page.source->GetField("Size"), "30");
  EXPECT_EQ(page.source->GetField("Name"), "");
  EXPECT_EQ(page.source->CloseDS(), 0);
  EXPECT_EQ(page.Text(), "");
}

TEST(MapiDataSrc, AnEmptyListingHasNoFirstRow) {
  SourceFixture page(TABLE_MAPI_MESSAGES);
  page.live->messages->items.clear();
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.source->MoveFirst(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 0);
  EXPECT_EQ(page.live->steps.Count("MoveFirst"), 0u);
}

TEST(MapiDataSrc, AFailingMoveEndsTheRows) {
  SourceFixture page(TABLE_MAPI_MESSAGES);
  page.source->OpenDS();
  page.source->MoveFirst();
  page.live->steps.Fail("MoveNext");
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.Text(), Report("Move next."));
  EXPECT_EQ(page.source->RecordCount(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 1);
}

TEST(MapiDataSrc, AFailingFirstMoveSaysNothing) {
  SourceFixture page(TABLE_MAPI_MESSAGES);
  page.source->OpenDS();
  page.live->steps.Fail("MoveFirst");
  EXPECT_EQ(page.source->MoveFirst(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 1);
  EXPECT_EQ(page.Text(), "");
}

}  // namespace
}  // namespace kalvo::test
