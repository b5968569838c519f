#include "kalvo/topn_data_src.h"

#include <gtest/gtest.h>

#include <limits>

#include "fakes/page_fixture.h"
#include "kalvo/table.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

std::string Report(const std::string& text) {
  return "<p>Error Generating Table: &nbsp;" + text +
         "<br>Error number: 0x80004005; &nbsp; Description: Refused.</p>\r\n";
}

std::string Message(const std::string& text) { return "<p>Error Generating Table: &nbsp;" + text + "</p>\r\n"; }

struct SourceFixture : PageFixture {
  explicit SourceFixture(std::string_view query = "", KalvoTableTopN scope = TOPN_SINGLESERVER,
                         KalvoTableConstants id = TABLE_TOPN_MBSPACE)
      : PageFixture(query) {
    context->IncrementTableIndex();
    context->SetTopN(scope);
    context->SetName("Name");
    context->SetSite("Site");
    context->SetOrg("Org");
    ranking.rows = {{{2, "Ann"s}, {8, 2048.0}}, {{2, "Bob"s}, {8, 1024.0}}};
    ranking.totals = {{8, 3072.0}};
    Use(id, "");
  }

  void Use(KalvoTableConstants id, std::string_view orderBy, std::string_view order = "DESC") {
    table->Initialize(TABLETYPE_TOPN, id, "Test", table_ShowTotals, false, false, false, false, {}, "", orderBy, order);
    table->SetTopNParameters(*context);
    source->Initialize(*table, "not this one", *context);
  }

  std::shared_ptr<Table> table = std::make_shared<Table>(platform);
  std::shared_ptr<TopnDataSrc> source = std::make_shared<TopnDataSrc>(platform);
};

TEST(TopnDataSrc, EachTableAsksForItsKind) {
  const struct {
    KalvoTableConstants table;
    int kind;
  } kCases[] = {
      {TABLE_TOPN_MBCNT, 1},
      {TABLE_TOPN_MBSPACE, 2},
      {TABLE_TOPN_MailboxAverageSize, 21},
      {TABLE_TOPN_MBOLDCNT, 8},
      {TABLE_TOPN_MBOLDSPACE, 9},
      {TABLE_TOPN_PFMSGCNT, 4},
      {TABLE_TOPN_PFSPACE, 5},
      {TABLE_TOPN_PublicFolderAverageSize, 22},
      {TABLE_TOPN_PFOLDCNT, 11},
      {TABLE_TOPN_PFOLDSPACE, 12},
      {TABLE_TOPN_MBSTALE, 13},
      {TABLE_TOPN_PFSTALE, 14},
      {TABLE_TOPN_OLDMBMSG, 6},
      {TABLE_TOPN_OLDPFMSG, 7},
      {TABLE_TOPN_LARGEMBMSG, 17},
      {TABLE_TOPN_LARGEPFMSG, 19},
      {TABLE_TOPN_LARGEOLDMBMSG, 18},
      {TABLE_TOPN_LARGEOLDPFMSG, 20},
      {TABLE_CURRENTALERTS, -1},
      {TABLE_MAPI_MESSAGES, -1},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.table);
    SourceFixture page("", TOPN_SINGLESERVER, c.table);
    EXPECT_EQ(page.source->OpenDS(), 0);
    EXPECT_EQ(page.ranking.steps.SeenByThePage()[2], "Server.Load(" + std::to_string(c.kind) + ", Name)");
  }
}

TEST(TopnDataSrc, EachScopeHasItsLoaderAndItsCall) {
  const struct {
    KalvoTableTopN scope;
    const char *loader, *call;
  } kCases[] = {
      {TOPN_ORGANIZATION, "NewServerLoader()", "Server.LoadOrg(2, Org)"},
      {TOPN_SITE, "NewServerLoader()", "Server.LoadSite(2, Site)"},
      {TOPN_SINGLESERVER, "NewServerLoader()", "Server.Load(2, Name)"},
      {TOPN_SERVERGROUP, "NewServerLoader()", "Server.LoadGroup(2, Name)"},
      {TOPN_MAILBOXGROUP, "NewMailboxGroupLoader()", "MailboxGroup.Load(2, Name)"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.call);
    SourceFixture page("", c.scope);
    EXPECT_EQ(page.source->OpenDS(), 0);
    EXPECT_EQ(page.ranking.steps.SeenByThePage(),
              (std::vector<std::string>{"NewResults()", c.loader, c.call, "Count()"}));
    EXPECT_EQ(page.source->RecordCount(), 2);
    EXPECT_EQ(page.Text(), "");
  }
}

