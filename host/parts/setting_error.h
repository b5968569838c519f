#pragma once

#include <stdexcept>

namespace kalvo::host {

// A word of the command line or of the settings that cannot be meant: what it was, and what would be right.
class SettingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace kalvo::host
