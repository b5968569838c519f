#include "support/golden.h"
#include "source_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

fs::path PathOf(const std::string& name) { return fs::path(KALVO_SOURCE_DIR) / "tests" / "golden" / name; }

fs::path OfVariant(fs::path golden, const std::string& variant) {
  return variant.empty() ? golden : golden.replace_extension("." + variant + golden.extension().string());
}

// Where two texts part, with what stands there in both.
std::string FirstDifference(const std::string& expected, const std::string& text) {
  const auto at = std::mismatch(expected.begin(), expected.end(), text.begin(), text.end()).first - expected.begin();
  const auto from = static_cast<std::size_t>(std::max<std::ptrdiff_t>(at - 60, 0));
  return "at byte " + std::to_string(at) + ":\n  expected ..." + expected.substr(from, 200) + "\n  got      ..." +
         text.substr(from, 200);
}

std::string Read(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

std::string GoldenText(const std::string& name) { return Read(PathOf(name)); }

void ExpectGolden(const std::string& name, const std::string& text, const GoldenOptions& options) {
  const fs::path common = PathOf(name), own = OfVariant(common, options.variant);
  const fs::path golden = exists(own) ? own : common;
  const std::string expected = Read(golden);
  if (exists(golden) && text == expected) return;
  const fs::path actual = (exists(common) ? own : common).string() + ".actual";
  fs::create_directories(actual.parent_path());
  std::ofstream(actual, std::ios::binary) << text;
  ADD_FAILURE() << golden.filename() << " differs " << FirstDifference(expected, text) << "\nsee " << actual.filename();
}

}  // namespace kalvo::test
