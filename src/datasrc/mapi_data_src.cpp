#include "kalvo/mapi_data_src.h"

#include "context/fails.h"
#include "datasrc/live_tables.h"
#include "kalvo/context.h"
#include "kalvo/table.h"
#include "kalvo/table_constants.h"
#include "platform/append.h"
#include "platform/conversion.h"
#include "platform/live_mailbox.h"
#include "platform/owned.h"
#include "platform/page_host.h"

namespace kalvo {

namespace {

constexpr std::int16_t kFailed = -1;

std::string Query(Trap& trap, const Context& context, std::string_view name) {
  std::string value;
  trap([&] { value = context.PageRequest().QueryText(name); });
  return value;
}

std::string_view Flag(bool flag) { return flag ? "True" : "False"; }

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
  trap([&] { messageIds = context_->PageRequest().QueryCount("MessageId"); });
  return messageIds != 0 ? OpenMessageDS() : OpenFolderDS();
}

bool MapiDataSrc::TakeLiveContainer(Trap& trap) {
  return !Fails(trap, *context_, "Get the live container object.", [&] { live_ = context_->LiveDriller(); });
}

LiveTableRow MapiDataSrc::TableRow(Trap& trap, LiveOpen opens) {
  for (const LiveTableRow& row : kLiveTables) {
    if (row.table == table_->GetId() && row.opens == opens) return row;
  }
  // Kept: the open goes on as for the messages of a mailbox.
  trap([&] { context_->FailureMessage("Invalid table identifier for MAPI table.", false); });
  return {table_->GetId(), opens, LiveStore::Mailbox, LiveItems::Messages};
}

std::int16_t MapiDataSrc::OpenFolderDS() {
  if (!table_) throw ObjectNotSet();
  Trap trap;
  const LiveTableRow row = TableRow(trap, LiveOpen::Folder);
  const bool isPublic = row.store == LiveStore::PublicFolders;
  recordCount_ = 0;
  totals_ = false;
  if (context_->GetName().empty() || (context_->GetMailbox().empty() && !isPublic)) return kFailed;
  if (!TakeLiveContainer(trap)) return kFailed;
  if (!(isPublic ? MayListPublicFolders(trap) : MayListMailbox(trap))) return kFailed;
  if (!(isPublic ? GoToPublicFolder(trap) : GoToMailboxFolder(trap))) return kFailed;
  // Two steps and one report: a listing that could not be taken fails the open even when its count can be told.
  trap([&] { listing_ = row.items == LiveItems::Folders ? live_->Folders() : live_->Messages(); });
  if (Fails(trap, *context_, "Getting messages or folders.",
            [&] { recordCount_ = row.items == LiveItems::Folders ? live_->FolderCount() : live_->MessageCount(); })) {
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
  const std::string messageId = Query(trap, *context_, "MessageId");
  if (!TakeLiveContainer(trap)) return kFailed;
  // Kept: the drill-down permission here, ownership for folders.
  if (!context_->DrillDownPermission(server, mailbox)) {
    trap([&] { context_->FailureMessage("Mailbox does not exist, or you are not the owner.", false); });
    return kFailed;
  }
  if (context_->EncapsulateGotoMsgAttachmentFailure(*live_, server, mailbox, messageId, row.store == LiveStore::Mailbox,
                                                    "Open message.")) {
    return kFailed;
  }
  trap([&] { listing_ = live_->Attachments(); });
  trap([&] {
    if (!listing_) throw ObjectNotSet();
    recordCount_ = listing_->Count();
  });
  return SortRows(trap);
}

// ---- permission -----------------------------------------------------------------------------------------

bool MapiDataSrc::Refuse(Trap& trap) {
  trap([&] { context_->FailureMessage("Mailbox or folder does not exist, or you are not the owner.", false); });
  return false;
}

bool MapiDataSrc::MayListMailbox(Trap& trap) {
  const auto ownership = context_->OwnsMailbox(trap, *live_, context_->GetName(), context_->GetMailbox());
  bool administrator = false;
  trap([&] { administrator = context_->KalvoAdministrator(); });
  if (ownership.owns || administrator) return true;
  trap([&] {
    context_->TraceTable([&](std::string& out) {
      Append(out, "<p>User: ", ownership.user, "<br>Owner: ", ownership.owner,
             "<br>KalvoAdministrator: ", Flag(administrator), "</p>", kCrLf);
    });
  });
  return Refuse(trap);
}

bool MapiDataSrc::MayListPublicFolders(Trap& trap) {
  bool administrator = false;
  trap([&] { administrator = context_->KalvoAdministrator(); });
  if (administrator) return true;
  trap([&] {
    context_->TraceTable(
        [&](std::string& out) { Append(out, "<p>KalvoAdministrator: ", Flag(administrator), "</p>", kCrLf); });
  });
  return Refuse(trap);
}

// ---- positioning ----------------------------------------------------------------------------------------

bool MapiDataSrc::GoToMailboxFolder(Trap& trap) {
  const std::string& server = context_->GetName();
  const std::string& mailbox = context_->GetMailbox();
  const std::string folderId = Query(trap, *context_, "ContainerId");
  if (folderId.empty()) {
    return !context_->EncapsulateGotoContainerFailure(*live_, server, mailbox, context_->GetContainer(), 0,
                                                      live::kByPath, "Open mailbox container.");
  }
  constexpr std::string_view kStep = "Open mailbox folder by identifier.";
  if (context_->EncapsulateGotoContainerFailure(*live_, server, mailbox, "", 0, live::kByPath, kStep)) return false;
  return !Fails(trap, *context_, kStep, [&] { live_->GotoContainerById(server, folderId, live::kByPath); });
}

bool MapiDataSrc::GoToPublicFolder(Trap& trap) {
  const std::string id = Query(trap, *context_, "PublicFolderId");
  return id.empty() ? GoToPublicFolderByPath(trap) : GoToPublicFolderById(trap, id);
}

bool MapiDataSrc::GoToPublicFolderByPath(Trap& trap) {
  const std::string& server = context_->GetName();
  const std::string& path = context_->GetMailbox();
  const std::string productMailbox = context_->KalvoCreatedMailboxName(server);
  trap([&] {
    context_->TraceTable([&](std::string& out) {
      Append(out, "<p>Loading public folder mailbox \"", context_->ServerHTMLEncode(productMailbox), "\" container \"",
             context_->ServerHTMLEncode(path), "\"</p>", kCrLf);
    });
  });
  return !context_->EncapsulateGotoContainerFailure(
      *live_, server, productMailbox, path, 0, live::kPublicFolders | live::kByPath, "Loading public folder.", true);
}

bool MapiDataSrc::GoToPublicFolderById(Trap& trap, const std::string& id) {
  const std::string& server = context_->GetName();
  const std::string productMailbox = context_->KalvoCreatedMailboxName(server);
  trap([&] {
    context_->TraceTable([&](std::string& out) {
      Append(out, "<p>Load by identifier \"", context_->ServerHTMLEncode(id), "\"</p>", kCrLf);
    });
  });
  if (context_->EncapsulateGotoContainerFailure(*live_, server, productMailbox, "", 0, live::kPublicFolders,
                                                "Open well-known mailbox.")) {
    return false;
  }
  if (Fails(trap, *context_, "Open public folder by identifier.",
            [&] { live_->GotoContainerById(server, id, live::kPublicFolders); })) {
    return false;
  }
  trap([&] {
    context_->TraceTable([&](std::string& out) {
      Append(out, "<p>Load by identifier \"", context_->ServerHTMLEncode(id), "\" produced mailbox \"",
             context_->ServerHTMLEncode(live_->CurrentMailboxName()), "\" container \"",
             context_->ServerHTMLEncode(live_->CurrentContainerName()), "\"</p>", kCrLf);
    });
  });
  return true;
}

// ---- sorting --------------------------------------------------------------------------------------------

std::int16_t MapiDataSrc::SortRows(Trap& trap) {
  std::string field, order;
  trap([&] { field = context_->TableSortFieldInformation(); });
  if (field.empty()) field = table_->GetOrderBy();
  const auto trace = [&](auto&& maker) { trap([&] { context_->TraceTable(maker); }); };
  if (field.empty()) {
    trace([](std::string& out) { Append(out, "<p>No supplied or default sort Information.</p>", kCrLf); });
    return 0;
  }
  trap([&] { order = context_->TableSortOrderInformation(); });
  if (order.empty()) order = table_->GetDefaultSortOrder();
  const std::int32_t descending = EqualsIgnoringCase(order, TableConstants().gszAscendingSort()) ? 0 : 1;
  trace([&](std::string& out) { Append(out, "<p>Sort Information: \"", field, "\" \"", order, "\"</p>", kCrLf); });
  const auto listing = [&]() -> Listing& {
    if (!listing_) throw ObjectNotSet();
    return *listing_;
  };
  const bool failed = Fails(trap, *context_, "Clear sort fields.", [&] { listing().ClearSortFields(); }) ||
                      Fails(trap, *context_, "Add sort field.", [&] { listing().AddSortField(field, descending); }) ||
                      Fails(trap, *context_, "Sort results.", [&] { listing().Sort(); });
  return failed ? kFailed : std::int16_t{0};
}

// ---- moving and reading ---------------------------------------------------------------------------------

std::int16_t MapiDataSrc::MoveFirst() {
  Trap trap;
  texts_.Forget();
  if (recordCount_ == 0) return 0;
  trap([&] {
    if (!listing_) throw ObjectNotSet();
    listing_->MoveFirst();
  });
  rowIndex_ = 1;
  return 0;
}

std::int16_t MapiDataSrc::MoveNext() {
  Trap trap;
  texts_.Forget();
  if (rowIndex_ > recordCount_) return 0;
  if (Fails(trap, *context_, "Move next.", [&] {
        if (!listing_) throw ObjectNotSet();
        listing_->MoveNext();
      })) {
    recordCount_ = 0;
  } else {
    ++rowIndex_;
  }
  return 0;
}

std::int16_t MapiDataSrc::MoveTotals() {
  texts_.Forget();
  totals_ = true;
  return 0;
}

std::int16_t MapiDataSrc::GetRowIndex() { return ToInt16(static_cast<double>(rowIndex_)); }

std::string_view MapiDataSrc::GetField(std::string_view szFieldName) {
  Trap trap;
  std::string& text = texts_.Of(szFieldName);
  trap([&] {
    if (!listing_) throw ObjectNotSet();
    AppendText(text, totals_ ? listing_->Total(szFieldName) : listing_->Field(szFieldName), locale_);
  });
  return text;
}

}  // namespace kalvo
