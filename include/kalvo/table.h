#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kalvo/enumerations.h"
#include "kalvo/platform/platform.h"
#include "kalvo/platform/value.h"

namespace kalvo {

class ColumnCatalogue;
class Context;
class Display;
class Response;
class RowSource;

// What a report table is. The catalogue's definitions are made once and shared by all pages.
struct TableDefinition {
  KalvoTableType type = TABLETYPE_KALVODB;
  KalvoTableConstants id = TABLE_FIRSTTABLE;
  std::string title;  // what the report is called where reports are listed; a page names its tables itself
  TableTotalsState totals = table_ShowTotals;
  bool showLastScan = false;  // has the block of entries, as a table that shows the time of the last scan has it
  bool isForm = false;        // stands in a form: sorting and paging warn of unsubmitted changes
  bool showEntries = false;   // tells how many entries it has
  std::vector<std::int16_t> columns;
  std::string sql;                        // may hold placeholders
  std::string orderBy, defaultSortOrder;  // serve when the request names no sort
};

// One report table: which row source it reads, its columns in their order, its SQL and ordering, and how it
// renders itself. Made by the table catalogue and shared on a page; a page script may make its own. After
// `Initialize` only three things change: the Top-N pair, the bookmark and the show-entries flag.
class Table : public Object {
 public:
  explicit Table(const Platform& platform);
  Table(const Platform& platform, std::shared_ptr<const TableDefinition> definition);

  // Redefines the table, as `TableDefinition` says. `ShowCharts` is accepted and ignored: no table has charts.
  void Initialize(KalvoTableType TableType, KalvoTableConstants Id, std::string_view Name,
                  TableTotalsState TotalsStateInput, bool ShowCharts, bool ShowLastScan, bool IsForm, bool ShowEntries,
                  std::span<const std::int16_t> Columns, std::string_view SQL, std::string_view OrderBy,
                  std::string_view DefaultSortOrder);

  // Sets the Top-N object and load type from the context's scope; both 0 for an undefined scope.
  void SetTopNParameters(Context& pCtxt);

  // A new row source for the context's name, ready to open; null for an unknown table type. The source refers
  // to this table and keeps it alive.
  std::shared_ptr<RowSource> GetDataSrc(Context& pCtxt);

  // Writes the whole table to the response: bookmark, title, entries, paging, header, one page of rows, totals.
  // A failing step is skipped; nothing is raised but the end of the page.
  void BuildHTML(Context& pCtxt, Response& response, Display& pDisplay, ColumnCatalogue& pColDB,
                 std::string_view szEmptyMessage, std::string_view szTableName);

  KalvoTableConstants GetId() const { return definition_->id; }
  std::vector<std::int16_t> GetColumns() const { return definition_->columns; }
  const std::string& GetSQL() const { return definition_->sql; }
  const std::string& GetDefaultSortOrder() const { return definition_->defaultSortOrder; }
  const std::string& GetOrderBy() const { return definition_->orderBy; }
  std::int16_t GetTopNObject() const { return topNObject_; }
  std::int16_t GetTopNLoadType() const { return topNLoadType_; }

  // ---- what a rendering reads, and what it leaves behind ------------------------------------------------

  const TableDefinition& Definition() const { return *definition_; }
  const Platform& GetPlatform() const { return platform_; }

  // The name of the anchor above the last rendering: "1chart".
  const std::string& Bookmark() const { return bookmark_; }
  void SetBookmark(std::string bookmark) { bookmark_ = std::move(bookmark); }

  // Whether the table tells how many entries it has: as it was defined, or because a rendering has shown a part of
  // them.
  bool ShowsEntries() const { return showEntries_; }
  void ShowEntriesFromNowOn() { showEntries_ = true; }

 private:
  const Platform& platform_;
  std::shared_ptr<const TableDefinition> definition_;
  bool showEntries_ = false;
  std::int16_t topNObject_ = 0, topNLoadType_ = 0;
  std::string bookmark_;
};

}  // namespace kalvo
