#include "kalvo/mapi_data_src.h"

#include "context/fails.h"
#include "datasrc/live_tables.h"
#include "datasrc/row_number.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"

namespace kalvo {

// What an open is asked for, taken once: a script that serves as the browsing object may change the page's scope.
struct LiveScope {
  std::string server, mailbox, container, publicFolderId, containerId;
};

namespace {

constexpr std::int16_t kFailed = -1;

std::string Query(Trap& trap, const Context& context, std::string_view name) {
  std::string value;
  trap([&] { value = context.GetRequest()->QueryText(name); });
  return value;
}

}  // namespace

MapiDataSrc::MapiDataSrc(const Locale& locale) : locale_(locale) {}
MapiDataSrc::~MapiDataSrc() = default;

void MapiDataSrc::Initialize(Table& KalvoTable, std::string_view ResourceName, Context& Ctxt) {
  table_ = Owned(KalvoTable);
  resourceName_ = ResourceName;
  context_ = Owned(Ctxt);
}

// ---- opening --------------------------------------------------------------------------------------------

std::int16_t MapiDataSrc::OpenDS() {
  if (!table_) throw ObjectNotSet();
  Trap trap;
  std::int32_t messageIds = 0;
  trap([&] { messageIds = Held(context_)->GetRequest()->QueryCount("MessageId"); });
  return messageIds != 0 ? OpenMessageDS() : OpenFolderDS();
}

bool MapiDataSrc::TakeLiveContainer(Trap& trap) {
  return !Fails(trap, *Held(context_), "Get the live container object.",
                [&] { live_ = Held(context_)->LiveDriller(); });
}

LiveTableRow MapiDataSrc::TableRow(Trap& trap, LiveOpen opens) {
  for (const LiveTableRow& row : kLiveTables) {
    if (row.table == table_->GetId() && row.opens == opens) return row;
  }
  // Kept: the open goes on as for the messages of a mailbox.
  trap([&] { Held(context_)->FailureMessage("Invalid table identifier for MAPI table.", false); });
  return {table_->GetId(), opens, LiveStore::Mailbox, LiveItems::Messages};
}

std::int16_t MapiDataSrc::OpenFolderDS() {
  if (!table_) throw ObjectNotSet();
  Trap trap;
  const LiveTableRow row = TableRow(trap, LiveOpen::Folder);
  const bool isPublic = row.store == LiveStore::PublicFolders;
  recordCount_ = 0;
  totals_ = false;
  const LiveScope scope{context_->GetName(), context_->GetMailbox(), context_->GetContainer(),
                        Query(trap, *Held(context_), "PublicFolderId"), Query(trap, *Held(context_), "ContainerId")};
  if (scope.server.empty() || (scope.mailbox.empty() && !isPublic)) return kFailed;
  if (!TakeLiveContainer(trap)) return kFailed;
  if (!(isPublic ? MayListPublicFolders(trap) : MayListMailbox(trap, scope))) return kFailed;
  if (!(isPublic ? GoToPublicFolder(trap, scope) : GoToMailboxFolder(trap, scope))) return kFailed;
  // Two steps and one report: a listing that could not be taken fails the open even when its count can be told.
  trap([&] { listing_ = row.items == LiveItems::Folders ? Held(live_)->Folders() : Held(live_)->Messages(); });
  if (Fails(trap, *Held(context_), "Getting messages or folders.", [&] {
        recordCount_ = row.items == LiveItems::Folders ? Held(live_)->FolderCount() : Held(live_)->MessageCount();
      })) {
    return kFailed;
  }
  return SortRows(trap);
}

std::int16_t MapiDataSrc::OpenMessageDS() {
  if (!table_) throw ObjectNotSet();
  Trap trap;
  const LiveTableRow row = TableRow(trap, LiveOpen::Message);
  recordCount_ = 0;
  totals_ = false;
  const std::string server = context_->GetName();
  const std::string mailbox = context_->GetMailbox();
  const std::string messageId = Query(trap, *Held(context_), "MessageId");
  if (!TakeLiveContainer(trap)) return kFailed;
  // Kept: the drill-down permission here, ownership for folders.
  if (!Held(context_)->DrillDownPermission(server, mailbox)) {
    trap([&] { Held(context_)->FailureMessage("Mailbox does not exist, or you are not the owner.", false); });
    return kFailed;
  }
  if (Held(context_)->EncapsulateGotoMsgAttachmentFailure(*Held(live_), server, mailbox, messageId,
                                                          row.store == LiveStore::Mailbox, "Open message.")) {
    return kFailed;
  }
  trap([&] { listing_ = Held(live_)->Attachments(); });
  trap([&] { recordCount_ = Held(listing_)->Count(); });
  return SortRows(trap);
}

// ---- permission -----------------------------------------------------------------------------------------

bool MapiDataSrc::Refuse(Trap& trap) {
  trap([&] { Held(context_)->FailureMessage("Mailbox or folder does not exist, or you are not the owner.", false); });
  return false;
}

// Only who is no administrator is refused, and told so.
bool MapiDataSrc::MayListMailbox(Trap& trap, const LiveScope& scope) {
  const auto ownership = Held(context_)->OwnsMailbox(trap, *Held(live_), scope.server, scope.mailbox);
  bool administrator = false;
  trap([&] { administrator = Held(context_)->KalvoAdministrator(); });
  if (ownership.owns || administrator) return true;
  trap([&] {
    Held(context_)->TraceTable([&](std::string& out) {
      Append(out, "<p>User: ", ownership.user, "<br>Owner: ", ownership.owner, "<br>KalvoAdministrator: False</p>",
             kCrLf);
    });
  });
  return Refuse(trap);
}

bool MapiDataSrc::MayListPublicFolders(Trap& trap) {
  bool administrator = false;
  trap([&] { administrator = Held(context_)->KalvoAdministrator(); });
  if (administrator) return true;
  trap([&] {
    Held(context_)->TraceTable([](std::string& out) { Append(out, "<p>KalvoAdministrator: False</p>", kCrLf); });
  });
  return Refuse(trap);
}

// ---- positioning ----------------------------------------------------------------------------------------

bool MapiDataSrc::GoToMailboxFolder(Trap& trap, const LiveScope& scope) {
  if (scope.containerId.empty()) {
    return !Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, scope.mailbox, scope.container,
                                                            0, live::kByPath, "Open mailbox container.");
  }
  constexpr std::string_view kStep = "Open mailbox folder by identifier.";
  if (Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, scope.mailbox, "", 0, live::kByPath,
                                                      kStep)) {
    return false;
  }
  return !Fails(trap, *Held(context_), kStep,
                [&] { Held(live_)->GotoContainerById(scope.server, scope.containerId, live::kByPath); });
}

