#include "kalvo/topn_data_src.h"

#include "context/fails.h"
#include "datasrc/row_number.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/ranking.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"

namespace kalvo {

namespace {

constexpr std::int16_t kFailed = -1;
constexpr std::int16_t kNoKind = -1;

struct KindRow {
  KalvoTableConstants table;
  std::int16_t kind;
};

// What each table asks the loader for. The codes are the loader's own.
// clang-format off
constexpr KindRow kKinds[] = {
  {TABLE_TOPN_MBCNT,                   1},
  {TABLE_TOPN_MBSPACE,                 2},
  {TABLE_TOPN_MailboxAverageSize,     21},
  {TABLE_TOPN_MBOLDCNT,                8},
  {TABLE_TOPN_MBOLDSPACE,              9},
  {TABLE_TOPN_PFMSGCNT,                4},
  {TABLE_TOPN_PFSPACE,                 5},
  {TABLE_TOPN_PublicFolderAverageSize, 22},
  {TABLE_TOPN_PFOLDCNT,               11},
  {TABLE_TOPN_PFOLDSPACE,             12},
  {TABLE_TOPN_MBSTALE,                13},
  {TABLE_TOPN_PFSTALE,                14},
  {TABLE_TOPN_OLDMBMSG,                6},
  {TABLE_TOPN_OLDPFMSG,                7},
  {TABLE_TOPN_LARGEMBMSG,             17},
  {TABLE_TOPN_LARGEPFMSG,             19},
  {TABLE_TOPN_LARGEOLDMBMSG,          18},
  {TABLE_TOPN_LARGEOLDPFMSG,          20},
};

using LoadCall = void (TopNLoader::*)(std::int16_t, std::string_view, RankedResults&);
using ScopeName = const std::string& (Context::*)() const;

struct LoadRow {
  std::int16_t object;
  std::int16_t loadType;
  LoadCall call;
  ScopeName scope;
};

constexpr LoadRow kLoads[] = {
  {TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOAD,      &TopNLoader::Load,      &Context::GetName},
  {TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOADGROUP, &TopNLoader::LoadGroup, &Context::GetName},
  {TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOADSITE,  &TopNLoader::LoadSite,  &Context::GetSite},
  {TOPNOBJECT_SERVER,       TOPNLOADTYPE_LOADORG,   &TopNLoader::LoadOrg,   &Context::GetOrg},
  {TOPNOBJECT_MAILBOXGROUP, TOPNLOADTYPE_LOAD,      &TopNLoader::Load,      &Context::GetName},
};
// clang-format on

std::int16_t KindOf(KalvoTableConstants table) {
  for (const KindRow& row : kKinds) {
    if (row.table == table) return row.kind;
  }
  return kNoKind;
}

const LoadRow* FindLoad(std::int16_t object, std::int16_t loadType) {
  for (const LoadRow& row : kLoads) {
    if (row.object == object && row.loadType == loadType) return &row;
  }
  return nullptr;
}

}  // namespace

TopnDataSrc::TopnDataSrc(const Platform& platform) : platform_(platform) {}
TopnDataSrc::~TopnDataSrc() = default;

void TopnDataSrc::Initialize(Table& KalvoTable, std::string_view ResourceName, Context& Ctxt) {
  table_ = Owned(KalvoTable);
  resourceName_ = ResourceName;
  context_ = Owned(Ctxt);
}

// ---- opening --------------------------------------------------------------------------------------------

std::int16_t TopnDataSrc::OpenDS() {
  if (!table_) throw ObjectNotSet();
  Trap trap;
  if (Fails(trap, *Held(context_), "TopnDataSrc.OpenDS", [&] { results_ = platform_.topN.NewResults(); }))
    return kFailed;
  recordCount_ = 0;
  if (!Load(trap)) return kFailed;
  if (Fails(trap, *Held(context_), "TopnDataSrc.OpenDS: RecordCount failed",
            [&] { recordCount_ = Held(results_)->Count(); })) {
    return kFailed;
  }
  return SortResults(trap);
}

bool TopnDataSrc::Load(Trap& trap) {
  const std::int16_t object = table_->GetTopNObject();
  const auto refuse = [&](std::string_view text) {
    trap([&] { Held(context_)->FailureMessage(text, false); });
    return false;
  };
  std::shared_ptr<TopNLoader> loader;
  if (object == TOPNOBJECT_SERVER) {
    if (Fails(trap, *Held(context_), "TopnDataSrc.OpenDS: Case TOPNOBJECT_SERVER",
              [&] { loader = platform_.topN.NewServerLoader(); })) {
      return false;
    }
  } else if (object == TOPNOBJECT_MAILBOXGROUP) {
    if (Fails(trap, *Held(context_), "TopnDataSrc.OpenDS: Case TOPNOBJECT_MAILBOXGROUP",
              [&] { loader = platform_.topN.NewMailboxGroupLoader(); })) {
      return false;
    }
  } else {
    return refuse("Internal error: No TopN Object type specified.");
  }
  const LoadRow* load = FindLoad(object, table_->GetTopNLoadType());
  if (!load) return refuse("Internal error: No TopN Load type specified.");
  const std::int16_t kind = KindOf(table_->GetId());
  const std::string scope = ((*context_).*load->scope)();
  return !Fails(trap, *Held(context_), "TopnDataSrc.OpenDS: LoadFailed",
                [&] { ((*loader).*load->call)(kind, scope, *Held(results_)); });
}

// Sort fields of these tables are column numbers; a request's other text is passed over.
std::int16_t TopnDataSrc::SortResults(Trap& trap) {
  std::string field;
  trap([&] { field = Held(context_)->TableSortFieldInformation(); });
  if (!ParseNumber(field)) field = table_->GetOrderBy();
  const auto trace = [&](auto&& maker) { trap([&] { Held(context_)->TraceTable(maker); }); };
  if (recordCount_ == 0) {
    trace([](std::string& out) { Append(out, "<p>No records returned and no sort attempt.</p>", kCrLf); });
    return 0;
  }
  if (!ParseNumber(field)) {
    trace([](std::string& out) { Append(out, "<p>No supplied or default sort Information.</p>", kCrLf); });
    return 0;
  }
  std::string order;
  trap([&] { order = Held(context_)->TableSortOrderInformation(); });
  if (order.empty()) order = table_->GetDefaultSortOrder();
  std::int16_t column = 0;
  trap([&] { column = ToInt16(std::string_view(field)); });
  const std::int32_t ascending = EqualsIgnoringCase(order, TableConstants().gszAscendingSort()) ? 1 : 0;
  trace([&](std::string& out) {
    Append(out, "<p>Sort Information: \"", field, "\" (", column, ") \"", order, "\" (", ascending, ")</p>", kCrLf);
  });
  const bool failed =
      Fails(trap, *Held(context_), "TopnDataSrc.OpenDS: Sort failed", [&] { Held(results_)->Sort(column, ascending); });
  return failed ? kFailed : std::int16_t{0};
}

// ---- moving and reading ---------------------------------------------------------------------------------

std::int16_t TopnDataSrc::MoveFirst() {
  Trap trap;
  if (recordCount_ == 0) return 0;
  if (Fails(trap, *Held(context_), "Move first.", [&] { Held(results_)->MoveFirst(); })) {
    recordCount_ = 0;
  } else {
    rowIndex_ = 1;
  }
  return 0;
}

std::int16_t TopnDataSrc::MoveNext() {
  Trap trap;
  if (rowIndex_ > recordCount_) return 0;
  if (Fails(trap, *Held(context_), "Move next.", [&] { Held(results_)->MoveNext(); })) {
    recordCount_ = 0;
  } else {
    trap([&] { rowIndex_ = NextRow(rowIndex_); });
  }
  return 0;
}

std::int16_t TopnDataSrc::MoveTotals() {
  Trap trap;
  const bool failed = Fails(trap, *Held(context_), "Move Totals.", [&] { Held(results_)->MoveTotals(); });
  return failed ? kFailed : std::int16_t{0};
}

std::int16_t TopnDataSrc::GetRowIndex() { return ToInt16(static_cast<double>(rowIndex_)); }

std::string_view TopnDataSrc::GetField(std::string_view szFieldName) {
  const auto context = Held(context_);
  Trap trap;
  std::string text = answer_.Take();
  trap([&] { AppendText(text, Held(results_)->Value(ToInt16(szFieldName)), platform_.locale); });
  const std::int32_t number = CurrentError().number;
  trap([&] {
    context->Trace("TopN", [&](std::string& out) {
      Append(out, "<p>Get: Field: ", szFieldName, "; Value: \"", text, '"');
      if (number != 0) Append(out, "; Err.Number: ", number);
      Append(out, "</p>", kCrLf);
    });
  });
  return answer_.Keep(std::move(text));
}

}  // namespace kalvo
