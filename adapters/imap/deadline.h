#pragma once

#include <algorithm>
#include <chrono>

namespace kalvo::imap {

// The end of the time that one call of ours may take.
class Deadline {
 public:
  using Clock = std::chrono::steady_clock;

  explicit Deadline(std::chrono::milliseconds time) : end_(Clock::now() + time) {}

  bool Passed() const { return Clock::now() >= end_; }

  // Milliseconds for one wait: `silence`, or what is left where that is less; never negative.
  int Wait(std::chrono::milliseconds silence) const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end_ - Clock::now());
    return static_cast<int>(std::max<long long>(0, std::min(silence, left).count()));
  }

 private:
  Clock::time_point end_;
};

}  // namespace kalvo::imap