TEST(TopnDataSrc, WithoutAScopeNothingIsLoaded) {
  SourceFixture page("", TOPN_UNDEFINED);
  EXPECT_EQ(page.source->OpenDS(), -1);
  EXPECT_EQ(page.Text(), Message("Internal error: No TopN Load type specified."));
  EXPECT_EQ(page.ranking.steps.SeenByThePage(), (std::vector<std::string>{"NewResults()", "NewServerLoader()"}));
}

TEST(TopnDataSrc, AFailingStepIsReported) {
  const struct {
    const char* why;
    const char* step;
    KalvoTableTopN scope;
    const char* text;
  } kCases[] = {
      {"no result set", "NewResults", TOPN_SITE, "TopnDataSrc.OpenDS"},
      {"no server loader", "NewServerLoader", TOPN_SITE, "TopnDataSrc.OpenDS: Case TOPNOBJECT_SERVER"},
      {"no mailbox group loader", "NewMailboxGroupLoader", TOPN_MAILBOXGROUP,
       "TopnDataSrc.OpenDS: Case TOPNOBJECT_MAILBOXGROUP"},
      {"no load", "Server.LoadSite", TOPN_SITE, "TopnDataSrc.OpenDS: LoadFailed"},
      {"no count", "Count", TOPN_SITE, "TopnDataSrc.OpenDS: RecordCount failed"},
      {"no sort", "Sort", TOPN_SITE, "TopnDataSrc.OpenDS: Sort failed"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page("Sort=8", c.scope);
    page.ranking.steps.Fail(c.step);
    EXPECT_EQ(page.source->OpenDS(), -1);
    EXPECT_EQ(page.Text(), Report(c.text));
  }
}

TEST(TopnDataSrc, SortsByColumnNumbersAlone) {
  const struct {
    const char* why;
    const char *query, *orderBy, *order, *sort, *traced;
  } kCases[] = {
      {"the request", "Sort=8&SortOrder=ASC", "", "", "Sort(8, 1)",
       "<p>Sort Information: \"8\" (8) \"ASC\" (1)</p>\r\n"},
      {"in any case", "Sort=8&SortOrder=aSc", "", "", "Sort(8, 1)",
       "<p>Sort Information: \"8\" (8) \"aSc\" (1)</p>\r\n"},
      {"down", "Sort=8&SortOrder=DESC", "", "", "Sort(8, 0)", "<p>Sort Information: \"8\" (8) \"DESC\" (0)</p>\r\n"},
      {"an odd word is down", "Sort=8&SortOrder=up", "", "", "Sort(8, 0)",
       "<p>Sort Information: \"8\" (8) \"up\" (0)</p>\r\n"},
      {"no word is down", "Sort=8", "", "", "Sort(8, 0)", "<p>Sort Information: \"8\" (8) \"\" (0)</p>\r\n"},
      {"the table's order", "Sort=8", "", "ASC", "Sort(8, 1)", "<p>Sort Information: \"8\" (8) \"ASC\" (1)</p>\r\n"},
      {"the table's column", "", "7", "DESC", "Sort(7, 0)", "<p>Sort Information: \"7\" (7) \"DESC\" (0)</p>\r\n"},
      {"a name falls back to the table's column", "Sort=Name&SortOrder=ASC", "7", "DESC", "Sort(7, 1)",
       "<p>Sort Information: \"7\" (7) \"ASC\" (1)</p>\r\n"},
      {"a rounded number", "Sort=2.5", "", "", "Sort(2, 0)", "<p>Sort Information: \"2.5\" (2) \"\" (0)</p>\r\n"},
      {"the largest number of 16 bits", "Sort=32767", "", "", "Sort(32767, 0)",
       "<p>Sort Information: \"32767\" (32767) \"\" (0)</p>\r\n"},
      {"a name and no column", "Sort=Name", "", "", "", "<p>No supplied or default sort Information.</p>\r\n"},
      {"nothing", "", "", "", "", "<p>No supplied or default sort Information.</p>\r\n"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page("Debug=Table&"s + c.query);
    page.Use(TABLE_TOPN_MBSPACE, c.orderBy, c.order);
    EXPECT_EQ(page.source->OpenDS(), 0);
    EXPECT_EQ(page.Text(), c.traced);
    EXPECT_EQ(page.ranking.steps.SeenByThePage().back(), *c.sort ? c.sort : "Count()");
  }
}

TEST(TopnDataSrc, AColumnNumberBeyond16BitsFailsTheOpen) {
  for (const char* query : {"Sort=32768", "Sort=99999", "Sort=-32769"}) {
    SCOPED_TRACE(query);
    SourceFixture page(query);
    EXPECT_EQ(page.source->OpenDS(), -1);
    EXPECT_EQ(page.Text(),
              "<p>Error Generating Table: &nbsp;TopnDataSrc.OpenDS: Sort failed<br>Error number: 0x6; &nbsp; "
              "Description: Overflow</p>\r\n");
    EXPECT_EQ(page.ranking.steps.SeenByThePage().back(), "Sort(0, 0)") << "it is sorted all the same, by no column";
  }
}

TEST(TopnDataSrc, AnEmptyResultIsNotSorted) {
  SourceFixture page("Sort=8&Debug=Table");
  page.ranking.rows.clear();
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.Text(), "<p>No records returned and no sort attempt.</p>\r\n");
  EXPECT_EQ(page.ranking.steps.Count("Sort"), 0u);
  page.source->MoveFirst();
  EXPECT_EQ(page.ranking.steps.Count("MoveFirst"), 0u);
  EXPECT_EQ(page.source->GetRowIndex(), 0);
}

TEST(TopnDataSrc, MovesAndReadsFieldsByNumber) {
  SourceFixture page;
  EXPECT_EQ(page.source->GetRowIndex(), 0);
  page.source->OpenDS();
  EXPECT_EQ(page.source->MoveFirst(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 1);
  EXPECT_EQ(page.source->GetField("2"), "Ann");
  EXPECT_EQ(page.source->GetField("8"), "2048");
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.source->GetField("2"), "Bob");
  EXPECT_EQ(page.source->GetField("99"), "");
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 3);
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 3) << "past the end nothing moves";
  EXPECT_EQ(page.ranking.steps.Count("MoveNext"), 2u);
  EXPECT_EQ(page.source->MoveTotals(), 0);
  EXPECT_EQ(page.source->GetField("8"), "3072");
  EXPECT_EQ(page.source->CloseDS(), 0);
  EXPECT_EQ(page.Text(), "");
}

