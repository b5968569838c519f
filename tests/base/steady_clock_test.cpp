#include "base/steady_clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace kalvo::base {
namespace {

TEST(Clock, TellsHowLongSomethingTook) {
  const std::int64_t before = Milliseconds();
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  const std::int64_t took = Milliseconds() - before;
  EXPECT_GE(took, 1);
  EXPECT_LT(took, 60'000);
}

}  // namespace
}  // namespace kalvo::base
