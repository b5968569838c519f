// Whole tables of the catalogue over rows in memory, beside the exact bytes that they make.

#include <gtest/gtest.h>

#include <functional>

#include "fakes/page_fixture.h"
#include "kalvo/column_database.h"
#include "kalvo/table.h"
#include "kalvo/table_generator.h"
#include "support/golden.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

enum class User : std::uint8_t { Owner, Administrator };

struct Rendered {
  const char* golden;
  KalvoTableConstants table;
  const char* query;
  User user = User::Owner;
  KalvoTableTopN scope = TOPN_UNDEFINED;
  const char* title = "";
};

const Rendered kTables[] = {
    {"alerts", TABLE_CURRENTALERTS, "", User::Owner, TOPN_UNDEFINED, "Current Alerts"},
    {"alerts_administrator", TABLE_CURRENTALERTS, "", User::Administrator},
    {"alerts_second_page", TABLE_CURRENTALERTS, "First=3&PageSize=2&Sort=Attrib3&SortOrder=ASC", User::Administrator},
    {"alerts_last_page", TABLE_CURRENTALERTS, "First=-1&PageSize=2&x=a+b"},
    {"alerts_beyond_the_end", TABLE_CURRENTALERTS, "First=9"},
    {"alerts_traced", TABLE_CURRENTALERTS, "Debug=All&PageSize=1"},
    {"failing_cells", TABLE_TASK_RECOVERYMANAGEMENT_FAILEDBACKUPS, ""},
    {"totals", TABLE_RES_ORGANIZATION_SERVERSUMMARY, ""},
    {"ambiguous_addresses", TABLE_AmbiguousAddressResolution, ""},
    {"membership", TABLE_SINGLESERVERGROUPMEMBERSHIP, "", User::Administrator},
    {"quota_violations", TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS, "", User::Administrator},
    {"top_mailboxes_of_a_site", TABLE_TOPN_MBCNT, "Sort=7&SortOrder=DESC", User::Owner, TOPN_SITE},
    {"top_mailboxes_of_a_server", TABLE_TOPN_MBCNT, "", User::Owner, TOPN_SINGLESERVER},
    {"top_messages", TABLE_TOPN_OLDMBMSG, "", User::Owner, TOPN_ORGANIZATION},
    {"top_without_a_scope", TABLE_TOPN_MBCNT, ""},
    {"messages", TABLE_MAPI_MESSAGES, "ContainerId=c1"},
    {"folders", TABLE_MAPI_FOLDERS, ""},
    {"folders_refused", TABLE_MAPI_PUBLICFOLDER_FOLDERS, ""},
};

FakeResult AlertRows() {
  const auto alert = [](std::uint8_t id, const char* kind, const char* resource, const char* server, const char* code,
                        const char* missing) -> std::vector<Value> {
    return {Bytes{0xA0, id},
            std::string(kind),
            std::string(resource),
            "Size > limit"s,
            "1/2/1999"s,
            "10"s,
            "12 & more"s,
            "Group"s,
            Date{36162.5 + id},
            std::string(server),
            std::string(missing),
            std::string(code),
            "P1"s};
  };
  return {{"AlertId", "Attrib3", "AlertedResource", "Attrib6", "Attrib7", "Attrib8", "Attrib9", "Attrib4", "AlertTime",
           "Attrib2", "missing", "AlertTypeCode", "Attrib5"},
          {alert(1, "Mailbox", "Ken <ken@x>", "EXCH01", "5001", "0"),
           alert(2, "Server", "EXCH02", "EXCH02", "5023", "1"), alert(3, "Server", "EXCH03", "EXCH03", "5018", "0"),
           alert(4, "Public folder", "\\A\\B", "EXCH01", "5004", "0"), alert(5, "Server Group", "", "", "5001", "")}};
}

