#include "database/raw_rows.h"

#include <gtest/gtest.h>

#include "fakes/page.h"
#include "kalvo/context.h"
#include "kalvo/db_data_src.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/platform.h"
#include "kalvo/table.h"
#include "kalvo/table_database.h"

namespace kalvo::test {

std::vector<RawRow> RowsOf(const Platform& platform, std::string_view table) {
  const std::string sql = "select * from " + std::string(table);
  const auto connection = platform.database.Connect("KalvoDB");
  const auto records = connection->Execute({sql, sql, ""});
  std::vector<RawRow> rows;
  if (records->IsEmpty()) return rows;
  const Rows& loaded = records->GetRows();
  std::string scratch;
  for (std::int32_t row = 0; row < loaded.RowCount(); ++row) {
    RawRow& raw = rows.emplace_back();
    for (std::int32_t field = 0; field < loaded.FieldCount(); ++field) {
      raw.fields[ToLower(records->FieldName(field))] = loaded.Text(field, row, scratch);
    }
  }
  return rows;
}

ReportRows RowsOfReport(const Platform& platform, int id, const Scope& scope, const std::vector<std::string>& fields,
                        const std::vector<std::string>& totals) {
  const auto page = std::make_shared<FakePage>("");
  const auto context = std::make_shared<Context>();
  context->OnStartPage(*page);
  context->SetOrg(scope.organization);
  context->SetSite(scope.site);
  context->SetMailbox(scope.mailbox);
  context->IncrementTableIndex();
  const auto table = std::make_shared<KalvoTableDatabase>(platform)->GetTable(id);
  KalvodbDataSrc source(platform);
  source.Initialize(*table, scope.name, *context);
  ReportRows report;
  EXPECT_EQ(source.OpenDS(), 0) << page->response->text;
  source.MoveFirst();
  for (std::int32_t row = 0; row < source.RecordCount(); ++row, source.MoveNext()) {
    RawRow& raw = report.rows.emplace_back();
    for (const std::string& field : fields) raw.fields[field] = source.GetField(field);
  }
  if (!totals.empty()) {
    EXPECT_EQ(source.MoveTotals(), 0) << page->response->text;
    for (const std::string& field : totals) report.totals.fields[field] = source.GetField(field);
  }
  EXPECT_EQ(page->response->text, "");
  return report;
}

}  // namespace kalvo::test
