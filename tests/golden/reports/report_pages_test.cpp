#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>

#include "database/sample_databases.h"
#include "golden/reports/report_cases.h"
#include "source_folder.h"
#include "support/golden.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

const std::filesystem::path kFolder = std::filesystem::path(KALVO_SOURCE_DIR) / "tests/golden/reports";

std::string FileName(KalvoTableConstants id) {
  return (id < 10 ? "report_0" : "report_") + std::to_string(id) + ".html";
}

// Reports whose rows are not all told apart by what they are sorted by, or have rows without a value there: the
// order among those is the engine's. README.md says where each comes from.
constexpr KalvoTableConstants kOrderIsTheEngines[] = {
    TABLE_TASK_RECOVERYMANAGEMENT_SucessfulBackups,
    TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS,
    TABLE_TASK_STORAGEADVISORY_DISABLEDSINGLERECIPIENT,
    TABLE_TASK_STORAGEADVISORY_MAILBOXGROUP_SPACEPOLICY,
    TABLE_PERFORMANCE_AVGDISKIO_DESC,
    TABLE_PERFORMANCE_AVGDISKIO_ASC,
};

bool OrderIsTheEngines(KalvoTableConstants id) {
  return std::ranges::find(kOrderIsTheEngines, id) != std::end(kOrderIsTheEngines);
}

// The rows of a page in one order for all engines. The box of a disabled recipient stands in whichever of its rows
// comes first, so it is left out.
std::string InOneOrder(const std::string& html) {
  static const std::regex kBox("(<input type=\"checkbox\"[^>]*>|<td align=\"center\">&nbsp;)");
  std::vector<std::string> rows;
  std::string text = std::regex_replace(html, kBox, "[box]");
  text = std::regex_replace(text, std::regex("<td align=\"center\">\\[box\\]"), "[box]");
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = std::min(text.find("<tr>", at + 1), text.size());
    rows.push_back(text.substr(at, end - at));
    at = end;
  }
  // The last row carries the end of the page.
  const std::string tail = "\r\n</table>";
  if (const std::size_t end = rows.back().find(tail); end != std::string::npos) {
    rows.push_back(rows.back().substr(end));
    rows[rows.size() - 2].resize(end);
  }
  std::ranges::sort(rows);
  std::string joined;
  for (const std::string& row : rows) joined += row;
  return joined;
}

class ReportPages : public testing::TestWithParam<Engine> {};

TEST_P(ReportPages, AreTheGoldenOnes) {
  for (const ReportCase& report : ReportCases()) {
    SCOPED_TRACE("report " + std::to_string(report.id));
    host::ReportPage page(SampleDatabases::Shared().PlatformOf(GetParam()));
    if (report.administrator) page.BeAdministrator();
    if (OrderIsTheEngines(report.id)) page.AddParameter("PageSize", "1000");
    const std::string html = page.Build(report.id, report.Scope());
    EXPECT_TRUE(host::FailuresOf(html).empty()) << host::FailuresOf(html).front();
    GoldenOptions options;
    if (GetParam() != Engine::Sqlite) {
      options.variant = NameOf(GetParam());
      if (OrderIsTheEngines(report.id)) {
        options.alsoGood = [](const auto& expected, const auto& text) {
          return InOneOrder(text) == InOneOrder(expected);
        };
      }
    }
    ExpectGolden("reports/" + FileName(report.id), html, options);
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, ReportPages, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

// An engine may have a page of its own only with the reason beside it.
TEST(ReportPagesOfOneEngine, AreExplained) {
  const std::string reasons = ReadFile(kFolder / "README.md");
  for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
    const std::string name = entry.path().filename().string();
    if (entry.path().extension() != ".html" || entry.path().stem().extension().empty()) continue;
    EXPECT_NE(reasons.find(name), std::string::npos) << name << " is not explained in README.md";
  }
}

TEST(ReportPagesOfTheSample, ShowSomethingEach) {
  for (const ReportCase& report : ReportCases()) {
    const std::string html = GoldenText("reports/" + FileName(report.id));
    EXPECT_EQ(html.find("There are no items in this report."), std::string::npos) << "report " << report.id;
  }
}

}  // namespace
}  // namespace kalvo::test
