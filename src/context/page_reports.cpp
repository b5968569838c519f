#include "context/page_reports.h"

#include <algorithm>
#include <charconv>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"

namespace kalvo {

namespace {

// Upper-case hexadecimal without leading zeros; a code is shown as its 32 bits.
std::string Hexadecimal(std::int32_t number) {
  char digits[8];
  const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<std::uint32_t>(number), 16).ptr;
  return ToUpperAscii({digits, static_cast<std::size_t>(end - digits)});
}

std::vector<std::string> DebugTypes(Request& request) {
  std::vector<std::string> types;
  const std::int32_t n = request.QueryCount("Debug");
  for (std::int32_t i = 1; i <= n; ++i) types.push_back(ToUpper(request.QueryItem("Debug", i)));
  return types;
}

}  // namespace

void PageReports::Start() {
  types_.reset();
  if (page_.request && !page_.request->SeesCalls()) types_ = DebugTypes(*page_.request);
  tracesTables_ = Traces("Table");
}

void PageReports::Fail(std::string_view description, bool details) const {
  // Copied first: writing may run a script, and that may leave an error of its own.
  const PendingError error = CurrentError();
  const auto response = Held(page_.response);
  response->Write(Built([&](std::string& out) { Append(out, "<p>Error Generating Table: &nbsp;", description); }));
  if (tracesTables_ || details) {
    response->Write(Built([&](std::string& out) {
      Append(out, "<br>Error number: 0x", Hexadecimal(error.number), "; &nbsp; Description: ", error.description);
    }));
  }
  response->Write("</p>\r\n");
}

bool PageReports::Traces(std::string_view type) const {
  const auto request = Held(page_.request);
  if (types_ && types_->empty()) return false;
  const std::string wanted = ToUpper(type);
  const auto names = [&](const std::string& value) { return value == wanted || value == "ALL" || value == "TRUE"; };
  if (types_) return std::any_of(types_->begin(), types_->end(), names);
  const std::int32_t n = request->QueryCount("Debug");
  bool traces = false;
  for (std::int32_t i = 1; i <= n; ++i) traces = names(ToUpper(Held(page_.request)->QueryItem("Debug", i))) || traces;
  return traces;
}

void PageReports::Trace(std::string_view message) const {
  Held(page_.response)->Write(message);
  Held(page_.response)->Flush();
}

}  // namespace kalvo