bool MapiDataSrc::GoToPublicFolder(Trap& trap, const LiveScope& scope) {
  return scope.publicFolderId.empty() ? GoToPublicFolderByPath(trap, scope) : GoToPublicFolderById(trap, scope);
}

bool MapiDataSrc::GoToPublicFolderByPath(Trap& trap, const LiveScope& scope) {
  const std::string& path = scope.mailbox;
  const std::string productMailbox = context_->KalvoCreatedMailboxName(scope.server);
  const auto context = Held(context_);
  trap([&] {
    context->TraceTable([&](std::string& out) {
      Append(out, "<p>Loading public folder mailbox \"", context->ServerHTMLEncode(productMailbox), "\" container \"",
             context->ServerHTMLEncode(path), "\"</p>", kCrLf);
    });
  });
  return !Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, productMailbox, path, 0,
                                                          live::kPublicFolders | live::kByPath,
                                                          "Loading public folder.", true);
}

bool MapiDataSrc::GoToPublicFolderById(Trap& trap, const LiveScope& scope) {
  const std::string& id = scope.publicFolderId;
  const std::string productMailbox = context_->KalvoCreatedMailboxName(scope.server);
  const auto context = Held(context_);
  trap([&] {
    context->TraceTable([&](std::string& out) {
      Append(out, "<p>Load by identifier \"", context->ServerHTMLEncode(id), "\"</p>", kCrLf);
    });
  });
  if (Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, productMailbox, "", 0,
                                                      live::kPublicFolders, "Open well-known mailbox.")) {
    return false;
  }
  if (Fails(trap, *Held(context_), "Open public folder by identifier.",
            [&] { Held(live_)->GotoContainerById(scope.server, id, live::kPublicFolders); })) {
    return false;
  }
  TracePosition(trap, id);
  return true;
}

