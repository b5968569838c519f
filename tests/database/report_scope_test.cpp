#include "host/cli/report_scope.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "fakes/page_fixture.h"

namespace kalvo::test {
namespace {

using namespace host;

const Place kPlace{"EX01", "Group", "ORG", "SITE"};

class Reports : public testing::Test, protected PageFixture {
 protected:
  const ReportCatalogue catalogue_{platform};
};

TEST_F(Reports, HaveSqlOfTheirOwnFromTheFirstToTheLastOfTheDatabase) {
  for (const ReportName& report : ReportNames()) {
    const bool reads = report.id >= TABLE_CURRENTALERTS && report.id <= TABLE_AmbiguousAddressResolution;
    EXPECT_EQ(!catalogue_.SqlOf(report).empty(), reads) << report.name;
  }
}

TEST_F(Reports, AreTopNsWhereTheirRowsAreRanked) {
  for (const ReportName& report : ReportNames()) {
    const bool ranks = report.id >= TABLE_TOPN_MBCNT && report.id <= TABLE_TOPN_LARGEOLDPFMSG;
    EXPECT_EQ(ReportCatalogue::IsRanking(report), ranks) << report.name;
  }
}

TEST_F(Reports, AreOfAServerOrAGroupWhereTheyAskForOne) {
  constexpr KalvoTableConstants kOfServers[] = {TABLE_TASK_CAPACITYPLANNING_SINGLESERVER,
                                                TABLE_RES_SERVER_DBFILESUMMARY, TABLE_CHARGEBACK_Server,
                                                TABLE_AmbiguousAddressResolution};
  constexpr KalvoTableConstants kOfGroups[] = {TABLE_TASK_CAPACITYPLANNING_SUMMARY, TABLE_RES_SERVERGROUPMEMBERSHIP,
                                               TABLE_RES_SERVERGROUP_SERVERSUMMARY, TABLE_SINGLESERVERGROUPMEMBERSHIP,
                                               TABLE_CHARGEBACK_ServerGroup};
  for (const ReportName& report : ReportNames()) {
    const ReportScope scope = catalogue_.ScopeOf(report, kPlace);
    const bool ranks = ReportCatalogue::IsRanking(report);
    const bool ofServer = ranks || std::ranges::count(kOfServers, report.id) > 0;
    const bool ofGroup = std::ranges::count(kOfGroups, report.id) > 0;
    EXPECT_EQ(scope.name, ofServer ? "EX01" : ofGroup ? "Group" : "") << report.name;
    EXPECT_EQ(scope.topN, ranks ? TOPN_SINGLESERVER : TOPN_UNDEFINED) << report.name;
    EXPECT_EQ(scope.organization + scope.site + scope.mailbox, "ORGSITE%") << report.name;
  }
}

}  // namespace
}  // namespace kalvo::test
