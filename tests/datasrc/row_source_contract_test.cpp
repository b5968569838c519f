// What the three row sources answer in the right order of calls and in every wrong one.

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/db_data_src.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/table.h"
#include "kalvo/topn_data_src.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

// A page with two rows, Ann and Bob, and a total of 30 behind each kind of source.
struct ThreeSources : PageFixture {
  ThreeSources() {
    context->IncrementTableIndex();
    context->SetName("EXCH01");
    context->SetMailbox("Ken");
    context->SetTopN(TOPN_SINGLESERVER);
    database.results = {{{"7"}, {{"Ann"s}, {"Bob"s}}}, {{"7"}, {{"30"s}}}};
    ranking.rows = {{{7, "Ann"s}}, {{7, "Bob"s}}};
    ranking.totals = {{7, "30"s}};
    live->messages->items = {{{"7", "Ann"s}}, {{"7", "Bob"s}}};
    live->messages->totals = {{"7", "30"s}};
  }

  template <typename Source, typename... Parts>
  std::shared_ptr<Source> Make(KalvoTableType type, KalvoTableConstants id, bool initialised, const Parts&... parts) {
    table->Initialize(type, id, "", table_ShowTotals, false, false, false, false, {}, "select", "", "");
    table->SetTopNParameters(*context);
    auto source = std::make_shared<Source>(parts...);
    if (initialised) source->Initialize(*table, "EXCH01", *context);
    return source;
  }

  std::shared_ptr<Table> table = std::make_shared<Table>(platform);
};

// What has been reported since the last look: "[Move next.]" for each.
std::string Reported(PageFixture& page) {
  std::string reported;
  const std::string text = page.Taken();
  constexpr std::string_view kStart = "<p>Error Generating Table: &nbsp;";
  for (auto at = text.find(kStart); at != std::string::npos; at = text.find(kStart, at)) {
    at += kStart.size();
    reported += " [" + text.substr(at, text.find('<', at) - at) + "]";
  }
  return reported;
}

// What one operation does: its answer, or "!91" for a failure, and what it reported.
std::string Done(PageFixture& page, RowSource& source, const std::string& operation) {
  std::string answer;
  const std::int32_t error = ErrorOf([&] {
                               if (operation == "open") answer = std::to_string(source.OpenDS());
                               if (operation == "close") answer = std::to_string(source.CloseDS());
                               if (operation == "first") answer = std::to_string(source.MoveFirst());
                               if (operation == "next") answer = std::to_string(source.MoveNext());
                               if (operation == "totals") answer = std::to_string(source.MoveTotals());
                               if (operation == "field") answer = source.GetField("7");
                               if (operation == "count") answer = std::to_string(source.RecordCount());
                               if (operation == "row") answer = std::to_string(source.GetRowIndex());
                             }).Number();
  if (error != 0) answer = "!" + std::to_string(error);
  return operation + "=" + answer + Reported(page);
}

// The operations one after the other.
std::string Did(PageFixture& page, RowSource& source, std::string_view operations) {
  std::string did;
  while (!operations.empty()) {
    const std::string operation(operations.substr(0, operations.find(' ')));
    operations.remove_prefix(std::min(operation.size() + 1, operations.size()));
    did += (did.empty() ? "" : ", ") + Done(page, source, operation);
  }
  return did;
}

enum class Start { Made, Initialised, Opened };

struct OrderCase {
  const char* why;
  Start start;
  const char* operations;
  const char *database, *topN, *live;
};

