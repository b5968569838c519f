#pragma once

#include <memory>

#include "kalvo/platform/error.h"
#include "kalvo/platform/value.h"

namespace kalvo {

// A reference of one's own to an object that was handed over by plain reference.
template <typename T>
std::shared_ptr<T> Owned(T& object) {
  return std::static_pointer_cast<T>(object.shared_from_this());
}

// A reference of one's own to the object of a member, for the call that is made with it: the call may run a script,
// and the script may replace the member. Fails with 91 where the member holds nothing.
template <typename T>
std::shared_ptr<T> Held(const std::shared_ptr<T>& member) {
  if (!member) throw ObjectNotSet();
  return member;
}

}  // namespace kalvo
