#include "host/web/acting/acting_session.h"

#include <ctime>

#include "host/audit/recorded_container.h"
#include "host/audit/trail.h"
#include "host/parts/setting_error.h"
#include "host/web/acting/tokens.h"
#include "platform/error.h"

namespace kalvo::web {
namespace {

std::int64_t Now() { return static_cast<std::int64_t>(std::time(nullptr)); }

}  // namespace

ActingSession::ActingSession(host::PageSession& session, const Tokens& tokens, audit::Trail& trail,
                             ActingRequest request)
    : session_(session), tokens_(tokens), trail_(trail), request_(std::move(request)) {}

std::shared_ptr<LiveContainer> ActingSession::LiveDriller() {
  auto driller = session_.LiveDriller();
  if (!driller) return nullptr;
  return std::make_shared<audit::RecordedContainer>(
      std::move(driller), trail_, request_.visitor,
      [this](std::string_view messageId) { return Took(DeletePurpose(messageId)); });
}

std::string ActingSession::NewToken(std::string_view purpose) { return tokens_.New(request_.session, purpose, Now()); }

bool ActingSession::TakeToken(std::string_view purpose, std::string_view token) {
  try {
    if (request_.posted && tokens_.Take(request_.session, purpose, token, Now())) {
      taken_.emplace(purpose);
      return true;
    }
  } catch (const host::SettingError& error) {
    throw Error(codes::kFailed, InDescription(error.what()));
  }
  trail_.Refused(audit::Event::RequestRefused, request_.visitor,
                 {{"request", "no token"}, {"purpose", std::string(purpose)}});
  return false;
}

void ActingSession::NoteRefusal(std::string_view what) {
  trail_.Refused(audit::Event::RightRefused, request_.visitor, {{"right", std::string(what)}});
}

std::string ActingSession::DeletePurpose(std::string_view messageId) {
  return "DeleteMessage " + std::string(messageId);
}

}  // namespace kalvo::web
