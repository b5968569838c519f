// Whoever pages through a report meets each of its rows once, whichever engine it reads and whatever it is sorted by.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <regex>

#include "database/sample_databases.h"
#include "fakes/page.h"
#include "golden/reports/report_cases.h"
#include "host/cli/report_page.h"
#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/context.h"
#include "kalvo/db_data_src.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/table.h"
#include "kalvo/table_database.h"
#include "support/patience.h"

namespace kalvo::test {
namespace {

constexpr std::int32_t kWindow = 7;  // rows; the sample's reports have up to some hundreds

// A report by one of the sorts that its page offers: "" is its own.
struct SortedReport {
  const ReportCase& report;
  std::vector<std::string> fields;
  std::string query;
};

// Every report by its own sort, and by the columns that it sorts by, both ways: all of them in the long run, one and
// one way in the short one.
std::vector<SortedReport> SortedReports() {
  std::vector<SortedReport> sorted;
  const auto columns = std::make_shared<KalvoColumnDatabase>();
  const auto tables = std::make_shared<KalvoTableDatabase>(SampleDatabases::Shared().PlatformOf(Engine::Sqlite));
  for (const ReportCase& report : ReportCases()) {
    std::vector<std::string> fields, sorts;
    for (const std::int16_t id : tables->GetTable(report.id)->GetColumns()) {
      const auto column = std::dynamic_pointer_cast<KalvoColumn>(columns->GetColumn(id));
      if (!column || column->Definition().databaseField.empty()) continue;
      fields.push_back(column->Definition().databaseField);
      if (column->Definition().sortColumn) sorts.push_back(fields.back());
    }
    sorted.push_back({report, fields, ""});
    if (Rounds(0, 1) == 0 && sorts.size() > 1) sorts = {sorts.back()};
    for (const std::string& sort : sorts) {
      sorted.push_back({report, fields, "Sort=" + sort + "&SortOrder=DESC"});
      if (Rounds(0, 1) == 1) sorted.push_back({report, fields, "Sort=" + sort + "&SortOrder=ASC"});
    }
  }
  return sorted;
}

// Engines compute with different numbers of digits behind the point.
std::string Coarse(std::string_view text) {
  const auto number = text.find('.') == text.npos ? std::nullopt : ParseNumber(text);
  return number ? std::to_string(std::llround(*number * 1000)) : std::string(text);
}

// A source of the report's rows, as a page opens one.
class OpenReport {
 public:
  OpenReport(const Platform& platform, const SortedReport& sorted)
      : fields_(sorted.fields), page_(std::make_shared<FakePage>(sorted.query)), source_(platform) {
    const auto context = std::make_shared<Context>();
    context->OnStartPage(*page_);
    context->SetName(sorted.report.name);
    context->SetOrg(sorted.report.organization);
    context->SetSite(sorted.report.site);
    context->SetMailbox(sorted.report.mailbox);
    context->IncrementTableIndex();
    source_.Initialize(*std::make_shared<KalvoTableDatabase>(platform)->GetTable(sorted.report.id), sorted.report.name,
                       *context);
    EXPECT_EQ(source_.OpenDS(), 0) << page_->response->text;
  }
  ~OpenReport() { EXPECT_EQ(page_->response->text, ""); }

  std::int32_t Count() { return source_.RecordCount(); }

  // So many rows from a place on, each the texts of its fields.
  std::vector<std::string> Rows(std::int32_t first, std::int32_t count) {
    std::vector<std::string> rows;
    source_.MoveFirst();
    for (std::int32_t row = 0; row < std::min(first + count, Count()); ++row, source_.MoveNext()) {
      if (row < first) continue;
      std::string& texts = rows.emplace_back();
      for (const std::string& field : fields_) texts.append(Coarse(source_.GetField(field))).append("|");
    }
    return rows;
  }
  std::vector<std::string> AllRows() { return Rows(0, Count()); }

