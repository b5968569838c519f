#include "kalvo/mapi_data_src.h"

#include "context/steps.h"
#include "datasrc/live_tables.h"
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
constexpr std::string_view kRefusal = "Mailbox or folder does not exist, or you are not the owner.";

std::string Query(Steps& steps, const Context& context, std::string_view name) {
  std::string value;
  steps.Try([&] { value = context.GetRequest()->QueryText(name); });
  return value;
}

}  // namespace

MapiDataSrc::MapiDataSrc(const Locale& locale) : locale_(locale) {}
MapiDataSrc::~MapiDataSrc() = default;

// ---- opening --------------------------------------------------------------------------------------------

std::int16_t MapiDataSrc::OpenDS() {
  Held(table_);
  Steps steps(context_);
  std::int32_t messageIds = 0;
  steps.Try([&] { messageIds = Held(context_)->GetRequest()->QueryCount("MessageId"); });
  return messageIds != 0 ? OpenMessageDS() : OpenFolderDS();
}

bool MapiDataSrc::TakeLiveContainer(Steps& steps) {
  return !steps.Fails("Get the live container object.", [&] { live_ = Held(context_)->LiveDriller(); });
}

LiveTableRow MapiDataSrc::TableRow(Steps& steps, LiveOpen opens) {
  for (const LiveTableRow& row : kLiveTables) {
    if (row.table == table_->GetId() && row.opens == opens) return row;
  }
  // Kept: the open goes on as for the messages of a mailbox, as a page's own browsing object sees.
  steps.Refuse("Invalid table identifier for MAPI table.");
  return {table_->GetId(), opens, LiveStore::Mailbox, LiveItems::Messages};
}

std::int16_t MapiDataSrc::OpenFolderDS() {
  Held(table_);
  Steps steps(context_);
  const LiveTableRow row = TableRow(steps, LiveOpen::Folder);
  const bool isPublic = row.store == LiveStore::PublicFolders;
  recordCount_ = 0;
  totals_ = false;
  const LiveScope scope{context_->GetName(), context_->GetMailbox(), context_->GetContainer(),
                        Query(steps, *Held(context_), "PublicFolderId"), Query(steps, *Held(context_), "ContainerId")};
  if (scope.server.empty() || (scope.mailbox.empty() && !isPublic)) return kFailed;
  if (!TakeLiveContainer(steps)) return kFailed;
  if (!(isPublic ? MayListPublicFolders(steps) : MayListMailbox(steps, scope))) return kFailed;
  if (!(isPublic ? GoToPublicFolder(steps, scope) : GoToMailboxFolder(steps, scope))) return kFailed;
  // Two steps and one report: a listing that could not be taken fails the open even when its count can be told.
  steps.Try([&] { listing_ = row.items == LiveItems::Folders ? Held(live_)->Folders() : Held(live_)->Messages(); });
  if (steps.Fails("Getting messages or folders.", [&] {
        recordCount_ = row.items == LiveItems::Folders ? Held(live_)->FolderCount() : Held(live_)->MessageCount();
      })) {
    return kFailed;
  }
  return SortRows(steps);
}

std::int16_t MapiDataSrc::OpenMessageDS() {
  Held(table_);
  Steps steps(context_);
  const LiveTableRow row = TableRow(steps, LiveOpen::Message);
  recordCount_ = 0;
  totals_ = false;
  const std::string server = context_->GetName();
  const std::string mailbox = context_->GetMailbox();
  const std::string messageId = Query(steps, *Held(context_), "MessageId");
  if (!TakeLiveContainer(steps)) return kFailed;
  // Kept: the drill-down permission here, ownership for folders, for administrators who gave the one alone.
  if (!Held(context_)->DrillDownPermission(server, mailbox)) {
    steps.Refuse("Mailbox does not exist, or you are not the owner.");
    return kFailed;
  }
  if (Held(context_)->EncapsulateGotoMsgAttachmentFailure(*Held(live_), server, mailbox, messageId,
                                                          row.store == LiveStore::Mailbox, "Open message.")) {
    return kFailed;
  }
  steps.Try([&] { listing_ = Held(live_)->Attachments(); });
  steps.Try([&] { recordCount_ = Held(listing_)->Count(); });
  return SortRows(steps);
}

// ---- permission -----------------------------------------------------------------------------------------

// Only who is no administrator is refused, and told so.
bool MapiDataSrc::MayListMailbox(Steps& steps, const LiveScope& scope) {
  const auto ownership = Held(context_)->OwnsMailbox(steps.GetTrap(), *Held(live_), scope.server, scope.mailbox);
  bool administrator = false;
  steps.Try([&] { administrator = Held(context_)->KalvoAdministrator(); });
  if (ownership.owns || administrator) return true;
  steps.TraceTable([&](std::string& out) {
    Append(out, "<p>User: ", ownership.user, "<br>Owner: ", ownership.owner, "<br>KalvoAdministrator: False</p>",
           kCrLf);
  });
  return steps.Refuse(kRefusal);
}

bool MapiDataSrc::MayListPublicFolders(Steps& steps) {
  bool administrator = false;
  steps.Try([&] { administrator = Held(context_)->KalvoAdministrator(); });
  if (administrator) return true;
  steps.TraceTable([](std::string& out) { Append(out, "<p>KalvoAdministrator: False</p>", kCrLf); });
  return steps.Refuse(kRefusal);
}

// ---- positioning ----------------------------------------------------------------------------------------