// clang-format off
const OrderCase kOrders[] = {
  {"never initialised: a source without rows", Start::Made, "count row first count row",
   "count=0, row=0, first=0, count=0, row=1",
   "count=0, row=0, first=0, count=0, row=0",
   "count=0, row=0, first=0, count=0, row=0"},
  {"never initialised: 91 where the page is needed", Start::Made, "open next totals field close",
   "open=!91, next=0, totals=!91, field=!91, close=!91",
   "open=!91, next=!91, totals=!91, field=!91, close=0",
   "open=!91, next=!91, totals=0, field=, close=0"},
  {"not opened: no rows", Start::Initialised, "count row first row field",
   "count=0, row=0, first=0, row=1, field= [GetField: Unknown field \"7\"]",
   "count=0, row=0, first=0, row=0, field=",
   "count=0, row=0, first=0, row=0, field="},
  {"not opened: moves", Start::Initialised, "next row totals field",
   "next=0, row=1, totals=91 [KalvodbDataSrc.MoveTotals], field= [GetField: Unknown field \"7\"]",
   "next=0 [Move next.], row=0, totals=-1 [Move Totals.], field=",
   "next=0 [Move next.], row=0, totals=0, field="},
  {"not opened: closed", Start::Initialised, "close count",
   "close=91 [KalvodbDataSrc.CloseDS: rs.Close], count=0",
   "close=0, count=0",
   "close=0, count=0"},
  {"opened: before the first row", Start::Opened, "count row",
   "count=2, row=0",
   "count=2, row=0",
   "count=2, row=0"},
  {"the order of a rendering", Start::Opened, "first row field next row field next totals field close",
   "first=0, row=1, field=Ann, next=0, row=2, field=Bob, next=0, totals=0, field=30, close=0",
   "first=0, row=1, field=Ann, next=0, row=2, field=Bob, next=0, totals=0, field=30, close=0",
   "first=0, row=1, field=Ann, next=0, row=2, field=Bob, next=0, totals=0, field=30, close=0"},
  {"a field may be asked for again", Start::Opened, "first field field next field field",
   "first=0, field=Ann, field=Ann, next=0, field=Bob, field=Bob",
   "first=0, field=Ann, field=Ann, next=0, field=Bob, field=Bob",
   "first=0, field=Ann, field=Ann, next=0, field=Bob, field=Bob"},
  {"behind the last row", Start::Opened, "first next next row field next row field count",
   "first=0, next=0, next=0, row=3, field=, next=0, row=4, field=, count=2",
   "first=0, next=0, next=0, row=3, field=, next=0, row=3, field=, count=2",
   "first=0, next=0, next=0, row=3, field=, next=0, row=3, field=, count=2"},
  {"from behind the last row back to the first", Start::Opened, "first next next first row field",
   "first=0, next=0, next=0, first=0, row=1, field=Ann",
   "first=0, next=0, next=0, first=0, row=1, field=Ann",
   "first=0, next=0, next=0, first=0, row=1, field=Ann"},
  {"totals after a field of the same name", Start::Opened, "first field totals field",
   "first=0, field=Ann, totals=0, field=30",
   "first=0, field=Ann, totals=0, field=30",
   "first=0, field=Ann, totals=0, field=30"},
  {"from the totals back to the first row", Start::Opened, "first totals first row field count",
   "first=0, totals=0, first=0, row=1, field=30, count=2",
   "first=0, totals=0, first=0, row=1, field=Ann, count=2",
   "first=0, totals=0, first=0, row=1, field=30, count=2"},
  {"from the totals on", Start::Opened, "first totals next row field",
   "first=0, totals=0, next=0, row=2, field=",
   "first=0, totals=0, next=0, row=2, field=Bob",
   "first=0, totals=0, next=0, row=2, field=30"},
  {"totals twice", Start::Opened, "totals totals field",
   "totals=0, totals=91 [KalvodbDataSrc.MoveTotals], field=30",
   "totals=0, totals=0, field=30",
   "totals=0, totals=0, field=30"},
  {"closed", Start::Opened, "first close count row field",
   "first=0, close=0, count=2, row=1, field= [GetField: Unknown field \"7\"]",
   "first=0, close=0, count=2, row=1, field=Ann",
   "first=0, close=0, count=2, row=1, field=Ann"},
  {"opened again", Start::Opened, "first next open count row first field",
   "first=0, next=0, open=0, count=2, row=2, first=0, field=Ann",
   "first=0, next=0, open=0, count=2, row=2, first=0, field=Ann",
   "first=0, next=0, open=0, count=2, row=2, first=0, field=Ann"},
  {"opened again after the totals", Start::Opened, "totals open first field",
   "totals=0, open=0, first=0, field=Ann",
   "totals=0, open=0, first=0, field=Ann",
   "totals=0, open=0, first=0, field=Ann"},
  {"opened again after it was closed", Start::Opened, "close open first field totals field close",
   "close=0, open=0, first=0, field=Ann, totals=0, field=30, close=0",
   "close=0, open=0, first=0, field=Ann, totals=0, field=30, close=0",
   "close=0, open=0, first=0, field=Ann, totals=0, field=30, close=0"},
};
// clang-format on

