#include "base/random_bytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "kalvo/platform/text_tools.h"

namespace kalvo::test {
namespace {

using namespace base;

TEST(Random, FillsAllOfIt) {
  std::array<std::uint8_t, 4096> bytes{};
  FillRandom(bytes);
  EXPECT_LT(std::count(bytes.begin() + 2048, bytes.end(), 0), 1000) << "some eight of them are zero by chance";
}

TEST(Random, NamesAreHexadecimalAndNeverTheSame) {
  const std::string name = RandomName(16);
  EXPECT_EQ(name.size(), 32u);
  EXPECT_TRUE(IsHexadecimal(name)) << name;
  EXPECT_NE(name, RandomName(16));
}

}  // namespace
}  // namespace kalvo::test
