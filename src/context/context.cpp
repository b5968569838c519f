#include "kalvo/context.h"

#include <limits>

#include "context/parameters.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

std::vector<std::string> DebugTypes(Request& request) {
  std::vector<std::string> types;
  const std::int32_t n = request.QueryCount("Debug");
  for (std::int32_t i = 1; i <= n; ++i) types.push_back(ToUpper(request.QueryItem("Debug", i)));
  return types;
}

}  // namespace

void Context::OnStartPage(ScriptingContext& ASPScriptingContext) {
  response_ = ASPScriptingContext.GetResponse();
  request_ = ASPScriptingContext.GetRequest();
  session_ = ASPScriptingContext.GetSession();
  server_ = ASPScriptingContext.GetServer();
  debugTypes_.reset();
  if (request_ && !request_->SeesCalls()) debugTypes_ = DebugTypes(*request_);
  debugTable_ = bDebug("Table");
  tableIndex_ = 0;
  lastGotoCall_ = GotoCall::None;
  DigestQueryString();
}

void Context::OnEndPage() {
  response_.reset();
  request_.reset();
  session_.reset();
  server_.reset();
}

// Counts the sort and paging values of the request, and keeps every other parameter for the tables' links.
void Context::DigestQueryString() {
  urlParameters_.clear();
  sortFieldCount_ = sortOrderCount_ = firstRowCount_ = pageSizeCount_ = 0;
  const struct {
    std::string_view name;
    std::int16_t& count;
  } counted[] = {{kSortFieldParameter, sortFieldCount_},
                 {kSortOrderParameter, sortOrderCount_},
                 {kFirstRowParameter, firstRowCount_},
                 {kPageSizeParameter, pageSizeCount_}};

  std::string_view separator;
  std::string value;
  for (const std::string& key : GetRequest()->QueryKeys()) {
    const std::int32_t n = GetRequest()->QueryCount(key);
    bool isCounted = false;
    for (const auto& parameter : counted) {
      if (!EqualsIgnoringCase(key, parameter.name)) continue;
      parameter.count = ToInt16(static_cast<double>(n));
      isCounted = true;
      break;
    }
    if (isCounted) continue;
    for (std::int32_t i = 1; i <= n; ++i) {
      value.clear();
      Held(server_)->URLEncode(value, GetRequest()->QueryItem(key, i));  // before the key: a failing one leaves no half
      Append(urlParameters_, separator, key, '=', value);
      separator = "&";
    }
  }
}

std::int16_t Context::IncrementTableIndex() {
  if (tableIndex_ == std::numeric_limits<std::int16_t>::max()) throw Overflow();
  return ++tableIndex_;
}

// ---- the page host --------------------------------------------------------------------------------------

bool Context::SeesCalls() const {
  const auto sees = [](const auto& object) { return !object || object->SeesCalls(); };
  return sees(response_) || sees(request_) || sees(session_) || sees(server_);
}

std::shared_ptr<Session> Context::GetSession() const { return Held(session_); }
std::shared_ptr<Request> Context::GetRequest() const { return Held(request_); }

std::string Context::ServerHTMLEncode(std::string_view szData) const {
  return Built([&](std::string& out) { AppendServerHTMLEncode(out, szData); });
}

std::string Context::ServerURLEncode(std::string_view szData) const {
  return Built([&](std::string& out) { Held(server_)->URLEncode(out, szData); });
}

void Context::AppendServerHTMLEncode(std::string& out, std::string_view szData) const {
  Held(server_)->HTMLEncode(out, szData);
}

}  // namespace kalvo
