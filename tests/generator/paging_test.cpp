#include "generator/paging.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

TEST(Paging, ChoosesTheRowsOfAPage) {
  const struct {
    const char* why;
    std::int64_t records, size, first;
    std::int64_t shownFirst, shownLast, shownSize;
    bool paged;
  } kCases[] = {
      {"fifty rows without a request", 120, 0, 0, 1, 50, 50, true},
      {"fewer than a page", 10, 0, 0, 1, 10, 50, false},
      {"exactly a page", 50, 50, 1, 1, 50, 50, false},
      {"a remainder under a quarter page joins the page", 60, 50, 1, 1, 60, 50, false},
      {"just under a quarter", 62, 50, 1, 1, 62, 50, false},
      {"just over a quarter", 63, 50, 1, 1, 50, 50, true},
      {"a quarter of itself is a page", 5, 4, 1, 1, 4, 4, true},
      {"a remainder under a quarter after the second page", 110, 50, 51, 51, 110, 50, true},
      {"-1 is the last page", 110, 50, -1, 61, 110, 50, true},
      {"any negative row is the last page", 110, 50, -7, 61, 110, 50, true},
      {"with fewer records than a page, the last page starts below 1", 10, 50, -1, -39, 10, 50, true},
      {"with exactly a page it is the first", 50, 50, -1, 1, 50, 50, false},
      {"a negative size is the largest", 1500, -1, 1, 1, 1000, 1000, true},
      {"a negative size shows all that fits", 900, -1, 1, 1, 900, 1000, false},
      {"a size above the largest stays", 3000, 2000, 1, 1, 2000, 2000, true},
      {"beyond the end", 10, 50, 40, 40, 10, 50, true},
      {"in the middle", 120, 20, 41, 41, 60, 20, true},
      {"one row a page", 3, 1, 2, 2, 2, 1, true},
      {"the largest count of records", 2147483647, 50, 1, 1, 50, 50, true},
      {"its last page", 2147483647, 50, -1, 2147483598, 2147483647, 50, true},
      {"fewer than no records", -2147483647 - 1, 32767, -1, -2147516414, -2147483648, 32767, true},
      {"the largest page is as long as any other", 5000, 1000, 1, 1, 1000, 1000, true},
      {"a remainder of exactly a quarter is a page", 125, 100, 1, 1, 100, 100, true},
      {"one row less is none", 124, 100, 1, 1, 124, 100, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const Paging page = Paging::Of(c.records, c.size, c.first);
    EXPECT_EQ(page.first, c.shownFirst);
    EXPECT_EQ(page.last, c.shownLast);
    EXPECT_EQ(page.size, c.shownSize);
    EXPECT_EQ(page.IsPaged(), c.paged);
  }
}

}  // namespace
}  // namespace kalvo::test