bool MapiDataSrc::GoToMailboxFolder(Steps& steps, const LiveScope& scope) {
  if (scope.containerId.empty()) {
    return !Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, scope.mailbox, scope.container,
                                                            0, live::kByPath, "Open mailbox container.");
  }
  constexpr std::string_view kStep = "Open mailbox folder by identifier.";
  if (Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, scope.mailbox, "", 0, live::kByPath,
                                                      kStep)) {
    return false;
  }
  return !steps.Fails(kStep, [&] { Held(live_)->GotoContainerById(scope.server, scope.containerId, live::kByPath); });
}

bool MapiDataSrc::GoToPublicFolder(Steps& steps, const LiveScope& scope) {
  return scope.publicFolderId.empty() ? GoToPublicFolderByPath(steps, scope) : GoToPublicFolderById(steps, scope);
}

bool MapiDataSrc::GoToPublicFolderByPath(Steps& steps, const LiveScope& scope) {
  const std::string& path = scope.mailbox;
  const std::string productMailbox = context_->KalvoCreatedMailboxName(scope.server);
  const auto context = Held(context_);
  steps.TraceTable([&](std::string& out) {
    Append(out, "<p>Loading public folder mailbox \"", context->ServerHTMLEncode(productMailbox), "\" container \"",
           context->ServerHTMLEncode(path), "\"</p>", kCrLf);
  });
  return !Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, productMailbox, path, 0,
                                                          live::kPublicFolders | live::kByPath,
                                                          "Loading public folder.", true);
}

bool MapiDataSrc::GoToPublicFolderById(Steps& steps, const LiveScope& scope) {
  const std::string& id = scope.publicFolderId;
  const std::string productMailbox = context_->KalvoCreatedMailboxName(scope.server);
  const auto context = Held(context_);
  steps.TraceTable([&](std::string& out) {
    Append(out, "<p>Load by identifier \"", context->ServerHTMLEncode(id), "\"</p>", kCrLf);
  });
  if (Held(context_)->EncapsulateGotoContainerFailure(*Held(live_), scope.server, productMailbox, "", 0,
                                                      live::kPublicFolders, "Open well-known mailbox.")) {
    return false;
  }
  if (steps.Fails("Open public folder by identifier.",
                  [&] { Held(live_)->GotoContainerById(scope.server, id, live::kPublicFolders); })) {
    return false;
  }
  TracePosition(steps, id);
  return true;
}

// Where the browsing object stands now.
void MapiDataSrc::TracePosition(Steps& steps, std::string_view id) {
  const auto context = Held(context_);
  steps.TraceTable([&](std::string& out) {
    Append(out, "<p>Load by identifier \"", context->ServerHTMLEncode(id), "\" produced mailbox \"",
           context->ServerHTMLEncode(Held(live_)->CurrentMailboxName()), "\" container \"",
           context->ServerHTMLEncode(Held(live_)->CurrentContainerName()), "\"</p>", kCrLf);
  });
}

// ---- sorting --------------------------------------------------------------------------------------------

std::int16_t MapiDataSrc::SortRows(Steps& steps) {
  std::string field, order;
  steps.Try([&] { field = Held(context_)->TableSortFieldInformation(); });
  if (field.empty()) field = table_->GetOrderBy();
  if (field.empty()) {
    steps.TraceTable([](std::string& out) { Append(out, "<p>No supplied or default sort Information.</p>", kCrLf); });
    return 0;
  }
  steps.Try([&] { order = Held(context_)->TableSortOrderInformation(); });
  if (order.empty()) order = table_->GetDefaultSortOrder();
  const std::int32_t descending = EqualsIgnoringCase(order, TableConstants().gszAscendingSort()) ? 0 : 1;
  steps.TraceTable(
      [&](std::string& out) { Append(out, "<p>Sort Information: \"", field, "\" \"", order, "\"</p>", kCrLf); });
  const bool failed = steps.Fails("Clear sort fields.", [&] { Held(listing_)->ClearSortFields(); }) ||
                      steps.Fails("Add sort field.", [&] { Held(listing_)->AddSortField(field, descending); }) ||
                      steps.Fails("Sort results.", [&] { Held(listing_)->Sort(); });
  return failed ? kFailed : std::int16_t{0};
}

// ---- moving and reading ---------------------------------------------------------------------------------

std::int16_t MapiDataSrc::MoveFirst() {
  Steps steps(context_);
  if (recordCount_ == 0) return 0;
  steps.Try([&] { Held(listing_)->MoveFirst(); });
  rowIndex_ = 1;
  return 0;
}

std::int16_t MapiDataSrc::MoveNext() {
  Steps steps(context_);
  if (rowIndex_ > recordCount_) return 0;
  if (steps.Fails("Move next.", [&] { Held(listing_)->MoveNext(); })) {
    recordCount_ = 0;
  } else {
    steps.Try([&] { rowIndex_ = NextRow(); });
  }
  return 0;
}

std::int16_t MapiDataSrc::MoveTotals() {
  totals_ = true;
  return 0;
}

std::string_view MapiDataSrc::GetField(std::string_view szFieldName) {
  Steps steps(context_);
  std::string text = TakeAnswer();
  steps.Try([&] {
    const auto listing = Held(listing_);
    AppendText(text, totals_ ? listing->Total(szFieldName) : listing->Field(szFieldName), locale_);
  });
  return KeepAnswer(std::move(text));
}

}  // namespace kalvo
