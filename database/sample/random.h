#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace kalvo::sample {

// A stream of numbers that depends on nothing but its seed: integer steps only, so every machine and library
// makes the same. Each step of the sample has a stream of its own, named after it, and a new step changes no
// other.
class Random {
 public:
  Random(std::uint64_t seed, std::string_view name) : state_(seed) {
    for (const char c : name) state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
    Next();
  }

  std::uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15ULL;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9ULL;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBULL;
    return mixed ^ (mixed >> 31);
  }

  // A number from 0 to bound - 1. The bias of the remainder is far below anything a report shows.
  std::int64_t Below(std::int64_t bound) {
    return static_cast<std::int64_t>((Next() >> 1) % static_cast<std::uint64_t>(bound));
  }

  std::int64_t Between(std::int64_t low, std::int64_t high) { return low + Below(high - low + 1); }

  bool OneIn(std::int64_t n) { return Below(n) == 0; }

  template <typename List>
  const auto& Pick(const List& list) {
    return list[static_cast<std::size_t>(Below(static_cast<std::int64_t>(std::size(list))))];
  }

  // A factor in thousandths around 1000 as sizes in the world are spread: half of them below 1000, one in a
  // hundred above 16000.
  std::int64_t SkewedThousandths() {
    // The quantiles, in 32 steps, of a log-normal distribution of deviation 1.2; drawn straight in between.
    static constexpr std::array<std::int64_t, 33> kQuantiles = {
        40,   107,  158,  206,  252,  298,  346,  395,  446,  498,  554,  613,  676,  744,  820,  906,  1000,
        1104, 1219, 1344, 1480, 1632, 1806, 2008, 2245, 2533, 2893, 3353, 3966, 4850, 6340, 9313, 24000};
    const std::int64_t step = Below(32);
    const std::int64_t low = kQuantiles[static_cast<std::size_t>(step)];
    return low + Below(kQuantiles[static_cast<std::size_t>(step) + 1] - low);
  }

 private:
  std::uint64_t state_;
};

}  // namespace kalvo::sample
