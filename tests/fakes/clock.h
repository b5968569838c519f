#pragma once

#include "kalvo/platform/clock.h"

namespace kalvo::test {

// Stands at 1999-01-02 15:04:05; each reading of the timer is a step later.
class FakeClock : public Clock {
 public:
  Date now{36162.0 + 54245.0 / 86400};
  float timer = 54245;
  float step = 0.25F;

  Date Now() override { return now; }
  float Timer() override {
    const float read = timer;
    timer += step;
    return read;
  }
};

}  // namespace kalvo::test
