// Who serves a row source may be a script, and a script may turn to the very source that asks it. Whatever it does
// there, the source goes on with what it has then. (That it reads nothing that was freed shows under the address
// sanitizer.)

#include <gtest/gtest.h>

#include <functional>

#include "fakes/page_fixture.h"
#include "kalvo/db_data_src.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/table.h"
#include "kalvo/topn_data_src.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

constexpr char kLong[] = "a text that is too long for the buffer that a string has of its own";

struct ServedPage : PageFixture {
  explicit ServedPage(std::string_view query) : PageFixture(query) {
    Administrator();
    MayDrillDown();
    database.results = {{{"7"}, {{kLong + ""s}, {"Bob"s}}}, {{"7"}, {{"30"s}}}};
    ranking.rows = {{{7, kLong + ""s}}, {{7, "Bob"s}}};
    ranking.totals = {{7, "30"s}};
    for (const auto& listing : {live->folders, live->messages, live->attachments}) {
      listing->items = {{{"7", kLong + ""s}}, {{"7", "Bob"s}}};
      listing->totals = {{"7", "30"s}};
    }
  }

  // A page and a table that nobody keeps but the source.
  template <typename Source>
  void Initialise(Source& source, KalvoTableType type, KalvoTableConstants id) {
    const auto own = std::make_shared<Context>();
    own->OnStartPage(*page);
    own->IncrementTableIndex();
    own->SetName(kLong);
    own->SetMailbox(kLong);
    own->SetTopN(TOPN_SINGLESERVER);
    const auto table = std::make_shared<Table>(platform);
    table->Initialize(type, id, "", table_ShowTotals, false, false, false, false, {}, "select", "7", "ASC");
    table->SetTopNParameters(*own);
    source.Initialize(*table, kLong, *own);
  }
};

struct Served {
  std::shared_ptr<RowSource> source;
  std::function<void()> initialise;
};

template <typename Source, KalvoTableType Type, KalvoTableConstants Id>
Served MakeServed(ServedPage& page) {
  std::shared_ptr<Source> source;
  if constexpr (Type == TABLETYPE_MAPI) {
    source = std::make_shared<Source>();
  } else {
    source = std::make_shared<Source>(page.platform);
  }
  return {source, [&page, own = source.get()] { page.Initialise(*own, Type, Id); }};
}

Steps& OfResponse(ServedPage& page) { return page.page->response->steps; }
Steps& OfRanking(ServedPage& page) { return page.ranking.steps; }
Steps& OfLive(ServedPage& page) { return page.live->steps; }

// A source, and who serves it: the steps at which a script would be asked.
struct Kind {
  const char* name;
  Served (*make)(ServedPage&);
  Steps& (*server)(ServedPage&);
  std::vector<const char*> steps;
};

const Kind kKinds[] = {
    {"database, response", MakeServed<KalvodbDataSrc, TABLETYPE_KALVODB, TABLE_CURRENTALERTS>, OfResponse, {"Write"}},
    {"Top-N, response", MakeServed<TopnDataSrc, TABLETYPE_TOPN, TABLE_TOPN_MBCNT>, OfResponse, {"Write"}},
    {"messages, response", MakeServed<MapiDataSrc, TABLETYPE_MAPI, TABLE_MAPI_MESSAGES>, OfResponse, {"Write"}},
    {"Top-N",
     MakeServed<TopnDataSrc, TABLETYPE_TOPN, TABLE_TOPN_MBCNT>,
     OfRanking,
     {"NewResults", "NewServerLoader", "Server.Load", "Count", "Sort", "MoveFirst", "Value", "MoveNext", "MoveTotals"}},
    {"messages",
     MakeServed<MapiDataSrc, TABLETYPE_MAPI, TABLE_MAPI_MESSAGES>,
     OfLive,
     {"MailboxOwner", "GotoContainer", "Messages", "MessageCount", "ClearSortFields", "AddSortField", "Sort",
      "MoveFirst", "Field", "MoveNext", "Total"}},
    {"public folders",
     MakeServed<MapiDataSrc, TABLETYPE_MAPI, TABLE_MAPI_PUBLICFOLDER_FOLDERS>,
     OfLive,
     {"GotoContainer", "GotoContainerById", "CurrentMailboxName", "CurrentContainerName", "Folders", "FolderCount"}},
    {"attachments",
     MakeServed<MapiDataSrc, TABLETYPE_MAPI, TABLE_MAPI_ATTACHMENTS>,
     OfLive,
     {"GotoMsgAttachment", "Attachments", "Count"}},
};

