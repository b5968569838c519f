#include "host/cli/report_scope.h"

#include "host/cli/questions.h"
#include "kalvo/codes.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/error.h"
#include "kalvo/table.h"
#include "kalvo/table_database.h"

namespace kalvo::host {
namespace {

#define KALVO_REPORT(name, value) ReportName{name, #name},
constexpr ReportName kReports[] = {KALVO_TABLE_CONSTANTS(KALVO_REPORT)};
#undef KALVO_REPORT

bool Has(std::string_view text, std::string_view piece) { return text.find(piece) != std::string::npos; }

}  // namespace

std::span<const ReportName> ReportNames() { return kReports; }

Place FirstPlace(Database& database) {
  try {
    const auto answer = Questions(database).Ask(Built([](std::string& sql) {
      Append(sql,
             "select s.ComputerName, g.Name, s.DistOrgName, s.DistSiteName from EXDB_SERVER s, EXDB_GROUP g "
             "where g.GroupId = s.ServerGroupId and s.ServerState = ",
             kServerManaged, " order by s.ComputerName");
    }));
    if (!answer.empty()) return {answer[0][0], answer[0][1], answer[0][2], answer[0][3]};
  } catch (const Error&) {  // a check of the schema says why
  }
  return {};
}

ReportCatalogue::ReportCatalogue(const Platform& platform) : tables_(std::make_shared<KalvoTableDatabase>(platform)) {}

const std::string& ReportCatalogue::SqlOf(const ReportName& report) const {
  static const std::string none;
  const bool hasSlot = report.id > TABLE_FIRSTTABLE && report.id <= TABLE_TOTALTABLES;
  return hasSlot && !tables_->IsTableNull(report.id) ? tables_->GetTable(report.id)->GetSQL() : none;
}

bool ReportCatalogue::IsRanking(const ReportName& report) { return report.name.starts_with("TABLE_TOPN_"); }

// What a report's name stands for is what its SQL compares it with; a Top-N is of a server here.
ReportScope ReportCatalogue::ScopeOf(const ReportName& report, const Place& place) const {
  const std::string& sql = SqlOf(report);
  ReportScope scope{"", place.organization, place.site, "%", TOPN_UNDEFINED};
  if (IsRanking(report)) {
    scope.name = place.server;
    scope.topN = TOPN_SINGLESERVER;
  } else if (Has(sql, "ComputerName = %NAME%")) {
    scope.name = place.server;
  } else if (Has(sql, "g.Name = %NAME%")) {
    scope.name = place.group;
  }
  return scope;
}

}  // namespace kalvo::host
