#include "base/steady_clock.h"

#include <chrono>

namespace kalvo::base {

std::int64_t Milliseconds() {
  using std::chrono::duration_cast;
  return duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace kalvo::base
