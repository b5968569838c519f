#pragma once

#include <cstddef>

namespace kalvo::host {

// How long one run of script may take, and how much memory it may have.
struct PageLimits {
  double seconds = 30;
  std::size_t mebibytes = 256;
};

}  // namespace kalvo::host
