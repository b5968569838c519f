#pragma once

#include <memory>

#include "platform/value.h"

namespace kalvo {

// A reference of one's own to an object that was handed over by plain reference.
template <typename T>
std::shared_ptr<T> Owned(T& object) {
  return std::static_pointer_cast<T>(object.shared_from_this());
}

}  // namespace kalvo
