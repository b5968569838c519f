#pragma once

#include <utility>

#include "kalvo/platform/error.h"

namespace kalvo::test {

// The error that the operation fails with; one of number 0 and no words when it does not fail.
template <typename Operation>
Error ErrorOf(Operation&& operation) {
  try {
    std::forward<Operation>(operation)();
  } catch (const Error& error) {
    return error;
  }
  return Error(0, "");
}

}  // namespace kalvo::test
