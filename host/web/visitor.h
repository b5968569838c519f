#pragma once

#include <atomic>
#include <cstdint>

namespace kalvo::web {

// The visitor whose page a worker makes. nginx hangs up on the worker when the browser hangs up on nginx: a page that
// nobody waits for any more need not be made.
class Visitor {
 public:
  // A request came in on this connection, whose visitor is there until a look says otherwise.
  void Arrived(int connection);

  // The request is over; its connection belongs to somebody else.
  void Served() { connection_ = -1; }

  // Whether somebody still waits. Cheap to ask as often as one likes, from any thread: the connection is looked at
  // ten times a second.
  bool IsThere();

 private:
  std::atomic<int> connection_{-1};
  std::atomic<std::int64_t> nextLook_{0};  // in `Milliseconds`
  std::atomic<bool> gone_{false};
};

}  // namespace kalvo::web