 private:
  const std::vector<std::string>& fields_;
  std::shared_ptr<FakePage> page_;
  KalvodbDataSrc source_;
};

class EveryRowOnce : public testing::TestWithParam<Engine> {};

TEST_P(EveryRowOnce, WhetherItIsWalkedOrPagedFromEitherEnd) {
  const Platform& whole = SampleDatabases::Shared().PlatformOf(GetParam());
  const Platform& windowed = SampleDatabases::Shared().PlatformOf(GetParam(), kWindow);
  std::int32_t most = 0;
  for (const SortedReport& sorted : SortedReports()) {
    SCOPED_TRACE("report " + std::to_string(sorted.report.id) + " by " + sorted.query);
    const auto rows = OpenReport(whole, sorted).AllRows();
    const auto count = static_cast<std::int32_t>(rows.size());
    most = std::max(most, count);
    ASSERT_EQ(OpenReport(windowed, sorted).AllRows(), rows);
    // Pages, each of a source of its own.
    const std::int32_t step = std::max<std::int32_t>(kWindow, count / Rounds(2, 40) / kWindow * kWindow);
    for (std::int32_t first = 0; first < count; first += step) {
      const std::int32_t end = std::min(first + kWindow, count);
      ASSERT_EQ(OpenReport(windowed, sorted).Rows(first, kWindow),
                std::vector(rows.begin() + first, rows.begin() + end))
          << "from row " << first;
    }
    OpenReport backward(windowed, sorted);
    for (std::int32_t first = count - kWindow; first > 0; first -= step) {
      ASSERT_EQ(backward.Rows(first, kWindow), std::vector(rows.begin() + first, rows.begin() + first + kWindow))
          << "backward from row " << first;
    }
  }
  EXPECT_GT(most, 20 * kWindow) << "the sample has no report that is long enough";
}

TEST_P(EveryRowOnce, InTheOrderOfAllOtherEngines) {
  const Platform& platform = SampleDatabases::Shared().PlatformOf(GetParam());
  const Platform& other = SampleDatabases::Shared().PlatformOf(Engine::Sqlite);
  for (const SortedReport& sorted : SortedReports()) {
    if (sorted.report.id == TABLE_AmbiguousAddressResolution) continue;  // its `like` knows case on PostgreSQL
    SCOPED_TRACE("report " + std::to_string(sorted.report.id) + " by " + sorted.query);
    EXPECT_EQ(OpenReport(platform, sorted).AllRows(), OpenReport(other, sorted).AllRows());
  }
}

// The rows of a page's table, each as its HTML.
std::vector<std::string> RowsIn(const std::string& html) {
  std::vector<std::string> rows;
  constexpr std::string_view kStart = "<tr>\r\n<td align";
  for (auto at = html.find(kStart); at != html.npos; at = html.find(kStart, at + 1)) {
    rows.push_back(html.substr(at, html.find("</tr>", at) - at));
  }
  return rows;
}

std::string PageFrom(const Platform& platform, const ReportCase& report, const std::string& sort,
                     const std::string& first, const std::string& size) {
  host::ReportPage page(platform);
  page.AddParameter("Sort", sort);
  page.AddParameter("SortOrder", "DESC");
  page.AddParameter("First", first);
  page.AddParameter("PageSize", size);
  return page.Build(report.id, report.Scope());
}

TEST_P(EveryRowOnce, ForWhoeverFollowsTheLinksOfItsPages) {
  const Platform& platform = SampleDatabases::Shared().PlatformOf(GetParam(), kWindow);
  const std::regex next("First=(-?\\d+)&amp;PageSize=\\d+#1chart\"><img src=\"../Images/Controls/Next.gif");
  for (const ReportCase& report : ReportCases()) {
    const char* sort = report.id == TABLE_CURRENTALERTS             ? "Attrib3"
                       : report.id == TABLE_CHARGEBACK_Organization ? "ComputerName"
                                                                    : nullptr;
    if (!sort) continue;
    SCOPED_TRACE("report " + std::to_string(report.id));
    std::vector<std::string> rows;
    std::string first = "1";
    while (!first.empty() && rows.size() < 10'000) {
      const std::string html = PageFrom(platform, report, sort, first, std::to_string(kWindow));
      for (std::string& row : RowsIn(html)) rows.push_back(std::move(row));
      std::smatch link;
      first = std::regex_search(html, link, next) ? link[1].str() : "";
    }
    EXPECT_GT(rows.size(), 5u * kWindow);
    EXPECT_EQ(rows, RowsIn(PageFrom(platform, report, sort, "1", "32767")));
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, EveryRowOnce, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
