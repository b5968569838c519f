#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace kalvo {
class LiveContainer;
}

namespace kalvo::host {

// Makes the live mailbox browsing object of a session, for the logon name of whoever browses. Empty where mailboxes
// are not configured.
using LiveDrillerMaker = std::function<std::shared_ptr<LiveContainer>(const std::string& who)>;

// The browsing object of one session: made when it is first asked for, and the same from then on.
class SessionDriller {
 public:
  explicit SessionDriller(LiveDrillerMaker make) : make_(std::move(make)) {}

  // For that logon name; null where mailboxes are not configured.
  const std::shared_ptr<LiveContainer>& Of(const std::string& who) {
    if (!driller_ && make_) driller_ = make_(who);
    return driller_;
  }

  void Forget() { driller_.reset(); }

 private:
  LiveDrillerMaker make_;
  std::shared_ptr<LiveContainer> driller_;
};

}  // namespace kalvo::host
