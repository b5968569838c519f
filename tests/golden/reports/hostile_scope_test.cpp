#include <gtest/gtest.h>

#include "database/sample_databases.h"
#include "golden/reports/report_cases.h"

namespace kalvo::test {
namespace {

// What a query string may bring as the name of a server, a group, an organization, a site or a mailbox.
const struct {
  const char* why;
  std::string value;
} kValues[] = {
    {"nobody has this name", "No such thing"},
    {"an apostrophe", "O'Neil"},
    {"a quote that closes the text and adds a condition", "' or '1'='1"},
    {"a quote that adds a statement", "'; drop table EXDB_SERVER; --"},
    {"a backslash before the quote", "\\' or 1=1 -- "},
    {"a backslash at the end", "D:\\MDBDATA\\"},
    {"a comment", "/* */ -- #"},
    {"double quotes and brackets", "\"x\" [y] `z`"},
    {"a percent sign and an underscore", "100%_"},
    {"the words that are replaced in a query", "x%SORT%y"},
    {"ten thousand letters", std::string(10'000, 'x')},
    {"ten thousand quotes", std::string(10'000, '\'')},
    {"other scripts", "Сервер 東京 עברית 😀"},
    {"line ends and tabs", "a\r\n\tb"},
};

class HostileScopes : public testing::TestWithParam<Engine> {};

TEST_P(HostileScopes, GiveAnEmptyReportAndNoFailure) {
  const host::ReportPage page(SampleDatabases::Shared().PlatformOf(GetParam()));
  for (const auto& [why, value] : kValues) {
    for (const ReportCase& report : ReportCases()) {
      if (report.name.empty() && report.organization.empty()) continue;
      SCOPED_TRACE(std::string(why) + ", report " + std::to_string(report.id));
      const std::string html = page.Build(report.id, {value, value, value, value, TOPN_UNDEFINED});
      EXPECT_TRUE(host::FailuresOf(html).empty()) << host::FailuresOf(html).front();
      // The members of a group are shown with everybody who is not in it: an unknown group has no member.
      if (report.id == TABLE_SINGLESERVERGROUPMEMBERSHIP) {
        EXPECT_EQ(html.find("name=\"InGroup\""), std::string::npos);
      } else {
        EXPECT_NE(html.find("<em>There are no items in this report.</em>"), std::string::npos);
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, HostileScopes, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
