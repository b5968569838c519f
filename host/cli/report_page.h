#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
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
  void AddParameter(std::string key, std::string value) { query_.emplace_back(std::move(key), std::move(value)); }

  void BeAdministrator() { administrator_ = true; }

  // The HTML of a report, on a page of its own at "/Report.asp". Fails with 9 for an id that has no report.
  std::string Build(KalvoTableConstants id, const ReportScope& scope) const;

 private:
  const Platform& platform_;
  std::vector<std::pair<std::string, std::string>> query_;
  bool administrator_ = false;
};

// The failures that a report's HTML tells of, each as one line of plain text.
std::vector<std::string> FailuresOf(std::string_view html);

}  // namespace kalvo::host
