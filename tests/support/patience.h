#pragma once

#include <chrono>
#include <cstdlib>
#include <thread>

namespace kalvo::test {

// Waits for what is to happen, looking every now and then. False when it did not within half a minute: a machine with
// other work to do is waited for, and nobody waits longer than it takes.
template <typename Happened>
bool Eventually(Happened&& happened) {
  const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
  while (!happened()) {
    if (std::chrono::steady_clock::now() > until) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

// How often to try what only chance or size finds: a few times in every run, and as often as the second number in the
// long one (`make test-long`).
inline int Rounds(int few, int many) { return std::getenv("KALVO_TEST_LONG") ? many : few; }

}  // namespace kalvo::test
