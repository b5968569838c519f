// Every fact of the catalogues, as the public interface tells it, beside the text that has been approved of: a letter
// or a number that changes shows here, also where no table shows it.

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "fakes/row_source.h"
#include "generator/table_rows.h"
#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/db_data_src.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/platform/append.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "kalvo/table_database.h"
#include "kalvo/topn_data_src.h"
#include "support/golden.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

// Answers every field with its own name in brackets, but for those that are written down.
class NamedFields : public FakeRowSource {
 public:
  std::string_view GetField(std::string_view name) override {
    if (fields.contains(name)) return FakeRowSource::GetField(name);
    return answer_ = "[" + std::string(name) + "]";
  }
  std::optional<std::string_view> GetIdentifier(std::string_view name) override { return GetField(name); }

 private:
  std::string answer_;
};

std::string_view Spelled(bool truth) { return truth ? "yes" : "no"; }

// ---- columns --------------------------------------------------------------------------------------------

void AppendDefinition(std::string& out, const ColumnDefinition& column) {
  Append(out, static_cast<std::int32_t>(column.id), " | ", column.name, " | ", column.databaseField, " | link ",
         static_cast<std::int32_t>(column.hyperLinkType), " | ",
         column.totalState == column_KeepTotal ? "total" : "no total", " | format ",
         static_cast<std::int32_t>(column.formatType), " | scale ", column.dataScale, " | units ", column.units,
         " | spans ", column.rows, "x", column.columns, " | ", column.align, " | wraps ", Spelled(!column.noWrap),
         " | sorts ", Spelled(column.sortColumn), "\n");
}

TEST(ApprovedFacts, Columns) {
  PageFixture page;
  page.Administrator();
  NamedFields row;
  const KalvoColumnDatabase catalogue;
  std::string out;
  for (std::int16_t id = 1; id <= COL_TOTALCOLUMNS; ++id) {
    const auto column = catalogue.GetColumn(id);
    if (!column) {
      Append(out, id, " none\n");
    } else if (const auto data = std::dynamic_pointer_cast<KalvoColumn>(column)) {
      AppendDefinition(out, data->Definition());
    } else {
      Append(out, id, " | ");
      column->AppendHeader(out, *page.context, *page.display);
      column->AppendData(out, *page.context, *page.display, row);
      out += '\n';
    }
  }
  ExpectGolden("catalogues/columns.txt", out);
}

// The cell that a definition makes of a row.
std::string CellOf(PageFixture& page, const ColumnDefinition& column, RowSource& row) {
  try {
    return KalvoColumn(column).ConstructHTMLData(*page.context, *page.display, row);
  } catch (const Error& error) {
    return "fails with " + std::to_string(error.Number());
  }
}

TEST(ApprovedFacts, Links) {
  PageFixture page("Container=c&ContainerId=ci&PublicFolderId=pi");
  page.context->SetName("Name");
  page.context->SetMailbox("Mailbox");
  NamedFields row;
  row.fields = {{"ServerState", ""}, {"Missing", "1"}};
  std::string out;
  for (std::int32_t link = -1; link <= 22; ++link) {
    ColumnDefinition column;
    column.databaseField = "Value";
    column.hyperLinkType = static_cast<KalvoTableHyperlinkType>(link);
    Append(out, link, " ", CellOf(page, column, row), "\n");
  }
  for (const char* kind : {"MAILBOX", "mailbox group", "Public Folder", "SERVER group", "server", "other"}) {
    for (const char* code : {"5023", "5022"}) {
      ColumnDefinition column;
      column.databaseField = "Value";
      column.formatType = FORMATTYPE_ALERTEDRESOURCE;
      column.hyperLinkType = HYPERLINK_DISABLEDSINGLEUSER;
      row.fields["Attrib3"] = kind;
      row.fields["AlertTypeCode"] = code;
      Append(out, kind, " ", code, " ", CellOf(page, column, row), "\n");
    }
  }
  ExpectGolden("catalogues/links.txt", out);
}

