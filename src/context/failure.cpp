// What is reported inline: failures and debug traces.

#include <algorithm>
#include <charconv>

#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

// Upper-case hexadecimal without leading zeros; a code is shown as its 32 bits.
std::string Hexadecimal(std::int32_t number) {
  char digits[8];
  const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<std::uint32_t>(number), 16).ptr;
  return ToUpperAscii({digits, static_cast<std::size_t>(end - digits)});
}

}  // namespace

bool Context::FailureMessage(std::string_view szDescription, bool bWriteErrDetails) const {
  // Copied first: writing may run a script, and that may leave an error of its own.
  const PendingError error = CurrentError();
  const auto response = Held(response_);
  response->Write(Built([&](std::string& out) { Append(out, "<p>Error Generating Table: &nbsp;", szDescription); }));
  if (debugTable_ || bWriteErrDetails) {
    response->Write(Built([&](std::string& out) {
      Append(out, "<br>Error number: 0x", Hexadecimal(error.number), "; &nbsp; Description: ", error.description);
    }));
  }
  response->Write("</p>\r\n");
  return false;
}

bool Context::Failure(std::string_view szDescription) const {
  if (CurrentError().number == 0) return false;
  FailureMessage(szDescription, true);
  return true;
}

bool Context::bDebug(std::string_view szDebugType) const {
  const auto request = GetRequest();
  if (debugTypes_ && debugTypes_->empty()) return false;
  const std::string type = ToUpper(szDebugType);
  const auto names = [&](const std::string& value) { return value == type || value == "ALL" || value == "TRUE"; };
  if (debugTypes_) return std::any_of(debugTypes_->begin(), debugTypes_->end(), names);
  const std::int32_t n = request->QueryCount("Debug");
  bool debug = false;
  for (std::int32_t i = 1; i <= n; ++i) debug = names(ToUpper(GetRequest()->QueryItem("Debug", i))) || debug;
  return debug;
}

void Context::DebugOutput(std::string_view szDebugType, std::string_view szMessage) const {
  if (bDebug(szDebugType)) WriteTrace(szMessage);
}

void Context::TableDebugOutput(std::string_view szMessage) const {
  if (debugTable_) WriteTrace(szMessage);
}

// Flushed, so that the trace reaches the browser even if the page fails later.
void Context::WriteTrace(std::string_view message) const {
  Held(response_)->Write(message);
  Held(response_)->Flush();
}

}  // namespace kalvo
