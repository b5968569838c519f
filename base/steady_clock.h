#pragma once

#include <cstdint>

namespace kalvo::base {

// Milliseconds of a clock that nobody sets: they only grow, and are the same for all processes of the machine. Good
// for how long something took or may take, never for a date.
std::int64_t Milliseconds();

}  // namespace kalvo::base
