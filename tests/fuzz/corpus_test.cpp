#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "fuzz/targets.h"
#include "source_folder.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> CorpusOf(const Target& target) {
  const fs::path folder = fs::path(KALVO_SOURCE_DIR) / "tests/fuzz/corpus" / target.name;
  std::vector<fs::path> files(fs::directory_iterator(folder), fs::directory_iterator{});
  std::sort(files.begin(), files.end());
  return files;
}

std::string ContentOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class Corpus : public testing::TestWithParam<Target> {};

TEST_P(Corpus, BreaksNoWordOfTheParser) {
  const std::vector<fs::path> files = CorpusOf(GetParam());
  ASSERT_FALSE(files.empty());
  for (const fs::path& file : files) {
    SCOPED_TRACE(file.filename().string());
    const std::string content = ContentOf(file);
    EXPECT_NO_THROW(GetParam().run(content));
    // Nor does any beginning of it: outside text may end anywhere.
    for (std::size_t part = 1; part < 16; ++part) {
      EXPECT_NO_THROW(GetParam().run(std::string_view(content).substr(0, content.size() * part / 16)));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Fuzz, Corpus, testing::ValuesIn(Targets().begin(), Targets().end()),
                         [](const auto& target) { return std::string(target.param.name); });

TEST(Corpus, ABrokenWordIsNoticed) { EXPECT_THROW(Require(false, "broken"), Broken); }

}  // namespace
}  // namespace kalvo::test
