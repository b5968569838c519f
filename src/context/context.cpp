#include "kalvo/context.h"

#include "context/live_navigation.h"
#include "context/objects_of_page.h"
#include "context/page_reports.h"
#include "context/parameters.h"
#include "context/table_state.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/owned.h"

namespace kalvo {

struct Context::Parts {
  PageObjects page;
  TableState tables{page};
  PageReports reports{page};
  LiveNavigation live;
};

using Parameter = TableState::Parameter;

Context::Context() : parts_(std::make_unique<Parts>()) {}
Context::~Context() = default;

void Context::OnStartPage(ScriptingContext& ASPScriptingContext) {
  PageObjects& page = parts_->page;
  page.response = ASPScriptingContext.GetResponse();
  page.request = ASPScriptingContext.GetRequest();
  page.session = ASPScriptingContext.GetSession();
  page.server = ASPScriptingContext.GetServer();
  parts_->reports.Start();
  parts_->live.Start();
  parts_->tables.Start();
}

void Context::OnEndPage() { parts_->page = PageObjects{}; }

// ---- the page host --------------------------------------------------------------------------------------

bool Context::SeesCalls() const {
  const auto sees = [](const auto& object) { return !object || object->SeesCalls(); };
  const PageObjects& page = parts_->page;
  return sees(page.response) || sees(page.request) || sees(page.session) || sees(page.server);
}

std::shared_ptr<Session> Context::GetSession() const { return Held(parts_->page.session); }
std::shared_ptr<Request> Context::GetRequest() const { return Held(parts_->page.request); }
void Context::Write(std::string_view text) const { Held(parts_->page.response)->Write(text); }

std::string Context::ServerHTMLEncode(std::string_view szData) const {
  return Built([&](std::string& out) { AppendServerHTMLEncode(out, szData); });
}

std::string Context::ServerURLEncode(std::string_view szData) const {
  return Built([&](std::string& out) { Held(parts_->page.server)->URLEncode(out, szData); });
}

void Context::AppendServerHTMLEncode(std::string& out, std::string_view szData) const {
  Held(parts_->page.server)->HTMLEncode(out, szData);
}

// ---- page state of tables -------------------------------------------------------------------------------

std::int16_t Context::TableIndex() const { return parts_->tables.Index(); }
std::int16_t Context::IncrementTableIndex() { return parts_->tables.Next(); }

std::string_view Context::szSortFieldParameterName() const { return kSortFieldParameter; }
std::string_view Context::szSortOrderParameterName() const { return kSortOrderParameter; }

std::string Context::TableSortFieldInformation() const { return parts_->tables.Text(Parameter::Sort); }
std::string Context::TableSortOrderInformation() const { return parts_->tables.Text(Parameter::SortOrder); }
std::int16_t Context::TableFirstRowInformation() const { return parts_->tables.Number(Parameter::First); }
std::int16_t Context::TablePageSizeInformation() const { return parts_->tables.Number(Parameter::PageSize); }

std::string Context::TableURLParameter(std::string_view szAmp, std::string_view szSortParameterName,
                                       std::int16_t nSortCount, std::string_view szSortString) const {
  return Built([&](std::string& out) {
    parts_->tables.AppendParameter(out, szAmp, szSortParameterName, nSortCount, szSortString);
  });
}

std::string Context::TableURL(std::string_view szSortFieldString, std::string_view szSortOrderString,
                              std::string_view szFirstRowString, std::string_view szPageSizeString) const {
  return Built([&](std::string& out) {
    AppendTableURL(out, szSortFieldString, szSortOrderString, szFirstRowString, szPageSizeString);
  });
}

void Context::AppendTableURL(std::string& out, std::string_view szSortFieldString, std::string_view szSortOrderString,
                             std::string_view szFirstRowString, std::string_view szPageSizeString) const {
  parts_->tables.AppendUrl(out, {szSortFieldString, szSortOrderString, szFirstRowString, szPageSizeString});
}

// ---- failures and traces --------------------------------------------------------------------------------

bool Context::FailureMessage(std::string_view szDescription, bool bWriteErrDetails) const {
  parts_->reports.Fail(szDescription, bWriteErrDetails);
  return false;
}

bool Context::Failure(std::string_view szDescription) const {
  if (CurrentError().number == 0) return false;
  FailureMessage(szDescription, true);
  return true;
}

bool Context::bDebug(std::string_view szDebugType) const { return parts_->reports.Traces(szDebugType); }
bool Context::bDebugTable() const { return parts_->reports.TracesTables(); }

void Context::DebugOutput(std::string_view szDebugType, std::string_view szMessage) const {
  if (bDebug(szDebugType)) WriteTrace(szMessage);
}

void Context::TableDebugOutput(std::string_view szMessage) const {
  if (bDebugTable()) WriteTrace(szMessage);
}

void Context::WriteTrace(std::string_view message) const { parts_->reports.Trace(message); }

// ---- live navigation ------------------------------------------------------------------------------------

bool Context::EncapsulateGotoContainerFailure(LiveContainer& pLiveContainer, std::string_view ServerName,
                                              std::string_view MailboxName, std::string_view ContainerName,
                                              std::int32_t OldThreshold, std::int32_t Flags,
                                              std::string_view szErrorString, bool bDefect7022Workaround) {
  return parts_->live.OpenFolder(*this, pLiveContainer, {ServerName, MailboxName, ContainerName, OldThreshold, Flags},
                                 szErrorString, bDefect7022Workaround);
}

bool Context::EncapsulateGotoMsgAttachmentFailure(LiveContainer& pLiveContainer, std::string_view szServerName,
                                                  std::string_view szMailboxName, std::string_view szMessageId,
                                                  bool bMailboxMessage, std::string_view szErrorString) {
  return parts_->live.OpenMessage(*this, pLiveContainer, {szServerName, szMailboxName, szMessageId, bMailboxMessage},
                                  szErrorString);
}

}  // namespace kalvo
