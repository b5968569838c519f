#include <gtest/gtest.h>

#include "database/sample_databases.h"
#include "fakes/page.h"
#include "golden/reports/report_cases.h"
#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/context.h"
#include "kalvo/db_data_src.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/table.h"
#include "kalvo/table_database.h"

namespace kalvo::test {
namespace {

// The values of one field, in the order in which the report has its rows for this query string.
std::vector<std::string> Values(const Platform& platform, const ReportCase& report, const std::string& field,
                                const std::string& query) {
  const auto page = std::make_shared<FakePage>(query);
  const auto context = std::make_shared<Context>();
  context->OnStartPage(*page);
  context->SetName(report.name);
  context->SetOrg(report.organization);
  context->SetSite(report.site);
  context->SetMailbox(report.mailbox);
  context->IncrementTableIndex();
  const auto table = std::make_shared<KalvoTableDatabase>(platform)->GetTable(report.id);
  KalvodbDataSrc source(platform);
  source.Initialize(*table, report.name, *context);
  std::vector<std::string> values;
  EXPECT_EQ(source.OpenDS(), 0) << page->response->text;
  source.MoveFirst();
  for (std::int32_t row = 0; row < source.RecordCount(); ++row, source.MoveNext())
    values.emplace_back(source.GetField(field));
  source.CloseDS();
  EXPECT_EQ(page->response->text, "");
  return values;
}

// -1, 0 or 1, as the engine orders two values: numbers and dates by their size, names by their letters. An engine
// that knows no case compares capitals as small letters.
int Order(const std::string& left, const std::string& right, const ColumnDefinition& column, Engine engine) {
  const auto sign = [](auto a, auto b) { return a < b ? -1 : b < a ? 1 : 0; };
  const bool isDate = column.formatType == FORMATTYPE_DATETIME || column.formatType == FORMATTYPE_BackupDateTime;
  const auto serial = [](const std::string& text) { return ParseDate(text, kEnglishUnitedStates).value().serial; };
  if (isDate) return sign(serial(left), serial(right));
  if (const auto a = ParseNumber(left), b = ParseNumber(right); a && b) return sign(*a, *b);
  const auto folded = [&](std::string text) {
    for (char& c : text) {
      if (engine != Engine::Postgresql && c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
  };
  return sign(folded(left), folded(right));
}

void ExpectOrdered(const std::vector<std::string>& values, const ColumnDefinition& column, Engine engine,
                   int direction) {
  // Rows without a value come first in ascending order, and last in descending.
  std::vector<std::string> known;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!values[i].empty()) known.push_back(values[i]);
    const bool misplaced = i > 0 && (direction > 0 ? values[i].empty() && !values[i - 1].empty()
                                                   : !values[i].empty() && values[i - 1].empty());
    EXPECT_FALSE(misplaced) << "a row without a value at " << i;
  }
  for (std::size_t i = 1; i < known.size(); ++i) {
    EXPECT_GE(Order(known[i], known[i - 1], column, engine) * direction, 0) << known[i - 1] << " before " << known[i];
  }
}

class ReportSorting : public testing::TestWithParam<Engine> {};

TEST_P(ReportSorting, PutsTheRowsOfEverySortableColumnInOrder) {
  const Platform& platform = SampleDatabases::Shared().PlatformOf(GetParam());
  const auto columns = std::make_shared<KalvoColumnDatabase>();
  const auto tables = std::make_shared<KalvoTableDatabase>(platform);
  int sorted = 0;
  for (const ReportCase& report : ReportCases()) {
    for (const std::int16_t id : tables->GetTable(report.id)->GetColumns()) {
      const auto column = std::dynamic_pointer_cast<KalvoColumn>(columns->GetColumn(id));
      if (!column || !column->Definition().sortColumn) continue;
      const std::string& field = column->Definition().databaseField;
      const auto unsorted = Values(platform, report, field, "");
      for (const auto& [word, direction] : {std::pair{"ASC", 1}, std::pair{"DESC", -1}}) {
        SCOPED_TRACE("report " + std::to_string(report.id) + " by " + field + " " + word);
        const auto values = Values(platform, report, field, "Sort=" + field + "&SortOrder=" + word);
        EXPECT_EQ(values.size(), unsorted.size());
        ExpectOrdered(values, column->Definition(), GetParam(), direction);
        ++sorted;
      }
    }
  }
  EXPECT_GT(sorted, 200);
}

INSTANTIATE_TEST_SUITE_P(Engines, ReportSorting, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
