#pragma once

#include "kalvo/platform/clock.h"

namespace kalvo::host {

// The machine's clock in its local time zone.
class SystemClock : public Clock {
 public:
  Date Now() override;
  float Timer() override;
};

}  // namespace kalvo::host
