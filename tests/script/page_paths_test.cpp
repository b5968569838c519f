#include "host/script/page/page_paths.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace host;

TEST(PathBelowRootTest, RemovesDotsAndRefusesToLeave) {
  EXPECT_EQ(PathBelowRoot("", "/a/./b//c"), "a/b/c");
  EXPECT_EQ(PathBelowRoot("a/b", "../c.inc"), "a/c.inc");
  EXPECT_EQ(PathBelowRoot("a", "..\\c.inc"), "c.inc");
  EXPECT_EQ(PathBelowRoot("a", "../../c"), std::nullopt);
  EXPECT_EQ(PathBelowRoot("", std::string_view("a\0b", 3)), std::nullopt);
  EXPECT_EQ(PathBelowRoot("", "a/.."), std::nullopt);
}

TEST(MappedPathTest, StartsAtThePagesFolderOrAtTheRoot) {
  const SitePlace place{"/srv/site", "Reports/Daily.asp"};
  const struct {
    const char* why;
    const char* path;
    std::optional<std::string> file;
  } kCases[] = {
      {"a name is beside the page", "Data.json", "/srv/site/Reports/Data.json"},
      {"up as far as the root", "../Data.json", "/srv/site/Data.json"},
      {"from the root", "/Data.json", "/srv/site/Data.json"},
      {"the other slash", "\\Reports\\Data.json", "/srv/site/Reports/Data.json"},
      {"the root itself", "/", "/srv/site/"},
      {"out of the site", "../../etc/passwd", std::nullopt},
      {"out of the site, from its root", "/../etc/passwd", std::nullopt},
      {"nothing", "", "/srv/site/Reports"},
  };
  for (const auto& c : kCases) EXPECT_EQ(MappedPath(place, c.path), c.file) << c.why;
}

}  // namespace
}  // namespace kalvo::test
