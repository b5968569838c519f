#pragma once

#include <stdexcept>

namespace kalvo::audit {

// A line could not be written down for good. What it was to tell of must not be done then.
class AuditError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kalvo::audit