TEST(TopnDataSrc, AFailingMoveEndsTheRows) {
  const struct { const char *step, *text; } kCases[] = {{"MoveFirst", "Move first."}, {"MoveNext", "Move next."}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.step);
    SourceFixture page;
    page.source->OpenDS();
    page.ranking.steps.Fail(c.step);
    EXPECT_EQ(page.source->MoveFirst(), 0);
    EXPECT_EQ(page.source->MoveNext(), 0);
    EXPECT_EQ(page.source->RecordCount(), 0);
    EXPECT_NE(page.Text().find(Report(c.text)), std::string::npos);
  }
  SourceFixture page;
  page.source->OpenDS();
  page.ranking.steps.Fail("MoveTotals");
  EXPECT_EQ(page.source->MoveTotals(), -1);
  EXPECT_EQ(page.Text(), Report("Move Totals."));
  EXPECT_EQ(page.source->RecordCount(), 2);
}

TEST(TopnDataSrc, FieldsAreTracedWithTheirErrors) {
  SourceFixture page("Debug=TopN");
  page.source->OpenDS();
  page.source->MoveFirst();
  page.source->GetField("2");
  EXPECT_EQ(page.Taken(), "<p>Get: Field: 2; Value: \"Ann\"</p>\r\n");
  EXPECT_EQ(page.source->GetField("Name"), "");
  EXPECT_EQ(page.Taken(), "<p>Get: Field: Name; Value: \"\"; Err.Number: 13</p>\r\n");
  page.ranking.steps.Fail("Value");
  EXPECT_EQ(page.source->GetField("2"), "");
  EXPECT_EQ(page.Taken(), "<p>Get: Field: 2; Value: \"\"; Err.Number: -2147467259</p>\r\n");
}

TEST(TopnDataSrc, ItsTwoNumbersMayBeSet) {
  SourceFixture page;
  page.source->SetgRecordCount(5);
  page.source->SetgRowIndex(32767);
  EXPECT_EQ(page.source->RecordCount(), 5);
  EXPECT_EQ(page.source->gRecordCount(), 5);
  EXPECT_EQ(page.source->GetRowIndex(), 32767);
  page.source->SetgRowIndex(32768);
  EXPECT_EQ(page.source->gRowIndex(), 32768);
  EXPECT_EQ(ErrorOf([&] { page.source->GetRowIndex(); }).Number(), 6);
}

TEST(TopnDataSrc, AFieldIdentifiesItsRowAsItReads) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  EXPECT_EQ(page.source->GetIdentifier("2"), "Ann");
}

}  // namespace
}  // namespace kalvo::test