template <typename Make>
std::string DidAll(const OrderCase& c, Make&& make) {
  ThreeSources page;
  const std::shared_ptr<RowSource> source = make(page, c.start != Start::Made);
  if (c.start == Start::Opened) {
    EXPECT_EQ(source->OpenDS(), 0);
  }
  return Did(page, *source, c.operations);
}

TEST(RowSources, AnswerInEveryOrderOfCalls) {
  for (const OrderCase& c : kOrders) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(DidAll(c,
                     [](ThreeSources& page, bool initialised) {
                       return page.Make<KalvodbDataSrc>(TABLETYPE_KALVODB, TABLE_CURRENTALERTS, initialised,
                                                        page.platform);
                     }),
              c.database);
    EXPECT_EQ(DidAll(c,
                     [](ThreeSources& page, bool initialised) {
                       return page.Make<TopnDataSrc>(TABLETYPE_TOPN, TABLE_TOPN_MBCNT, initialised, page.platform);
                     }),
              c.topN);
    EXPECT_EQ(DidAll(c,
                     [](ThreeSources& page, bool initialised) {
                       return page.Make<MapiDataSrc>(TABLETYPE_MAPI, TABLE_MAPI_MESSAGES, initialised);
                     }),
              c.live);
  }
}

TEST(RowSources, AnUninitialisedOneOpensNeitherFolderNorMessage) {
  const auto source = std::make_shared<MapiDataSrc>();
  EXPECT_EQ(ErrorOf([&] { source->OpenFolderDS(); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { source->OpenMessageDS(); }).Number(), 91);
}

TEST(RowSources, AnUninitialisedTopNSourceWithRowsOfItsPagesOwnFails) {
  ThreeSources page;
  const auto source = std::make_shared<TopnDataSrc>(page.platform);
  source->SetgRecordCount(7);
  EXPECT_EQ(ErrorOf([&] { source->MoveFirst(); }).Number(), 91);
  EXPECT_EQ(source->gRecordCount(), 7);
}

TEST(RowSources, MovesOfATopNSourceThatWasNotOpenedAreReported) {
  ThreeSources page;
  const auto source = page.Make<TopnDataSrc>(TABLETYPE_TOPN, TABLE_TOPN_MBCNT, true, page.platform);
  for (const char* operation : {"first", "next"}) {
    source->SetgRecordCount(7);
    EXPECT_EQ(Done(page, *source, operation), operation + "=0 [Move "s + operation + ".]");
    EXPECT_EQ(source->gRecordCount(), 0);
  }
}

TEST(RowSources, TheRowNumberStaysWithin32Bits) {
  ThreeSources page;
  const auto source = page.Make<TopnDataSrc>(TABLETYPE_TOPN, TABLE_TOPN_MBCNT, true, page.platform);
  source->OpenDS();
  source->SetgRecordCount(2147483647);
  source->SetgRowIndex(2147483646);
  EXPECT_EQ(source->MoveNext(), 0);
  EXPECT_EQ(source->gRowIndex(), 2147483647);
  EXPECT_EQ(source->MoveNext(), 0);
  EXPECT_EQ(source->gRowIndex(), 2147483647);
  EXPECT_EQ(CurrentError().number, 6);
}

}  // namespace
}  // namespace kalvo::test
