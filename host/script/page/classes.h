#pragma once

#include <span>
#include <string_view>

#include "host/script/binding/class_binding.h"

namespace kalvo::host {

// Every class, the public ones first, in published order.
std::span<const ClassBinding> Classes();

inline constexpr std::string_view kClassPrefix = "KalvoTables.";

// The public class that a script names "KalvoTables.Display", in any case; null when there is none.
const ClassBinding* FindPublicClass(std::string_view name);

}  // namespace kalvo::host
