#pragma once

#include <string_view>
#include <utility>

#include "kalvo/context.h"
#include "kalvo/platform/error.h"

namespace kalvo {

// Reports the error that is pending, if there is one. True when there was, also when the report itself could not
// be written.
inline bool Reports(Trap& trap, const Context& context, std::string_view description) {
  if (CurrentError().number == 0) return false;
  trap([&] { context.Failure(description); });
  return true;
}

// Runs one step of an operation that goes on after errors, and reports what is pending behind it. True when the
// step, or an unreported one before it, has failed.
template <typename Step>
bool Fails(Trap& trap, const Context& context, std::string_view description, Step&& step) {
  trap(std::forward<Step>(step));
  return Reports(trap, context, description);
}

}  // namespace kalvo
