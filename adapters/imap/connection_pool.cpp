#include "adapters/imap/connection_pool.h"

#include <algorithm>

namespace kalvo::imap {

namespace {

constexpr std::size_t kKeptConnections = 8;

// A page asks a silent server several times in a row; only the first of them waits.
constexpr std::chrono::milliseconds kSilence{1000};

}  // namespace

Connection& ConnectionPool::Get(const ServerAddress& address, const std::string& user, const Deadline& deadline) {
  const auto found = std::find_if(kept_.begin(), kept_.end(),
                                  [&](const Kept& kept) { return kept.address == &address && kept.user == user; });
  if (found != kept_.end()) {
    kept_.splice(kept_.begin(), kept_, found);
    kept_.front().connection->Begin(deadline);
  } else {
    auto made = std::make_unique<Connection>(address, Login{user, settings_.password}, settings_.limits, deadline);
    cost_.connections++;
    cost_.bytesRead += made->BytesRead();
    kept_.push_front({&address, user, std::move(made)});
    if (kept_.size() > kKeptConnections) kept_.pop_back();
  }
  return *kept_.front().connection;
}

void ConnectionPool::Drop(const ServerAddress& address, const std::string& user) {
  kept_.remove_if([&](const Kept& kept) { return kept.address == &address && kept.user == user; });
}

void ConnectionPool::NoteSilence(const ServerAddress& address, const ImapError& error) {
  silent_.insert_or_assign(&address, Silence{Deadline::Clock::now() + kSilence, error});
}

void ConnectionPool::RefuseWhileSilent(const ServerAddress& address) {
  const auto found = silent_.find(&address);
  if (found == silent_.end()) return;
  if (Deadline::Clock::now() < found->second.until) throw found->second.error;
  silent_.erase(found);
}

}  // namespace kalvo::imap
