#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace kalvo::base {

// Fills it with bytes of the system's own that nobody can guess. Throws std::system_error where it has none.
void FillRandom(std::span<std::uint8_t> bytes);

// So many of them as hexadecimal digits, two a byte: a name that is never given twice.
std::string RandomName(std::size_t bytes);

}  // namespace kalvo::base
