#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/platform/error.h"

namespace kalvo::sql {

// The statements of a batch that have not run yet. A record set holds those behind its own.
class StatementQueue {
 public:
  explicit StatementQueue(const std::vector<std::string_view>& statements)
      : statements_(statements.begin(), statements.end()) {}

  bool IsEmpty() const { return statements_.empty(); }

  // The next statement, which stays in the queue. Fails with 91 when there is none.
  const std::string& Front() const {
    if (statements_.empty()) throw ObjectNotSet();
    return statements_.front();
  }

  // The statements behind the next one. Fails with 91 as well.
  StatementQueue Rest() const {
    Front();
    StatementQueue rest(*this);
    rest.statements_.pop_front();
    return rest;
  }

 private:
  std::deque<std::string> statements_;
};

}  // namespace kalvo::sql
