#include "adapters/sqlite/session_keeper.h"

#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "kalvo/platform/error.h"

namespace kalvo::sqlite {

SessionKeeper::SessionKeeper(std::string file, Options options, const Locale& locale)
    : file_(std::move(file)), options_(std::move(options)), locale_(locale) {}

std::shared_ptr<Session> SessionKeeper::Take() {
  const Identity now = Now();
  auto session = TakeKept(now);
  if (!session) session = std::make_unique<Session>(file_, options_, locale_);
  return Lent(std::move(session), now);
}

// No file is {0, 0}: opening it says what is wrong.
SessionKeeper::Identity SessionKeeper::Now() const {
  struct stat state {};
  if (stat(file_.c_str(), &state) != 0) return {};
  return {state.st_dev, state.st_ino};
}

std::unique_ptr<Session> SessionKeeper::TakeKept(const Identity& now) {
  Kept kept;
  {
    const std::lock_guard lock(mutex_);
    kept = std::exchange(kept_, {});
  }
  if (!kept.session) return nullptr;
  if (kept.process !=
      getpid()) {  // a connection does not pass to a child: nothing of it may be used, not even to close
    static_cast<void>(kept.session.release());
    return nullptr;
  }
  if (kept.opened != now || !kept.session->CanRead()) return nullptr;
  return std::move(kept.session);
}

std::shared_ptr<Session> SessionKeeper::Lent(std::unique_ptr<Session> session, const Identity& opened) {
  const auto giveBack = [keeper = weak_from_this(), opened](Session* returned) {
    std::unique_ptr<Session> owned(returned);
    if (const auto alive = keeper.lock()) alive->GiveBack(std::move(owned), opened);
  };
  return std::shared_ptr<Session>(session.release(), giveBack);
}

void SessionKeeper::GiveBack(std::unique_ptr<Session> session, const Identity& opened) {
  if (opened == Identity{} || !session->Rest()) return;
  const std::lock_guard lock(mutex_);
  kept_ = {std::move(session), opened, getpid()};
}

}  // namespace kalvo::sqlite
