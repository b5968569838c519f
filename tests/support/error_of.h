#pragma once

#include <cstdint>
#include <utility>

#include "kalvo/platform/error.h"

namespace kalvo::fakes {

// The number of the error that the operation fails with; 0 when it does not.
template <typename Operation>
std::int32_t ErrorOf(Operation&& operation) {
  try {
    std::forward<Operation>(operation)();
  } catch (const Error& error) {
    return error.Number();
  }
  return 0;
}

}  // namespace kalvo::fakes
