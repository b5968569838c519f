#include <gtest/gtest.h>

#include <fstream>

#include "database/sample_databases.h"
#include "golden/reports/report_cases.h"
#include "host/script/text/text.h"
#include "source_folder.h"

namespace kalvo::test {
namespace {

// The lines of a list of attacks, decoded.
std::vector<std::string> Texts(const std::string& file) {
  std::ifstream in(KALVO_SOURCE_DIR "/tests/attack/" + file);
  std::vector<std::string> texts;
  for (std::string line; std::getline(in, line);) {
    if (!line.starts_with('#')) texts.push_back(host::UrlDecoded(line));
  }
  EXPECT_GT(texts.size(), 5u) << file;
  return texts;
}

std::size_t RowsOf(const std::string& html) {
  std::size_t rows = 0;
  for (auto at = html.find("<tr"); at != html.npos; at = html.find("<tr", at + 1)) ++rows;
  return rows;
}

bool IsRefused(const std::string& html) {
  const auto failures = host::FailuresOf(html);
  return !failures.empty() && failures.front().find("[42000] ") != std::string::npos;
}

class HostileSorts : public testing::TestWithParam<Engine> {
 protected:
  std::string Sorted(const std::string& sort, const std::string& order) const {
    host::ReportPage page(SampleDatabases::Shared().PlatformOf(GetParam()));
    page.AddParameter("Sort", sort);
    page.AddParameter("SortOrder", order);
    return page.Build(TABLE_RES_ORGANIZATION_ALLSERVERS, {});
  }
};

TEST_P(HostileSorts, AreRefusedBeforeTheDatabaseSeesThem) {
  for (const std::string& sort : Texts("refused_sorts.txt")) {
    SCOPED_TRACE(sort);
    EXPECT_TRUE(IsRefused(Sorted(sort, "DESC")));
  }
}

TEST_P(HostileSorts, OfNamesAloneShowTheSameRowsOrAFailure) {
  const std::string plain = Sorted("", "");
  ASSERT_GT(RowsOf(plain), 3u);
  for (const std::string& sort : Texts("odd_sorts.txt")) {
    SCOPED_TRACE(sort);
    const std::string html = Sorted(sort, "DESC");
    if (host::FailuresOf(html).empty()) {
      EXPECT_EQ(RowsOf(html), RowsOf(plain));
    } else {
      EXPECT_LT(RowsOf(html), RowsOf(plain));
    }
  }
}

TEST_P(HostileSorts, AreRefusedInTheOrderToo) {
  for (const std::string& order : Texts("refused_orders.txt")) {
    SCOPED_TRACE(order);
    EXPECT_TRUE(IsRefused(Sorted("ComputerName", order)));
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, HostileSorts, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
