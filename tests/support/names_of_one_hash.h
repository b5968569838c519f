#pragma once

#include <string>
#include <vector>

namespace kalvo::test {

// Different names of 16 bytes without upper-case letters or characters of a query's own, which the standard library's
// hash of texts cannot tell apart. Anybody can make them: its key is fixed.
std::vector<std::string> NamesOfOneHash(int count);

}  // namespace kalvo::test
