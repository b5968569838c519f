#pragma once

#include <functional>
#include <memory>
#include <string>

#include "adapters/mail/holding_desk.h"
#include "host/audit/record.h"
#include "host/script/binding/classes/host_objects.h"

namespace kalvo {
class LiveContainer;
}

namespace kalvo::audit {
class Trail;
}

namespace kalvo::web {

// The held messages as one visitor's page sees them. It checks what the page that deletes checks: a mailbox has to be
// the visitor's own, and public folders are the administrators'.
class HeldPage final : public host::HeldMessages {
 public:
  struct Rights {
    audit::Visitor visitor;
    bool administrator = false;
    std::shared_ptr<LiveContainer> live;                         // knows who owns a mailbox
    std::function<bool(const std::string& purpose)> tokenTaken;  // whether the page has taken a token of that purpose
  };

  // The trail outlives the page.
  HeldPage(std::shared_ptr<mail::MailStore> store, int days, audit::Trail& trail, Rights rights);

  std::int32_t Days() override { return days_; }
  std::string Held(std::string_view server, std::string_view mailbox, std::int32_t flags) override;
  std::string Restore(std::string_view server, std::string_view mailbox, std::string_view id,
                      std::int32_t flags) override;

 private:
  void CheckRight(std::string_view server, std::string_view mailbox, std::int32_t flags);

  mail::HoldingDesk desk_;
  int days_;
  audit::Trail& trail_;
  Rights rights_;
};

}  // namespace kalvo::web
