#pragma once

#include <span>
#include <string>
#include <string_view>

#include "host/cli/report_page.h"
#include "kalvo/enumerations.h"

namespace kalvo {
class Database;
}

namespace kalvo::host {

// A report with the published name of its id.
struct ReportName {
  KalvoTableConstants id;
  std::string_view name;
};

// Every table id, in the order of the ids.
std::span<const ReportName> ReportNames();

bool ReadsDatabase(KalvoTableConstants id);  // by SQL of its own
bool IsRanking(KalvoTableConstants id);      // a Top-N

// A managed server, with what it is in.
struct Place {
  std::string server, group, organization, site;
};

// The first managed server by name: a scope in which the reports have something to show. Nothing but empty names
// where there is no such server or the database does not tell.
Place FirstPlace(Database& database);

// The scope that a report has at a place: of the server, of its group, or of its organization and site; all of its
// mailboxes.
ReportScope ScopeOf(KalvoTableConstants id, const Place& place);

}  // namespace kalvo::host
