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

// One report table: which row source it reads, its columns in their order, its SQL and ordering, and how it
// renders itself. Made and initialized by the table catalogue and shared on a page; a page script may make its
// own. After `Initialize` only three things change: the Top-N pair, the bookmark and the show-entries flag.
class Table : public Object {
 public:
  explicit Table(const Platform& platform) : platform_(platform) {}

  // The flags say whether the table offers charts, shows the time of the last scan, stands in a form, and shows
  // how many entries it has. `SQL` may hold placeholders; `OrderBy` and `DefaultSortOrder` serve when the
  // request names no sort.
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

  KalvoTableConstants GetId() const { return id_; }
  std::vector<std::int16_t> GetColumns() const { return columns_; }
  const std::string& GetSQL() const { return sql_; }
  const std::string& GetDefaultSortOrder() const { return defaultSortOrder_; }
  const std::string& GetOrderBy() const { return orderBy_; }
  std::int16_t GetTopNObject() const { return topNObject_; }
  std::int16_t GetTopNLoadType() const { return topNLoadType_; }

 private:
  friend class TableRendering;

  const Platform& platform_;
  KalvoTableType type_ = TABLETYPE_KALVODB;
  KalvoTableConstants id_ = TABLE_FIRSTTABLE;
  std::string name_;
  TableTotalsState totalsState_ = table_ShowTotals;
  bool showCharts_ = false, showLastScan_ = false, isForm_ = false, showEntries_ = false;
  std::string defaultSortOrder_;
  std::vector<std::int16_t> columns_;
  std::string sql_, orderBy_;
  std::int16_t topNObject_ = 0, topNLoadType_ = 0;
  std::string bookmark_;
};

}  // namespace kalvo
