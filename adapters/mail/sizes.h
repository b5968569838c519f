#pragma once

#include <cstdint>
#include <limits>

namespace kalvo::mail {

// The sum of two sizes, none of them negative; the largest number where the sum is larger.
constexpr std::int64_t SizeSum(std::int64_t a, std::int64_t b) {
  constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
  return a > most - b ? most : a + b;
}

}  // namespace kalvo::mail
