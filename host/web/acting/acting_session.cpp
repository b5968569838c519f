#include "host/web/acting/acting_session.h"

#include <ctime>

#include "host/audit/log_page.h"
#include "host/audit/recorded_container.h"
#include "host/audit/trail.h"
#include "host/parts/setting_error.h"
#include "host/web/acting/held_page.h"
#include "host/web/acting/tokens.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"

namespace kalvo::web {
namespace {

std::int64_t Now() { return static_cast<std::int64_t>(std::time(nullptr)); }

}  // namespace

ActingSession::ActingSession(host::PageSession& session, ActingParts parts, ActingRequest request)
    : session_(session), parts_(std::move(parts)), request_(std::move(request)) {}

std::shared_ptr<LiveContainer> ActingSession::LiveDriller() {
  auto driller = session_.LiveDriller();
  if (!driller) return nullptr;
  return std::make_shared<audit::RecordedContainer>(
      std::move(driller), parts_.trail, request_.visitor,
      [this](std::string_view messageId) { return Took(DeletePurpose(messageId)); });
}

std::string ActingSession::NewToken(std::string_view purpose) {
  return parts_.tokens.New(request_.session, purpose, Now());
}

bool ActingSession::TakeToken(std::string_view purpose, std::string_view token) {
  try {
    if (request_.posted && parts_.tokens.Take(request_.session, purpose, token, Now())) {
      taken_.emplace(purpose);
      return true;
    }
  } catch (const host::SettingError& error) {
    throw Error(codes::kFailed, InDescription(error.what()));
  }
  parts_.trail.Refused(audit::Event::RequestRefused, request_.visitor,
                       {{"request", "no token"}, {"purpose", std::string(purpose)}});
  return false;
}

void ActingSession::NoteRefusal(std::string_view what) {
  parts_.trail.Refused(audit::Event::RightRefused, request_.visitor, {{"right", std::string(what)}});
}

std::shared_ptr<Object> ActingSession::HostObject(std::string_view name) {
  if (EqualsIgnoringAsciiCase(name, "gAuditLog") && IsAdministrator()) {
    return std::make_shared<audit::LogPage>(parts_.trail.Folder());
  }
  if (EqualsIgnoringAsciiCase(name, "gHeldMessages") && parts_.mail) {
    return std::make_shared<HeldPage>(parts_.mail, parts_.holdingDays, parts_.trail,
                                      HeldPage::Rights{request_.visitor, IsAdministrator(), session_.LiveDriller(),
                                                       [this](const std::string& purpose) { return Took(purpose); }});
  }
  return nullptr;
}

bool ActingSession::IsAdministrator() { return ToText(session_.Get("KalvoAdministrator")) == "Yes"; }

std::string ActingSession::DeletePurpose(std::string_view messageId) {
  return "DeleteMessage " + std::string(messageId);
}

}  // namespace kalvo::web
