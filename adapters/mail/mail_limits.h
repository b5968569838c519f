#pragma once

#include <cstddef>

namespace kalvo::mail {

// How much of a message's own words goes to the library that decodes them: messages come from strangers. A sender is
// its first address, and what is shown is cut far earlier (`CleanText`).
inline constexpr std::size_t kLongestField = std::size_t{64} << 10;
inline constexpr std::size_t kLongestSender = std::size_t{8} << 10;
inline constexpr std::size_t kLongestParameters = std::size_t{4} << 10;
inline constexpr std::size_t kLongestWord = 1000;  // a date, the name of an encoding
inline constexpr std::size_t kMostParts = 10'000;

}  // namespace kalvo::mail