std::deque<FakeResult> ResultsOf(KalvoTableConstants table) {
  const std::int32_t one = 1;
  switch (table) {
    case TABLE_CURRENTALERTS: return {AlertRows()};
    case TABLE_TASK_RECOVERYMANAGEMENT_FAILEDBACKUPS:
      return {{{"DistOrgName", "DistSiteName", "ComputerName", "BackupType"},
               {{"O"s, "S"s, "EXCH01"s, "2"s}, {"O"s, "S"s, "EXCH02"s, "full"s}}}};
    case TABLE_RES_ORGANIZATION_SERVERSUMMARY:
      return {{{"DomainName", "ComputerName", "Missing", "Mailboxes", "MBSpace", "PBFolders", "PbSpace"},
               {{"D"s, "EXCH01"s, one, std::int32_t{1200}, std::int64_t{5} << 30, std::int32_t{3}, 1.5 * 1048576},
                {"D"s, "EXCH02"s, Null{}, Null{}, Null{}, Null{}, -2097152.0}}},
              {{"Mailboxes", "MBSpace", "PBFolders", "PbSpace"},
               {{std::int32_t{1200}, std::int64_t{5} << 30, std::int32_t{3}, Null{}}}}};
    case TABLE_SINGLESERVERGROUPMEMBERSHIP:
      return {{{"NotInGroup", "DomainName", "ComputerName", "Missing", "LastQuickScan", "LastDetailScan", "Identifier",
                "GroupName", "DefaultGroup"},
               {{"FALSE"s, "D"s, "EXCH01"s, one, "1999-01-02 15:04:05"s, Null{}, std::int32_t{11}, "G"s, one},
                {"TRUE"s, "D"s, "EXCH02"s, Null{}, "1/1/1950"s, Null{}, std::int32_t{12}, "H"s, Null{}}}}};
    case TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS:
      return {{{"RecipientName", "QuotaViolationId", "computerName", "displayName"},
               {{"Ann"s, Bytes{1}, "EXCH01"s, "Send"s},
                {"Ann"s, Bytes{2}, "EXCH01"s, "Receive"s},
                {"Bob"s, Null{}, "EXCH02"s, "Send"s}}}};
    default: return {{{"ComputerName", "MbName", "MbDistName"}, {{"EXCH01"s, "Ken & Co"s, "/o=O/cn=ken"s}}}};
  }
}

void Fill(PageFixture& page, KalvoTableConstants table) {
  page.database.results = ResultsOf(table);
  page.ranking.rows = {{{2, "Ann"s},
                        {7, std::int32_t{1500}},
                        {8, 3145728.0},
                        {10, 36162.0},
                        {11, "m1"s},
                        {12, "f1"s},
                        {13, 36162.5},
                        {14, std::int32_t{2048}},
                        {15, "EXCH01"s},
                        {16, "/cn=ann"s},
                        {17, 2097.5},
                        {18, "1"s}},
                       {{2, "<Bob>"s}, {7, std::int32_t{7}}, {13, ""s}, {15, "EXCH02"s}, {16, "/cn=bob"s}, {18, "0"s}}};
  page.ranking.totals = {{7, std::int32_t{1507}}, {8, 3145728.0}, {14, std::int32_t{2048}}};
  page.live->messages->items = {{{"Name", "Hello <you>"s},
                                 {"ExchangeId", "m1"s},
                                 {"Sender", "Ann"s},
                                 {"Size", std::int32_t{1536}},
                                 {"CreateDate", 36162.0},
                                 {"ModifiedDate", 36162.5},
                                 {"HasAttachment", "1"s}},
                                {{"Name", ""s},
                                 {"ExchangeId", "m2"s},
                                 {"Sender", ""s},
                                 {"Size", Null{}},
                                 {"CreateDate", ""s},
                                 {"ModifiedDate", ""s},
                                 {"HasAttachment", "0"s}}};
  page.live->messages->totals = {{"Size", std::int32_t{1536}}};
  page.live->folders->items = {{{"Name", "P&L"s},
                                {"ExchangeId", "f1"s},
                                {"FolderSize", 2621440.0},
                                {"MessageCount", std::int32_t{1001}},
                                {"CreateDate", 36162.0},
                                {"ModifiedDate", 2.0}}};
  page.live->folders->totals = {{"FolderSize", 2621440.0}, {"MessageCount", std::int32_t{1001}}};
}

std::string Html(const Rendered& rendered, bool somebodyLooksOn) {
  PageFixture page(rendered.query);
  if (rendered.user == User::Administrator) page.Administrator();
  Fill(page, rendered.table);
  for (FakeResult& result : page.database.results) result.kept = true;
  if (!somebodyLooksOn) page.page->LookAway();
  KalvoforExchangeTableGenerator generator(page.platform);
  generator.OnStartPage(*page.page);
  generator.BuildTable(rendered.table, "EXCH01", "Org", "Site", "Ken", "\\Inbox", rendered.scope,
                       "There are no items in this report.", rendered.title);
  return page.Text();
}

// The same bytes, whether each call is made as a page's own objects see it or the rows are read as they are kept.
TEST(RenderedTables, AreTheGoldenOnes) {
  for (const Rendered& rendered : kTables) {
    for (const bool somebodyLooksOn : {true, false}) {
      SCOPED_TRACE(std::string(rendered.golden) + (somebodyLooksOn ? ", seen" : ", unseen"));
      ExpectGolden("rendering/"s + rendered.golden + ".html", Html(rendered, somebodyLooksOn));
    }
  }
}

