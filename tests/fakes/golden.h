#pragma once

#include <string>

namespace kalvo::fakes {

// Compares a text with the golden file of that name below tests/golden/, byte for byte. A text that differs is left
// beside it as NAME.actual, for tests/approve.
void ExpectGolden(const std::string& name, const std::string& text);

}  // namespace kalvo::fakes
