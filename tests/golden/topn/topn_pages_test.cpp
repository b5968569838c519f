// The Top-N reports as the console shows them, in every scope, on every database. The pages are short ones, so
// that the golden files stay readable; whole rankings are compared row by row.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "adapters/ranking/kinds.h"
#include "adapters/ranking/sample_fixture.h"
#include "database/sample_databases.h"
#include "host/cli/report_page.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "support/golden.h"

namespace kalvo::test {
namespace {

using ranking::Scope;

struct ScopeCase {
  const char* folder;
  Scope scope;
  std::string name;
  host::ReportScope report;
};

const ScopeCase kCases[] = {
    {"server", Scope::Server, "OFA-EX01", {"OFA-EX01", "", "", "", TOPN_SINGLESERVER}},
    {"server-group", Scope::ServerGroup, "Production", {"Production", "", "", "", TOPN_SERVERGROUP}},
    {"site", Scope::Site, "O'Fallon", {"", "Meridian", "O'Fallon", "", TOPN_SITE}},
    {"organization", Scope::Organization, "Meridian", {"", "Meridian", "", "", TOPN_ORGANIZATION}},
    {"mailbox-group", Scope::MailboxGroup, "Sales & Marketing", {"Sales & Marketing", "", "", "", TOPN_MAILBOXGROUP}},
};

using Query = std::vector<std::pair<std::string, std::string>>;

std::string Shown(Engine engine, int id, const host::ReportScope& scope, const Query& query = {}) {
  host::ReportPage page(SampleDatabases::Shared().PlatformOf(engine));
  for (const auto& [key, value] : query) page.AddParameter(key, value);
  return page.Build(static_cast<KalvoTableConstants>(id), scope);
}

// All eighteen reports, each on a page of its own.
void ForEachReport(Engine engine, const ScopeCase& scope, const Query& query,
                   const std::function<void(int id, const std::string& html)>& look) {
  for (int id = TABLE_TOPN_MBCNT; id <= TABLE_TOPN_LARGEOLDPFMSG; ++id) {
    look(id, Shown(engine, id, scope.report, query));
  }
}

void ExpectGoldenReports(const std::string& folder, Engine engine, const ScopeCase& scope, const Query& query) {
  ForEachReport(engine, scope, query, [&](int id, const std::string& html) {
    ExpectGolden("topn/" + folder + "/report_" + std::to_string(id) + ".html", html);
  });
}

// The texts of all fields of all rows.
std::string AllTexts(Engine engine, std::int16_t kind, const ScopeCase& scope) {
  TopNFactory& factory = SampleDatabases::Shared().PlatformOf(engine).topN;
  const auto results = factory.NewResults();
  Load(factory, kind, scope.scope, scope.name, *results);
  return Built([&](std::string& out) {
    for (std::int32_t i = 0; i < results->Count(); ++i, results->MoveNext()) {
      for (std::int16_t field = ranking::kFirstField; field <= ranking::kLastField; ++field) {
        Append(out, field, ": ", ToText(results->Value(field)), "\n");
      }
    }
  });
}

class TopNPages : public testing::TestWithParam<Engine> {};

TEST_P(TopNPages, AreTheGoldenOnesInEveryScope) {
  for (const ScopeCase& scope : kCases) ExpectGoldenReports(scope.folder, GetParam(), scope, {{"PageSize", "8"}});
}

TEST_P(TopNPages, AreTheGoldenOnesWhenSorted) {
  const Query query = {{"Sort", "8"}, {"SortOrder", "ASC"}, {"PageSize", "8"}};
  ExpectGoldenReports("organization-by-space", GetParam(), kCases[3], query);
}

TEST_P(TopNPages, TellOfNoFailure) {
  for (const ScopeCase& scope : kCases) {
    ForEachReport(GetParam(), scope, {{"PageSize", "-1"}}, [&](int id, const std::string& html) {
      EXPECT_EQ(host::FailuresOf(html), std::vector<std::string>()) << scope.folder << " " << id;
    });
  }
}

TEST_P(TopNPages, HaveTheRowsOfEveryOtherDatabase) {
  for (const ScopeCase& scope : kCases) {
    for (const ranking::Kind& kind : ranking::AllKinds()) {
      const std::string texts = AllTexts(GetParam(), kind.number, scope);
      EXPECT_EQ(texts, AllTexts(Engine::Sqlite, kind.number, scope)) << scope.folder << " " << kind.number;
      EXPECT_EQ(texts.empty(), scope.scope == Scope::MailboxGroup && !IsOfMailboxes(kind.subject));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, TopNPages, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

TEST(TopNPage, HasNoServerColumnWhenItIsAboutOneServer) {
  EXPECT_EQ(Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, kCases[0].report).find("Server Name"), std::string::npos);
  for (const int other : {1, 2, 3, 4}) {
    EXPECT_NE(Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, kCases[other].report).find("Server Name"), std::string::npos);
  }
}

TEST(TopNPage, OfAnUnknownScopeIsEmpty) {
  for (const KalvoTableTopN topN :
       {TOPN_ORGANIZATION, TOPN_SITE, TOPN_SINGLESERVER, TOPN_SERVERGROUP, TOPN_MAILBOXGROUP}) {
    const std::string html = Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, {"Nobody", "Nobody", "Nobody", "", topN});
    EXPECT_NE(html.find("There are no items in this report."), std::string::npos) << html;
    EXPECT_TRUE(host::FailuresOf(html).empty());
  }
}

TEST(TopNPage, OfAnUndefinedScopeSaysThatItHasNone) {
  const auto failures =
      host::FailuresOf(Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, {"SEA-EX01", "", "", "", TOPN_UNDEFINED}));
  ASSERT_FALSE(failures.empty());
  EXPECT_EQ(failures.front(), "Internal error: No TopN Load type specified.");
}

TEST(TopNPage, KeepsItsRankingWhenTheSortFieldIsNoNumber) {
  const auto rows = [](const std::string& html) {
    const std::size_t first = html.find("\r\n<td align=");
    return html.substr(first, html.find("TOTAL", first) - first);
  };
  const std::string ranked = rows(Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, kCases[3].report, {{"PageSize", "-1"}}));
  EXPECT_GT(ranked.size(), 10'000u);
  EXPECT_EQ(rows(Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, kCases[3].report, {{"Sort", "Name"}, {"PageSize", "-1"}})),
            ranked);
  EXPECT_NE(rows(Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, kCases[3].report, {{"Sort", "2"}, {"PageSize", "-1"}})),
            ranked);
}

TEST(TopNPage, SaysWhenTheSortFieldIsNoColumn) {
  const auto failures = host::FailuresOf(Shown(Engine::Sqlite, TABLE_TOPN_MBCNT, kCases[3].report, {{"Sort", "99"}}));
  ASSERT_FALSE(failures.empty());
  EXPECT_TRUE(failures.front().starts_with("TopnDataSrc.OpenDS: Sort failed")) << failures.front();
}

}  // namespace
}  // namespace kalvo::test
