#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>

#include "database/sample_databases.h"
#include "golden/reports/report_cases.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

const std::filesystem::path kFolder = std::filesystem::path(KALVO_SOURCE_DIR) / "tests/golden/reports";

std::string FileName(KalvoTableConstants id, const std::string& variant) {
  return (id < 10 ? "report_0" : "report_") + std::to_string(id) + variant + ".html";
}

// The page that an engine is held against: its own where it differs, else the one of all.
std::filesystem::path GoldenFile(KalvoTableConstants id, Engine engine) {
  const std::filesystem::path own = kFolder / FileName(id, "." + NameOf(engine));
  return exists(own) ? own : kFolder / FileName(id, "");
}

// Where two texts part, with what stands there in both.
std::string FirstDifference(const std::string& expected, const std::string& actual) {
  const auto [left, right] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
  const auto at = static_cast<std::size_t>(left - expected.begin());
  const std::size_t from = at < 60 ? 0 : at - 60;
  return "at byte " + std::to_string(at) + "\nexpected: ..." + expected.substr(from, 200) + "\nactual:   ..." +
         actual.substr(from, 200);
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
    const std::filesystem::path golden = GoldenFile(report.id, GetParam());
    const std::string expected = exists(golden) ? ReadFile(golden) : "";
    if (html == expected) continue;
    const bool anyOrder = GetParam() != Engine::Sqlite && OrderIsTheEngines(report.id);
    if (anyOrder && InOneOrder(html) == InOneOrder(expected)) continue;
    const std::string variant = GetParam() == Engine::Sqlite ? "" : "." + NameOf(GetParam());
    const std::filesystem::path actual = kFolder / (FileName(report.id, variant) + ".actual");
    WriteFile(actual, html);
    ADD_FAILURE() << golden.filename() << " differs " << FirstDifference(expected, html) << "\nsee "
                  << actual.filename();
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
    const std::string html = ReadFile(kFolder / FileName(report.id, ""));
    EXPECT_EQ(html.find("There are no items in this report."), std::string::npos) << "report " << report.id;
  }
}

}  // namespace
}  // namespace kalvo::test
