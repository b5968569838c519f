#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kalvo/enumerations.h"

namespace kalvo {
struct Platform;
}

namespace kalvo::host {

// What a report is about.
struct ReportScope {
  std::string name, organization, site, mailbox;
  KalvoTableTopN topN = TOPN_UNDEFINED;
};

// A page without a script: asks the library for one report and answers its HTML. For the check, the benchmarks
// and the tests, which want the very bytes that a console page shows.
class ReportPage {
 public:
  // The platform outlives the page.
  explicit ReportPage(const Platform& platform) : platform_(platform) {}

  // A parameter of the query string, in the order of the calls.
  void AddParameter(std::string_view key, std::string_view value);

  void BeAdministrator() { administrator_ = true; }

  // The HTML of a report, on a page of its own at "/Report.asp". Fails with 9 for an id that has no report.
  std::string Build(KalvoTableConstants id, const ReportScope& scope) const;

 private:
  const Platform& platform_;
  std::string query_;  // as an address has it
  bool administrator_ = false;
};

// The failures that a report's HTML tells of, each as one line of plain text.
std::vector<std::string> FailuresOf(std::string_view html);

}  // namespace kalvo::host
