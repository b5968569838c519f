#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace kalvo::host {
struct PageRequest;
}

namespace kalvo::edge {

inline constexpr std::size_t kLongestQuery = 8 * 1024;  // bytes
inline constexpr std::size_t kMostParameters = 1000;    // of a query
inline constexpr std::size_t kMostValues = 64;          // of one key of a query
inline constexpr std::size_t kMostFields = 100'000;     // of a form: boxes and hidden fields come once a row

// Why a request asks for more than is taken, as a sentence for whoever sent it; nothing when it does not.
std::optional<std::string> BeyondLimits(const host::PageRequest& request);

}  // namespace kalvo::edge
