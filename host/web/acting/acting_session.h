#pragma once

#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "host/audit/record.h"
#include "host/script/page/page_session.h"

namespace kalvo::audit {
class Trail;
}

namespace kalvo::mail {
class MailStore;
}

namespace kalvo::web {

class Tokens;

// What a page's acts are measured by: the request that they are asked for with.
struct ActingRequest {
  std::string session;     // what tokens are bound to: the session's name; "" where all visitors are the same one
  audit::Visitor visitor;  // whom the audit log names
  bool posted = false;     // nothing but a posted form acts
};

// What acts go through. The references outlive every page.
struct ActingParts {
  const Tokens& tokens;
  audit::Trail& trail;
  std::shared_ptr<mail::MailStore> mail;  // null where there are no mailboxes
  int holdingDays;                        // how long a deleted message is held
};

// A page's session with what stands between pages and acts: its tokens, and a browsing object that deletes nothing
// without one, and nothing unrecorded, and the host's own objects. Lives as long as the page runs; what it is given
// outlives it.
class ActingSession final : public host::PageSession {
 public:
  ActingSession(host::PageSession& session, ActingParts parts, ActingRequest request);

  Value Get(std::string_view name) override { return session_.Get(name); }
  void Set(std::string_view name, const Value& value) override { session_.Set(name, value); }
  std::vector<std::string> Names() override { return session_.Names(); }
  std::string Id() override { return session_.Id(); }
  void Abandon() override { session_.Abandon(); }
  std::shared_ptr<LiveContainer> LiveDriller() override;

  std::string NewToken(std::string_view purpose) override;
  bool TakeToken(std::string_view purpose, std::string_view token) override;
  void NoteRefusal(std::string_view what) override;

  // "gAuditLog" for administrators, "gHeldMessages" where there are mailboxes.
  std::shared_ptr<Object> HostObject(std::string_view name) override;

  // The purpose of the token that a message is deleted with. The identifier alone says which message it is.
  static std::string DeletePurpose(std::string_view messageId);

 private:
  bool IsAdministrator();
  bool Took(const std::string& purpose) const { return taken_.count(purpose) != 0; }

  host::PageSession& session_;
  ActingParts parts_;
  ActingRequest request_;
  std::set<std::string> taken_;  // the purposes of the tokens that this page has taken
};

}  // namespace kalvo::web
