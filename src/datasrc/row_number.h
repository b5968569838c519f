#pragma once

#include <cstdint>
#include <limits>

#include "kalvo/platform/error.h"

namespace kalvo {

// The number of the next row. Fails with 6 where 32 bits end.
inline std::int32_t NextRow(std::int32_t row) {
  if (row == std::numeric_limits<std::int32_t>::max()) throw Overflow();
  return row + 1;
}

}  // namespace kalvo
