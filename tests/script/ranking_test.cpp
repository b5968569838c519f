// Script objects as the Top-N loader's: session statics that a page's Top-N reports use.

#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

constexpr const char* kResults = R"((function () {
  var at = 0, order = "";
  this.rows = [];
  this.Count = function () { return this.rows.length; };
  this.MoveFirst = function () { at = 0; };
  this.MoveNext = function () { at += 1; };
  this.MoveTotals = function () { at = -1; };
  this.Value = function (column) {
    if (at === -1) { return column === 7 ? 30 : ""; }
    var row = this.rows[at];
    return row && row[column] !== undefined ? row[column] : "";
  };
  this.Sort = function (column, ascending) {
    this.rows.sort(function (a, b) { return ascending ? a[column] - b[column] : b[column] - a[column]; });
  };
}))";

constexpr const char* kLoader = R"(({
  Fill: function (call, kind, name, results) {
    results.rows = [{2: call + " " + kind + " " + name, 7: 20, 8: 1048576, 15: "S", 16: "DN"},
                    {2: "second", 7: 10, 8: 1048576, 15: "S", 16: "DN"}];
  },
  Load: function (kind, name, results) { this.Fill("Load", kind, name, results); },
  LoadGroup: function (kind, name, results) { this.Fill("LoadGroup", kind, name, results); },
  LoadSite: function (kind, name, results) { this.Fill("LoadSite", kind, name, results); },
  LoadOrg: function (kind, name, results) { this.Fill("LoadOrg", kind, name, results); }
}))";

constexpr const char* kGroupLoader = R"(({Load: function (kind, name, results) {
  results.rows = [{2: "group " + kind + " " + name, 7: 1}];
}}))";

class ScriptRanking : public PageTest {
 protected:
  void Declare() {
    options.statics = {{"gTopNResults", "results.js", kResults},
                       {"gTopNServerLoader", "loader.js", kLoader},
                       {"gTopNMailboxGroupLoader", "group.js", kGroupLoader}};
  }

  std::string Table(const std::string& arguments) {
    return Script("var g = Server.CreateObject('KalvoTables.KalvoforExchangeTableGenerator');\ng.BuildTable(" +
                  arguments + ");");
  }
};

TEST_F(ScriptRanking, LoadsEachScopeByItsOwnCall) {
  Declare();
  const struct {
    const char *arguments, *shown;
  } kCases[] = {
      {"TABLE_TOPN_MBCNT, 'a', 'b', 'c', '', '', TOPN_SINGLESERVER", "Load 1 a"},
      {"TABLE_TOPN_MBSPACE, 'a', 'b', 'c', '', '', TOPN_SERVERGROUP", "LoadGroup 2 a"},
      {"TABLE_TOPN_MailboxAverageSize, 'a', 'b', 'c', '', '', TOPN_SITE", "LoadSite 21 c"},
      {"TABLE_TOPN_MBOLDCNT, 'a', 'b', 'c', '', '', TOPN_ORGANIZATION", "LoadOrg 8 b"},
      {"TABLE_TOPN_MBCNT, 'a', 'b', 'c', '', '', TOPN_MAILBOXGROUP", "group 1 a"},
  };
  for (const auto& c : kCases) {
    const std::string html = Table(c.arguments);
    EXPECT_NE(html.find(c.shown), std::string::npos) << c.shown << "\n" << html;
    EXPECT_EQ(html.find("Error Generating"), std::string::npos) << html;
  }
  EXPECT_TRUE(ranking.steps.done.empty()) << "the host's own loader is left alone";
}

TEST_F(ScriptRanking, ShowsSortsAndTotalsWhatItWasGiven) {
  Declare();
  request.queryString = "Sort=7&SortOrder=ASC";
  const std::string html = Table("TABLE_TOPN_MBCNT, '', 'b', '', '', '', TOPN_ORGANIZATION");
  EXPECT_LT(html.find("second"), html.find("LoadOrg 1 b"));
  EXPECT_NE(html.find("<strong>30</strong>"), std::string::npos) << html;
}

TEST_F(ScriptRanking, ReportsWhatTheScriptThrows) {
  options.statics = {{"gTopNResults", "results.js", kResults},
                     {"gTopNServerLoader", "loader.js",
                      "({LoadOrg: function () { var e = new Error('no agent'); e.number = 7; throw e; }})"}};
  const std::string html = Table("TABLE_TOPN_MBCNT, '', 'b', '', '', '', TOPN_ORGANIZATION");
  EXPECT_NE(html.find("TopnDataSrc.OpenDS: LoadFailed"), std::string::npos) << html;
  EXPECT_NE(html.find("no agent"), std::string::npos) << html;
}

TEST_F(ScriptRanking, LacksTheCallsThatItDoesNotOffer) {
  options.statics = {{"gTopNResults", "results.js", kResults}, {"gTopNServerLoader", "loader.js", "({})"}};
  const std::string html = Table("TABLE_TOPN_MBCNT, '', 'b', '', '', '', TOPN_ORGANIZATION");
  EXPECT_NE(html.find("0x1B6"), std::string::npos) << html;
}

TEST_F(ScriptRanking, IsTheHostsWhereTheSessionDeclaresNone) {
  Table("TABLE_TOPN_MBCNT, '', 'b', '', '', '', TOPN_ORGANIZATION");
  EXPECT_FALSE(ranking.steps.done.empty());
}

}  // namespace
}  // namespace kalvo::test
