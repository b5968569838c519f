#pragma once

#include <span>
#include <string_view>

#include "host/cli/report_page.h"
#include "kalvo/enumerations.h"

namespace kalvo::test {

// One page of the golden folder: a report in a scope of the small sample that has something to show.
struct ReportCase {
  KalvoTableConstants id;
  std::string_view name, organization, site, mailbox;
  bool administrator;  // with the boxes of a form

  host::ReportScope Scope() const {
    return {std::string(name), std::string(organization), std::string(site), std::string(mailbox), TOPN_UNDEFINED};
  }
};

// Every database report, in the order of their ids.
std::span<const ReportCase> ReportCases();

}  // namespace kalvo::test
