#include "fakes/golden.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kalvo::fakes {

void ExpectGolden(const std::string& name, const std::string& text) {
  const std::filesystem::path golden = std::filesystem::path(KALVO_SOURCE_DIR) / "tests" / "golden" / name;
  std::ifstream file(golden, std::ios::binary);
  const std::string expected{std::istreambuf_iterator<char>(file), {}};
  if (file.is_open() && text == expected) return;
  std::filesystem::create_directories(golden.parent_path());
  std::ofstream(golden.string() + ".actual", std::ios::binary) << text;
  const auto at = std::mismatch(expected.begin(), expected.end(), text.begin(), text.end()).first - expected.begin();
  const auto from = static_cast<std::size_t>(std::max<std::ptrdiff_t>(at - 60, 0));
  ADD_FAILURE() << name << " differs at byte " << at << ":\n  expected ..." << expected.substr(from, 160)
                << "\n  got      ..." << text.substr(from, 160);
}

}  // namespace kalvo::fakes
