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

// The example of a class: a page that the guide's tests run.
std::string ExampleOf(std::string_view name) {
  const std::filesystem::path file =
      std::filesystem::path(KALVO_SOURCE_DIR) / "tests/golden/reference" / (std::string(name) + ".asp");
  return exists(file) ? ReadFile(file) : "";
}

void AppendClass(std::string& page, const ClassBinding& binding) {
  Append(page, "\n## ", binding.make != nullptr ? kClassPrefix : "", binding.name, "\n\n");
  for (const Member& member : binding.members()) Append(page, "- `", Signature(member), "`: ", member.says, '\n');
  const std::string example = ExampleOf(binding.name);
  if (!example.empty()) Append(page, "\n```asp\n", example, "```\n");
}

std::string Reference() {
  return Built([](std::string& page) {
    page +=
        "# Page script reference\n\n"
        "What a page can call: the published classes in published order, and behind them the objects that every page\n"
        "has and those that operations answer. A default stands behind its parameter; a property with a star can be\n"
        "written too. A failure has the number that its sentence names: 13 is -2146828275 to a script, 0x800A0000 "
        "plus\n"
        "itself, and so are 5, 6, 9, 11, 91, 424, 429 and 438. [page-scripts.md](page-scripts.md) tells how arguments\n"
        "and results are converted; every example runs in the tests.\n";
    for (const bool isPublic : {true, false}) {
      for (const ClassBinding& binding : Classes()) {
        if ((binding.make != nullptr) == isPublic) AppendClass(page, binding);
      }
    }
  });
}

TEST(ReferencePage, HasAnExampleOfEveryClassThatPagesMake) {
  for (const ClassBinding& binding : Classes()) {
    if (binding.make == nullptr) continue;
    EXPECT_NE(ExampleOf(binding.name), "") << binding.name;
  }
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
