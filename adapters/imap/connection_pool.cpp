#include "adapters/imap/connection_pool.h"

#include <algorithm>

namespace kalvo::imap {

namespace {

constexpr std::size_t kKeptConnections = 8;

// A page asks several times in a row; only the first of them is refused by the server.
constexpr std::chrono::milliseconds kRefusal{5000};

}  // namespace

ConnectionPool::Taken ConnectionPool::Get(const ServerAddress& address, const std::string& user,
                                          const Deadline& deadline) {
  const auto found = std::find_if(kept_.begin(), kept_.end(),
                                  [&](const Kept& kept) { return kept.address == &address && kept.user == user; });
  if (found != kept_.end()) {
    kept_.splice(kept_.begin(), kept_, found);
    kept_.front().connection->Begin(deadline);
    return {*kept_.front().connection, false};
  }
  auto made = std::make_unique<Connection>(address, settings_.LoginAs(user), settings_.limits, deadline);
  cost_.connections++;
  cost_.bytesRead += made->BytesRead();
  kept_.push_front({&address, user, std::move(made)});
  if (kept_.size() > kKeptConnections) kept_.pop_back();
  return {*kept_.front().connection, true};
}

void ConnectionPool::Drop(const ServerAddress& address, const std::string& user) {
  kept_.remove_if([&](const Kept& kept) { return kept.address == &address && kept.user == user; });
}

// What a server that is silent, or that does not let a user in, is asked again soon it would answer the same.
void ConnectionPool::Note(const ServerAddress& address, const std::string& user, const ImapError& error) {
  const auto now = Deadline::Clock::now();
  if (error.What() == Fault::Silent)
    refusing_.insert_or_assign({&address, ""}, Refusal{now + settings_.limits.silence, error});
  if (error.What() == Fault::LoginRefused) refusing_.insert_or_assign({&address, user}, Refusal{now + kRefusal, error});
}

void ConnectionPool::RefuseAgain(const ServerAddress& address, const std::string& user) {
  for (const std::string& whose : {std::string(), user}) {
    const auto found = refusing_.find({&address, whose});
    if (found == refusing_.end()) continue;
    if (Deadline::Clock::now() < found->second.until) throw found->second.error;
    refusing_.erase(found);
  }
}

}  // namespace kalvo::imap
