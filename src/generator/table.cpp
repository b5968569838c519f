#include "kalvo/table.h"

#include "generator/table_rendering.h"
#include "kalvo/context.h"
#include "kalvo/db_data_src.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/topn_data_src.h"

namespace kalvo {

namespace {

struct ScopeRow {
  KalvoTableTopN scope;
  std::int16_t object;
  std::int16_t loadType;
};

// clang-format off
constexpr ScopeRow kScopes[] = {
  {TOPN_ORGANIZATION, TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOADORG},
  {TOPN_SITE,         TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOADSITE},
  {TOPN_SINGLESERVER, TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOAD},
  {TOPN_SERVERGROUP,  TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOADGROUP},
  {TOPN_MAILBOXGROUP, TOPNOBJECT_MAILBOXGROUP, TOPNLOADTYPE_LOAD},
};
// clang-format on

}  // namespace

Table::Table(const Platform& platform) : Table(platform, std::make_shared<const TableDefinition>()) {}

Table::Table(const Platform& platform, std::shared_ptr<const TableDefinition> definition)
    : platform_(platform), definition_(std::move(definition)), showEntries_(definition_->showEntries) {}

void Table::Initialize(KalvoTableType TableType, KalvoTableConstants Id, std::string_view Name,
                       TableTotalsState TotalsStateInput, bool /*ShowCharts*/, bool ShowLastScan, bool IsForm,
                       bool ShowEntries, std::span<const std::int16_t> Columns, std::string_view SQL,
                       std::string_view OrderBy, std::string_view DefaultSortOrder) {
  definition_ = std::make_shared<const TableDefinition>(
      TableDefinition{TableType, Id, std::string(Name), TotalsStateInput, ShowLastScan, IsForm, ShowEntries,
                      std::vector<std::int16_t>(Columns.begin(), Columns.end()), std::string(SQL), std::string(OrderBy),
                      std::string(DefaultSortOrder)});
  showEntries_ = ShowEntries;
}

void Table::SetTopNParameters(Context& pCtxt) {
  // Kept: an undefined scope has load type 0, which the Top-N row source refuses on the page, for its reader.
  topNObject_ = 0;
  topNLoadType_ = 0;
  for (const ScopeRow& row : kScopes) {
    if (row.scope != pCtxt.GetTopN()) continue;
    topNObject_ = row.object;
    topNLoadType_ = row.loadType;
  }
}

std::shared_ptr<RowSource> Table::GetDataSrc(Context& pCtxt) {
  const auto initialized = [&](auto source) -> std::shared_ptr<RowSource> {
    source->Initialize(*this, pCtxt.GetName(), pCtxt);
    return source;
  };
  switch (definition_->type) {
    case TABLETYPE_KALVODB: return initialized(std::make_shared<KalvodbDataSrc>(platform_));
    case TABLETYPE_TOPN: SetTopNParameters(pCtxt); return initialized(std::make_shared<TopnDataSrc>(platform_));
    case TABLETYPE_MAPI: return initialized(std::make_shared<MapiDataSrc>(platform_.locale));
  }
  return nullptr;
}

void Table::BuildHTML(Context& pCtxt, Response& response, Display& pDisplay, ColumnCatalogue& pColDB,
                      std::string_view szEmptyMessage, std::string_view szTableName) {
  TableRendering(*this, pCtxt, response, pDisplay, pColDB).Render(szEmptyMessage, szTableName);
}

}  // namespace kalvo
