#pragma once

#include <string>

namespace kalvo::test {

// What may stand in for the golden file.
struct GoldenOptions {
  // Whose text it is ("postgresql"): NAME.postgresql.html is compared with where there is one, else NAME.html, and
  // a text that differs becomes the variant's. Empty: of all.
  std::string variant;
};

// Compares a text with the golden file of that name ("pages/alerts.html") below tests/golden/, byte for byte. A text
// that differs is left beside it with ".actual" at its end, for tests/approve.
void ExpectGolden(const std::string& name, const std::string& text, const GoldenOptions& options = {});

// The golden text; "" where there is none yet.
std::string GoldenText(const std::string& name);

}  // namespace kalvo::test
