#include "host/cli/report_scope.h"

#include "host/cli/questions.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"

namespace kalvo::host {
namespace {

#define KALVO_REPORT(name, value) ReportName{name, #name},
constexpr ReportName kReports[] = {KALVO_TABLE_CONSTANTS(KALVO_REPORT)};
#undef KALVO_REPORT

enum class Named { Nothing, Server, Group };

// What the name scope of a report is.
Named NameOf(KalvoTableConstants id) {
  switch (id) {
    case TABLE_TASK_CAPACITYPLANNING_SINGLESERVER:
    case TABLE_RES_SERVER_DBFILESUMMARY:
    case TABLE_CHARGEBACK_Server:
    case TABLE_AmbiguousAddressResolution: return Named::Server;
    case TABLE_TASK_CAPACITYPLANNING_SUMMARY:
    case TABLE_RES_SERVERGROUPMEMBERSHIP:
    case TABLE_RES_SERVERGROUP_SERVERSUMMARY:
    case TABLE_SINGLESERVERGROUPMEMBERSHIP:
    case TABLE_CHARGEBACK_ServerGroup: return Named::Group;
    default: return IsRanking(id) ? Named::Server : Named::Nothing;
  }
}

}  // namespace

std::span<const ReportName> ReportNames() { return kReports; }

bool ReadsDatabase(KalvoTableConstants id) {
  return id >= TABLE_CURRENTALERTS && id <= TABLE_AmbiguousAddressResolution;
}

bool IsRanking(KalvoTableConstants id) { return id >= TABLE_TOPN_MBCNT && id <= TABLE_TOPN_LARGEOLDPFMSG; }

Place FirstPlace(Database& database) {
  try {
    const auto answer = Questions(database).Ask(
        "select s.ComputerName, g.Name, s.DistOrgName, s.DistSiteName from EXDB_SERVER s, EXDB_GROUP g "
        "where g.GroupId = s.ServerGroupId and s.ServerState = 2 order by s.ComputerName");
    if (!answer.empty()) return {answer[0][0], answer[0][1], answer[0][2], answer[0][3]};
  } catch (const Error&) {  // a check of the schema says why
  }
  return {};
}

ReportScope ScopeOf(KalvoTableConstants id, const Place& place) {
  const Named named = NameOf(id);
  return {named == Named::Server  ? place.server
          : named == Named::Group ? place.group
                                  : "",
          place.organization, place.site, "%", IsRanking(id) ? TOPN_SINGLESERVER : TOPN_UNDEFINED};
}

}  // namespace kalvo::host