// Where the browsing object stands now.
void MapiDataSrc::TracePosition(Trap& trap, std::string_view id) {
  const auto context = Held(context_);
  trap([&] {
    context->TraceTable([&](std::string& out) {
      Append(out, "<p>Load by identifier \"", context->ServerHTMLEncode(id), "\" produced mailbox \"",
             context->ServerHTMLEncode(Held(live_)->CurrentMailboxName()), "\" container \"",
             context->ServerHTMLEncode(Held(live_)->CurrentContainerName()), "\"</p>", kCrLf);
    });
  });
}

// ---- sorting --------------------------------------------------------------------------------------------

std::int16_t MapiDataSrc::SortRows(Trap& trap) {
  std::string field, order;
  trap([&] { field = Held(context_)->TableSortFieldInformation(); });
  if (field.empty()) field = table_->GetOrderBy();
  const auto trace = [&](auto&& maker) { trap([&] { Held(context_)->TraceTable(maker); }); };
  if (field.empty()) {
    trace([](std::string& out) { Append(out, "<p>No supplied or default sort Information.</p>", kCrLf); });
    return 0;
  }
  trap([&] { order = Held(context_)->TableSortOrderInformation(); });
  if (order.empty()) order = table_->GetDefaultSortOrder();
  const std::int32_t descending = EqualsIgnoringCase(order, TableConstants().gszAscendingSort()) ? 0 : 1;
  trace([&](std::string& out) { Append(out, "<p>Sort Information: \"", field, "\" \"", order, "\"</p>", kCrLf); });
  const bool failed =
      Fails(trap, *Held(context_), "Clear sort fields.", [&] { Held(listing_)->ClearSortFields(); }) ||
      Fails(trap, *Held(context_), "Add sort field.", [&] { Held(listing_)->AddSortField(field, descending); }) ||
      Fails(trap, *Held(context_), "Sort results.", [&] { Held(listing_)->Sort(); });
  return failed ? kFailed : std::int16_t{0};
}

// ---- moving and reading ---------------------------------------------------------------------------------

std::int16_t MapiDataSrc::MoveFirst() {
  Trap trap;
  if (recordCount_ == 0) return 0;
  trap([&] { Held(listing_)->MoveFirst(); });
  rowIndex_ = 1;
  return 0;
}

std::int16_t MapiDataSrc::MoveNext() {
  Trap trap;
  if (rowIndex_ > recordCount_) return 0;
  if (Fails(trap, *Held(context_), "Move next.", [&] { Held(listing_)->MoveNext(); })) {
    recordCount_ = 0;
  } else {
    trap([&] { rowIndex_ = NextRow(rowIndex_); });
  }
  return 0;
}

std::int16_t MapiDataSrc::MoveTotals() {
  totals_ = true;
  return 0;
}

std::int16_t MapiDataSrc::GetRowIndex() { return ToInt16(static_cast<double>(rowIndex_)); }

std::string_view MapiDataSrc::GetField(std::string_view szFieldName) {
  Trap trap;
  std::string text = answer_.Take();
  trap([&] {
    const auto listing = Held(listing_);
    AppendText(text, totals_ ? listing->Total(szFieldName) : listing->Field(szFieldName), locale_);
  });
  return answer_.Keep(std::move(text));
}

}  // namespace kalvo
