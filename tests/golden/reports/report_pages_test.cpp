#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

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

// Reports with rows that are not told apart by what they are sorted by, shown whole.
constexpr KalvoTableConstants kWhole[] = {
    TABLE_TASK_RECOVERYMANAGEMENT_SucessfulBackups,
    TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS,
    TABLE_TASK_STORAGEADVISORY_DISABLEDSINGLERECIPIENT,
    TABLE_TASK_STORAGEADVISORY_MAILBOXGROUP_SPACEPOLICY,
    TABLE_PERFORMANCE_AVGDISKIO_DESC,
    TABLE_PERFORMANCE_AVGDISKIO_ASC,
};

class ReportPages : public testing::TestWithParam<Engine> {};

TEST_P(ReportPages, AreTheGoldenOnes) {
  for (const ReportCase& report : ReportCases()) {
    SCOPED_TRACE("report " + std::to_string(report.id));
    host::ReportPage page(SampleDatabases::Shared().PlatformOf(GetParam()));
    if (report.administrator) page.BeAdministrator();
    if (std::ranges::find(kWhole, report.id) != std::end(kWhole)) page.AddParameter("PageSize", "1000");
    const std::string html = page.Build(report.id, report.Scope());
    EXPECT_TRUE(host::FailuresOf(html).empty()) << host::FailuresOf(html).front();
    GoldenOptions options;
    if (GetParam() != Engine::Sqlite) options.variant = NameOf(GetParam());
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
