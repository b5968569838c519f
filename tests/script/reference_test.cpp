// The reference page lists what is bound, no more and no less.

#include <gtest/gtest.h>

#include <filesystem>

#include "host/script/page/classes.h"
#include "kalvo/platform/append.h"
#include "source_folder.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace host;

std::string Reference() {
  return Built([](std::string& page) {
    page +=
        "# Page script reference\n\n"
        "The published classes with their operations and properties, in published order. A default stands behind\n"
        "its parameter; a property with a star can be written too. What each does is said at its declaration in\n"
        "`include/kalvo/`; [page-scripts.md](page-scripts.md) tells how arguments and results are converted.\n";
    for (const ClassBinding& binding : Classes()) {
      if (binding.make == nullptr) continue;
      Append(page, "\n## ", kClassPrefix, binding.name, "\n\n");
      for (const Member& member : binding.members()) Append(page, "- `", Signature(member), "`\n");
    }
  });
}

TEST(ReferencePage, ListsWhatIsBound) {
  const std::filesystem::path page = std::filesystem::path(KALVO_SOURCE_DIR) / "docs/page-script-reference.md";
  const std::string expected = exists(page) ? ReadFile(page) : "";
  const std::string actual = Reference();
  if (actual != expected) WriteFile(page.string() + ".actual", actual);
  EXPECT_EQ(expected, actual) << "accept with tests/approve ../docs/page-script-reference.md";
}

}  // namespace
}  // namespace kalvo::test