TEST(ApprovedFacts, Pictures) {
  PageFixture page("Container=c&ContainerId=ci&PublicFolderId=pi");
  page.context->SetName("Name");
  page.context->SetMailbox("Mailbox");
  NamedFields row;
  std::string out;
  for (std::int32_t id = 1; id <= COL_TOTALCOLUMNS; ++id) {
    ColumnDefinition column;
    column.id = static_cast<KalvoTableColumnsConstants>(id);
    column.formatType = FORMATTYPE_IMAGE;
    const std::string cell = CellOf(page, column, row);
    if (cell != "<td>&nbsp;</td>") Append(out, id, " ", cell, "\n");
  }
  ExpectGolden("catalogues/pictures.txt", out);
}

// ---- tables ---------------------------------------------------------------------------------------------

std::string_view KindOf(const std::shared_ptr<RowSource>& source) {
  if (std::dynamic_pointer_cast<KalvodbDataSrc>(source)) return "database";
  if (std::dynamic_pointer_cast<TopnDataSrc>(source)) return "Top-N";
  return std::dynamic_pointer_cast<MapiDataSrc>(source) ? "live" : "none";
}

// What of a table's settings a page shows of one row.
void AppendShown(std::string& out, const Table& table) {
  PageFixture page;
  page.Administrator();
  page.MayDrillDown();
  page.context->SetName("Name");
  page.context->SetMailbox("Mailbox");
  page.context->SetTopN(TOPN_SITE);
  page.database.results = {{{"x"}, {{"1"s}}}, {{"x"}, {{"1"s}}}};
  page.ranking.rows = {{{2, "1"s}}};
  for (const auto& listing : {page.live->folders, page.live->messages, page.live->attachments}) {
    listing->items = {{{"x", "1"s}}};
  }
  const auto own = std::make_shared<KalvoTableDatabase>(page.platform)->GetTable(table.GetId());
  const auto columns = std::make_shared<KalvoColumnDatabase>();
  own->BuildHTML(*page.context, *page.page->response, *page.display, *columns, "", "");
  const auto shows = [&](std::string_view text) { return Spelled(page.Text().find(text) != std::string::npos); };
  Append(out, "totals ", shows("<strong>TOTAL</strong>"), ", form ", shows("WARNING: Sorting"), ", entries ",
         shows("Number of Entries:"), "\n");
}

TEST(ApprovedFacts, Tables) {
  PageFixture page;
  page.context->SetTopN(TOPN_SITE);
  const KalvoTableDatabase catalogue(page.platform);
  std::string out;
  for (std::int32_t id = 1; id <= TABLE_TOTALTABLES; ++id) {
    const auto table = catalogue.GetTable(id);
    Append(out, "---- ", id, "\n");
    if (!table) continue;
    Append(out, KindOf(table->GetDataSrc(*page.context)), ", id ", static_cast<std::int32_t>(table->GetId()),
           ", columns");
    for (const std::int16_t column : table->GetColumns()) Append(out, " ", column);
    Append(out, "\nordered by \"", table->GetOrderBy(), "\" \"", table->GetDefaultSortOrder(), "\", ");
    AppendShown(out, *table);
    Append(out, table->GetSQL(), "\n");
    const std::string_view fixed = TableConstants().TableSQL(static_cast<KalvoTableConstants>(id));
    if (!fixed.empty()) Append(out, "fixed: ", fixed, "\n");
  }
  ExpectGolden("catalogues/tables.txt", out);
}

// What no page shows of a table, as it stands in the list itself.
TEST(ApprovedFacts, WhatNoPageShowsOfATable) {
  std::string out;
  for (const tables::TableRow& row : tables::kTables) {
    Append(out, static_cast<std::int32_t>(row.id), " | ", row.title, " | last scan ",
           Spelled(row.lastScan == tables::ShowScan), " | entries ", Spelled(row.entries == tables::ShowEntries), "\n");
  }
  ExpectGolden("catalogues/unshown.txt", out);
}

// ---- names ----------------------------------------------------------------------------------------------

TEST(ApprovedFacts, Names) {
  std::string out;
#define KALVO_APPEND_NAME(name, value) Append(out, #name " ", static_cast<std::int32_t>(name), "\n");
  KALVO_ALL_ENUMERATIONS(KALVO_APPEND_NAME)
#undef KALVO_APPEND_NAME
  const TableConstants constants;
  Append(out, constants.TABLES_DSN(), " ", constants.gszAscendingSort(), " ", constants.gszDescendingSort(), "\n");
  ExpectGolden("catalogues/names.txt", out);
}

}  // namespace
}  // namespace kalvo::test
