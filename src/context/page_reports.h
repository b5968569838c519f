#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "context/objects_of_page.h"

namespace kalvo {

// What is reported inline on a page: failures, and traces that the request has asked for.
class PageReports {
 public:
  explicit PageReports(const PageObjects& page) : page_(page) {}

  // Looks which traces the request asks for.
  void Start();

  // Writes the failure paragraph, with the pending error's details when asked to or when tables are traced.
  void Fail(std::string_view description, bool details) const;

  // Whether the request's "Debug" names the type, "ALL" or "TRUE", in any case.
  bool Traces(std::string_view type) const;

  // Whether tables are traced, as it was when the page started.
  bool TracesTables() const { return tracesTables_; }

  // Writes a trace, and flushes it: it reaches the browser even if the page fails later.
  void Trace(std::string_view message) const;

 private:
  const PageObjects& page_;
  std::optional<std::vector<std::string>> types_;  // in upper case; of a request that does not see who asks it
  bool tracesTables_ = false;
};

}  // namespace kalvo