// The alerts, so many times over, without one of their fields; `-1` leaves all.
std::string Alerts(int times, int without, const std::function<void(PageFixture&)>& look) {
  PageFixture page("PageSize=1000");
  page.Administrator();
  FakeResult alerts = AlertRows(), all;
  if (without >= 0) alerts.fields[static_cast<std::size_t>(without)] = "nothing";
  all.fields = alerts.fields;
  for (int i = 0; i < times; ++i) all.rows.insert(all.rows.end(), alerts.rows.begin(), alerts.rows.end());
  all.kept = true;
  page.database.results = {all};
  look(page);
  KalvoforExchangeTableGenerator generator(page.platform);
  generator.OnStartPage(*page.page);
  generator.BuildTable(TABLE_CURRENTALERTS);
  return page.Text();
}

void EverybodyLooks(PageFixture&) {}
void NobodyLooks(PageFixture& page) { page.page->LookAway(); }

TEST(RenderedTables, OfManyRowsAreTheSameUnseen) {
  const std::string seen = Alerts(150, -1, EverybodyLooks);
  EXPECT_GT(seen.size(), 200'000u);
  EXPECT_EQ(Alerts(150, -1, NobodyLooks), seen);
}

TEST(RenderedTables, WithoutAFieldAreTheSameUnseen) {
  for (int field = 0; field < 13; ++field) {
    EXPECT_EQ(Alerts(1, field, NobodyLooks), Alerts(1, field, EverybodyLooks)) << field;
  }
}

TEST(RenderedTables, AreTheSameWhoeverLooksOn) {
  const std::string seen = Alerts(1, -1, EverybodyLooks);
  const std::function<void(PageFixture&)> kLooks[] = {
      [](PageFixture& page) { NobodyLooks(page), page.page->response->sees = true; },
      [](PageFixture& page) { NobodyLooks(page), page.page->request->sees = true; },
      [](PageFixture& page) { NobodyLooks(page), page.page->session->sees = true; },
      [](PageFixture& page) { NobodyLooks(page), page.page->server->sees = true; },
  };
  for (const auto& look : kLooks) EXPECT_EQ(Alerts(1, -1, look), seen);
}

// A table over the alerts, with whatever display and columns; seen or unseen.
std::string OwnTable(std::string_view query, const std::vector<std::int16_t>& columns, bool displayIsStarted,
                     bool somebodyLooksOn) {
  PageFixture page(query);
  page.database.results = {AlertRows()};
  page.database.results[0].kept = true;
  if (!somebodyLooksOn) page.page->LookAway();
  page.Start();
  const auto table = std::make_shared<Table>(page.platform);
  table->Initialize(TABLETYPE_KALVODB, TABLE_CURRENTALERTS, "", table_NoTotals, false, false, false, true, columns,
                    "select %SORT%", "Attrib2", "ASC");
  Display unstarted;
  KalvoColumnDatabase catalogue;
  table->BuildHTML(*page.context, *page.page->response, displayIsStarted ? *page.display : unstarted, catalogue, "",
                   "");
  return page.Text();
}

TEST(RenderedTables, ThatCannotBeMadeWholeAreTheSameUnseen) {
  const std::vector<std::int16_t> known = {COL_CURRENTALERTS_COMPUTER, COL_CURRENTALERTS_ALERTEDRESOURCE};
  const struct {
    const char* why;
    const char* query;
    std::vector<std::int16_t> columns;
    bool displayIsStarted = true;
  } kCases[] = {
      {"a first row beyond 16 bits", "First=99999&PageSize=2", known},
      {"fields that are traced", "Debug=Dictionary", known},
      {"a column that there is not", "", {COL_CURRENTALERTS_COMPUTER, 9999}},
      {"no column at all", "", {}},
      {"a display without a page", "", known, false},
  };
  for (const auto& c : kCases) {
    const std::string seen = OwnTable(c.query, c.columns, c.displayIsStarted, true);
    EXPECT_NE(seen, "") << c.why;
    EXPECT_EQ(OwnTable(c.query, c.columns, c.displayIsStarted, false), seen) << c.why;
  }
}

TEST(RenderedTables, TwoOfAPageKeepTheirStatesApart) {
  PageFixture page("Sort=&Sort=MbName&SortOrder=&SortOrder=DESC&PageSize=2");
  KalvoforExchangeTableGenerator generator(page.platform);
  generator.OnStartPage(*page.page);
  for (const auto table : {TABLE_CURRENTALERTS, TABLE_AmbiguousAddressResolution}) {
    Fill(page, table);
    generator.BuildTable(table, "EXCH01");
  }
  ExpectGolden("rendering/two_tables.html", page.Text());
}

}  // namespace
}  // namespace kalvo::test
