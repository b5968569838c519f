#include "kalvo/topn_data_src.h"

#include "context/steps.h"
#include "kalvo/codes.h"
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
  {TABLE_TOPN_MBCNT,                   kinds::kMailboxMessages},
  {TABLE_TOPN_MBSPACE,                 kinds::kMailboxSpace},
  {TABLE_TOPN_MailboxAverageSize,      kinds::kMailboxAverageSize},
  {TABLE_TOPN_MBOLDCNT,                kinds::kMailboxOldMessages},
  {TABLE_TOPN_MBOLDSPACE,              kinds::kMailboxOldSpace},
  {TABLE_TOPN_PFMSGCNT,                kinds::kFolderMessages},
  {TABLE_TOPN_PFSPACE,                 kinds::kFolderSpace},
  {TABLE_TOPN_PublicFolderAverageSize, kinds::kFolderAverageSize},
  {TABLE_TOPN_PFOLDCNT,                kinds::kFolderOldMessages},
  {TABLE_TOPN_PFOLDSPACE,              kinds::kFolderOldSpace},
  {TABLE_TOPN_MBSTALE,                 kinds::kStaleMailboxes},
  {TABLE_TOPN_PFSTALE,                 kinds::kStaleFolders},
  {TABLE_TOPN_OLDMBMSG,                kinds::kOldestMailboxMessages},
  {TABLE_TOPN_OLDPFMSG,                kinds::kOldestFolderMessages},
  {TABLE_TOPN_LARGEMBMSG,              kinds::kLargestMailboxMessages},
  {TABLE_TOPN_LARGEPFMSG,              kinds::kLargestFolderMessages},
  {TABLE_TOPN_LARGEOLDMBMSG,           kinds::kLargestOldMailboxMessages},
  {TABLE_TOPN_LARGEOLDPFMSG,           kinds::kLargestOldFolderMessages},
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

// ---- opening --------------------------------------------------------------------------------------------

std::int16_t TopnDataSrc::OpenDS() {
  Held(table_);
  Steps steps(context_);
  if (steps.Fails("TopnDataSrc.OpenDS", [&] { results_ = platform_.topN.NewResults(); })) return kFailed;
  recordCount_ = 0;
  if (!Load(steps)) return kFailed;
  const bool failed =
      steps.Fails("TopnDataSrc.OpenDS: RecordCount failed", [&] { recordCount_ = Held(results_)->Count(); });
  return failed ? kFailed : SortResults(steps);
}

// The loader of servers or of mailbox groups; null when there is none, which has been told.
std::shared_ptr<TopNLoader> TopnDataSrc::MakeLoader(Steps& steps, std::int16_t object) {
  std::shared_ptr<TopNLoader> loader;
  bool made = false;
  if (object == TOPNOBJECT_SERVER) {
    made =
        !steps.Fails("TopnDataSrc.OpenDS: Case TOPNOBJECT_SERVER", [&] { loader = platform_.topN.NewServerLoader(); });
  } else if (object == TOPNOBJECT_MAILBOXGROUP) {
    made = !steps.Fails("TopnDataSrc.OpenDS: Case TOPNOBJECT_MAILBOXGROUP",
                        [&] { loader = platform_.topN.NewMailboxGroupLoader(); });
  } else {
    steps.Refuse("Internal error: No TopN Object type specified.");
  }
  return made ? loader : nullptr;
}

bool TopnDataSrc::Load(Steps& steps) {
  const std::int16_t object = table_->GetTopNObject();
  const std::shared_ptr<TopNLoader> loader = MakeLoader(steps, object);
  if (!loader) return false;
  const LoadRow* load = FindLoad(object, table_->GetTopNLoadType());
  if (!load) return steps.Refuse("Internal error: No TopN Load type specified.");
  const std::int16_t kind = KindOf(table_->GetId());
  const std::string scope = ((*context_).*load->scope)();
  return !steps.Fails("TopnDataSrc.OpenDS: LoadFailed", [&] { ((*loader).*load->call)(kind, scope, *Held(results_)); });
}

// Sort fields of these tables are column numbers; a request's other text is passed over.
std::int16_t TopnDataSrc::SortResults(Steps& steps) {
  std::string field;
  steps.Try([&] { field = Held(context_)->TableSortFieldInformation(); });
  if (!ParseNumber(field)) field = table_->GetOrderBy();
  if (recordCount_ == 0) {
    steps.TraceTable([](std::string& out) { Append(out, "<p>No records returned and no sort attempt.</p>", kCrLf); });
    return 0;
  }
  if (!ParseNumber(field)) {
    steps.TraceTable([](std::string& out) { Append(out, "<p>No supplied or default sort Information.</p>", kCrLf); });
    return 0;
  }
  std::string order;
  steps.Try([&] { order = Held(context_)->TableSortOrderInformation(); });
  if (order.empty()) order = table_->GetDefaultSortOrder();
  std::int16_t column = 0;
  steps.Try([&] { column = ToInt16(std::string_view(field)); });
  const std::int32_t ascending = EqualsIgnoringCase(order, TableConstants().gszAscendingSort()) ? 1 : 0;
  steps.TraceTable([&](std::string& out) {
    Append(out, "<p>Sort Information: \"", field, "\" (", column, ") \"", order, "\" (", ascending, ")</p>", kCrLf);
  });
  const bool failed = steps.Fails("TopnDataSrc.OpenDS: Sort failed", [&] { Held(results_)->Sort(column, ascending); });
  return failed ? kFailed : std::int16_t{0};
}

// ---- moving and reading ---------------------------------------------------------------------------------

std::int16_t TopnDataSrc::MoveFirst() {
  Steps steps(context_);
  if (recordCount_ == 0) return 0;
  if (steps.Fails("Move first.", [&] { Held(results_)->MoveFirst(); })) {
    recordCount_ = 0;
  } else {
    rowIndex_ = 1;
  }
  return 0;
}

std::int16_t TopnDataSrc::MoveNext() {
  Steps steps(context_);
  if (rowIndex_ > recordCount_) return 0;
  if (steps.Fails("Move next.", [&] { Held(results_)->MoveNext(); })) {
    recordCount_ = 0;
  } else {
    steps.Try([&] { rowIndex_ = NextRow(); });
  }
  return 0;
}

std::int16_t TopnDataSrc::MoveTotals() {
  Steps steps(context_);
  const bool failed = steps.Fails("Move Totals.", [&] { Held(results_)->MoveTotals(); });
  return failed ? kFailed : std::int16_t{0};
}

std::string_view TopnDataSrc::GetField(std::string_view szFieldName) {
  const auto context = Held(context_);
  Steps steps(context);
  std::string text = TakeAnswer();
  steps.Try([&] { AppendText(text, Held(results_)->Value(ToInt16(szFieldName)), platform_.locale); });
  const std::int32_t number = CurrentError().number;
  steps.Trace("TopN", [&](std::string& out) {
    Append(out, "<p>Get: Field: ", szFieldName, "; Value: \"", text, '"');
    if (number != 0) Append(out, "; Err.Number: ", number);
    Append(out, "</p>", kCrLf);
  });
  return KeepAnswer(std::move(text));
}

}  // namespace kalvo
