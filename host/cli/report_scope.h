#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "host/cli/report_page.h"
#include "kalvo/enumerations.h"

namespace kalvo {
class Database;
class KalvoTableDatabase;
struct Platform;
}  // namespace kalvo

namespace kalvo::host {

// A report with the published name of its id.
struct ReportName {
  KalvoTableConstants id;
  std::string_view name;
};

// Every table id, in the order of the ids.
std::span<const ReportName> ReportNames();

// A managed server, with what it is in.
struct Place {
  std::string server, group, organization, site;
};

// The first managed server by name: a scope in which the reports have something to show. Nothing but empty names
// where there is no such server or the database does not tell.
Place FirstPlace(Database& database);

// What the catalogue tells of the reports.
class ReportCatalogue {
 public:
  // The platform outlives the catalogue.
  explicit ReportCatalogue(const Platform& platform);

  // The report's own SQL; "" for one that reads no database by itself.
  const std::string& SqlOf(const ReportName& report) const;

  // Whether it is a Top-N.
  static bool IsRanking(const ReportName& report);

  // The scope that a report has at a place: of the server, of its group, or of its organization and site; all of its
  // mailboxes.
  ReportScope ScopeOf(const ReportName& report, const Place& place) const;

 private:
  std::shared_ptr<KalvoTableDatabase> tables_;
};

}  // namespace kalvo::host
