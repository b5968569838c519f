#include <gtest/gtest.h>

#include <filesystem>

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

class ReportPages : public testing::TestWithParam<Engine> {};

TEST_P(ReportPages, AreTheGoldenOnes) {
  for (const ReportCase& report : ReportCases()) {
    SCOPED_TRACE("report " + std::to_string(report.id));
    host::ReportPage page(SampleDatabases::Shared().PlatformOf(GetParam()));
    if (report.administrator) page.BeAdministrator();
    const std::string html = page.Build(report.id, report.Scope());
    EXPECT_TRUE(host::FailuresOf(html).empty()) << host::FailuresOf(html).front();
    const std::filesystem::path golden = GoldenFile(report.id, GetParam());
    const std::string expected = exists(golden) ? ReadFile(golden) : "";
    if (html == expected) continue;
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

}   // namespace
}   // namespace kalvo::test