using Action = void (*)(const Served&);

struct {
  const char* name;
  Action run;
} const kActions[] = {
    {"initialises it twice", [](const Served& served) { served.initialise(), served.initialise(); }},
    {"opens it", [](const Served& served) { served.source->OpenDS(); }},
    {"closes it", [](const Served& served) { served.source->CloseDS(); }},
    {"moves it", [](const Served& served) { served.source->MoveFirst(), served.source->MoveNext(); }},
    {"moves it to its totals", [](const Served& served) { served.source->MoveTotals(); }},
    {"reads it", [](const Served& served) { served.source->GetField("7"); }},
    {"does all of it",
     [](const Served& served) {
       served.initialise();
       served.source->OpenDS();
       served.source->MoveFirst();
       served.source->GetField("7");
       served.source->MoveTotals();
       served.source->GetField("7");
     }},
};

// Everything that a rendering does, and a little more. Nothing fails: an initialised source reports.
void Render(RowSource& source) {
  source.OpenDS();
  source.MoveFirst();
  source.GetField("7");
  source.GetField("nothing");
  source.GetIdentifier("7");
  source.MoveNext();
  source.MoveTotals();
  source.GetField("7");
  source.CloseDS();
}

TEST(AskedBack, ASourceOutlivesWhateverItsServersDo) {
  for (const char* query : {"", "Debug=ALL", "MessageId=1&Debug=ALL", "PublicFolderId=1&ContainerId=1&Debug=ALL"}) {
    for (const Kind& kind : kKinds) {
      for (const char* step : kind.steps) {
        for (const auto& action : kActions) {
          for (const bool fails : {false, true}) {
            SCOPED_TRACE(kind.name + ": "s + step + " "s + action.name + " (" + query + ")");
            ServedPage page(query);
            const Served served = kind.make(page);
            served.initialise();
            Steps& server = kind.server(page);
            server.When(step, [&] { action.run(served); });
            if (fails) server.Fail(step);
            Render(*served.source);
            server.Recover();
            served.initialise();
            EXPECT_EQ(served.source->OpenDS(), 0);
            served.source->MoveFirst();
            EXPECT_EQ(served.source->GetField("7"), kLong) << "it is as good as ever";
          }
        }
      }
    }
  }
}

TEST(AskedBack, AFieldThatIsReadWhileItIsReadStaysWhole) {
  ServedPage page("");
  for (const Kind& kind : kKinds) {
    if (kind.server == OfResponse) continue;
    SCOPED_TRACE(kind.name);
    const Served served = kind.make(page);
    served.initialise();
    served.source->OpenDS();
    served.source->MoveFirst();
    std::string inner;
    for (const char* step : {"Value", "Field"}) {
      kind.server(page).When(step, [&] { inner = served.source->GetField("7"); });
    }
    EXPECT_EQ(served.source->GetField("7"), kLong);
    EXPECT_EQ(inner, kLong);
    kind.server(page).Recover();
  }
}

// The connection that a source leaves goes after what was taken from it, also when the new one gives nothing.
TEST(AskedBack, ADatabaseSourceThatIsOpenedAgainLetsGoInOrder) {
  ServedPage page("");
  const Served served = kKinds[0].make(page);
  served.initialise();
  served.source->OpenDS();
  page.database.steps.Fail("Execute");
  page.database.steps.done.clear();
  EXPECT_NE(served.source->OpenDS(), 0);
  EXPECT_EQ(page.database.steps.done,
            (std::vector<std::string>{"Connect(KalvoDB)", "~RecordSet()", "~Connection()", "Execute()"}));
  EXPECT_EQ(served.source->GetField("7"), "");
  EXPECT_EQ(served.source->CloseDS(), 91) << "there is nothing to close";
}

}  // namespace
}  // namespace kalvo::test
