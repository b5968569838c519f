#include "host/web/visitor.h"

#include <poll.h>

#include "base/steady_clock.h"

namespace kalvo::web {
namespace {

constexpr std::int64_t kBetweenLooks = 100;  // milliseconds

bool HasHungUp(int connection) {
  pollfd state{connection, POLLRDHUP, 0};
  return poll(&state, 1, 0) > 0 && (state.revents & (POLLRDHUP | POLLHUP | POLLERR)) != 0;
}

}  // namespace

void Visitor::Arrived(int connection) {
  gone_ = false;
  nextLook_ = 0;
  connection_ = connection;
}

bool Visitor::IsThere() {
  const int connection = connection_;
  const std::int64_t now = base::Milliseconds();
  if (connection < 0 || gone_ || now < nextLook_) return !gone_;
  nextLook_ = now + kBetweenLooks;
  if (HasHungUp(connection)) gone_ = true;
  return !gone_;
}

}  // namespace kalvo::web
