#pragma once

#include "kalvo/platform/value.h"

namespace kalvo {

// The time as the page host tells it; the "Time" debug lines are made of it.
class Clock {
 public:
  virtual ~Clock() = default;

  // The local date and time, to the second.
  virtual Date Now() = 0;

  // Seconds since local midnight, with a fraction.
  virtual float Timer() = 0;
};

}  // namespace kalvo
