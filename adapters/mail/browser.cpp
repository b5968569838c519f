#include "adapters/mail/browser.h"

#include <ctime>
#include <utility>

#include "adapters/mail/errors.h"
#include "adapters/mail/items.h"
#include "adapters/mail/shown_text.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::mail {

namespace {

bool InPublicFolders(std::int32_t flags) { return (flags & live::kPublicFolders) != 0; }
bool OpensPath(std::int32_t flags) { return (flags & live::kByPath) != 0; }

KeptBinding Kept(const Binding& binding, std::string folder = {}) {
  return {binding.key, std::string(binding.server), std::string(binding.mailbox), std::move(folder)};
}

}  // namespace

Browser::Browser(std::shared_ptr<MailStore> store, std::string who) : store_(std::move(store)), who_(std::move(who)) {}
Browser::~Browser() = default;

// ---- positions ------------------------------------------------------------------------------------------

void Browser::GotoContainer(std::string_view server, std::string_view mailbox, std::string_view container, std::int32_t,
                            std::int32_t flags) {
  StandNowhere();
  const Tree tree = TreeOf(server, mailbox, flags);
  const FolderPath path = OpensPath(flags) ? ParsePath(container) : FolderPath();
  if (path.empty()) return StandOn(tree, "", {});
  std::string folder = store_->FindFolder(tree, path);
  FolderPath found = store_->PathOf(tree, folder);
  StandOn(tree, std::move(folder), std::move(found));
}

void Browser::GotoContainerById(std::string_view server, std::string_view folderId, std::int32_t flags) {
  if (!position_) throw NoSuchFolder("No mailbox is open to find the folder in.");
  const Tree tree = position_->tree;
  const auto names = position_->names;
  StandNowhere();
  if (tree.IsPublic() != InPublicFolders(flags) || !EqualsIgnoringCase(tree.server, server)) {
    throw NoSuchFolder("The folder does not belong to the mailbox that is open.");
  }
  std::string folder = ReadFolderIdentifier(BindingOf(tree), folderId);
  FolderPath path = store_->PathOf(tree, folder);
  position_ = Position{names, tree, std::move(folder), std::move(path), nullptr, nullptr};
}

void Browser::GotoMsgAttachment(std::string_view server, std::string_view mailbox, std::string_view messageId,
                                std::int32_t flags) {
  StandNowhere();
  const Tree tree = TreeOf(server, mailbox, flags);
  MessageKeys keys = ReadMessageIdentifier(BindingOf(tree), messageId);
  FolderPath path = store_->PathOf(tree, keys.folder);
  MessageDetails message = store_->Message(tree, keys.folder, keys.message);
  StandOn(tree, std::move(keys.folder), std::move(path));
  message_ = std::move(message);
}

void Browser::RemoveMessage(std::string_view server, std::string_view mailbox, std::string_view,
                            std::string_view messageId, std::int32_t flags) {
  const Tree tree = TreeOf(server, mailbox, flags);
  const MessageKeys keys = ReadMessageIdentifier(BindingOf(tree), messageId);
  StandNowhere();
  store_->Remove(tree, keys.folder, keys.message, {who_, std::time(nullptr)});
}

std::string Browser::CurrentMailboxName() {
  const Tree& tree = Standing().tree;
  return tree.IsPublic() ? ProductMailbox(tree.server) : tree.mailbox->Address();
}

std::string Browser::CurrentContainerName() { return PathText(Standing().path); }

// ---- names ----------------------------------------------------------------------------------------------

std::string Browser::MailboxOwner(std::string_view server, std::string_view mailbox) {
  return Names().Find(server, mailbox).account;
}

std::shared_ptr<Listing> Browser::ResolveNameToAddress(std::string_view server, std::string_view mailbox) {
  return std::make_shared<ItemListing>(MakeAddressItems({Names().Resolve(server, mailbox).Address()}));
}

std::string Browser::MailboxHomeServer(std::string_view server, std::string_view mailbox) {
  return Names().Resolve(server, mailbox).server;
}

void Browser::ResetNameResolution() { names_.reset(); }

const Directory& Browser::Names() {
  if (!names_) names_ = store_->Mailboxes();
  return *names_;
}

// ---- listings -------------------------------------------------------------------------------------------

std::shared_ptr<Listing> Browser::Folders() { return std::make_shared<ItemListing>(FolderItems()); }
std::int32_t Browser::FolderCount() { return FolderItems()->Count(); }
std::shared_ptr<Listing> Browser::Messages() { return std::make_shared<ItemListing>(MessageItems()); }
std::int32_t Browser::MessageCount() { return MessageItems()->Count(); }

std::shared_ptr<Listing> Browser::Attachments() {
  return std::make_shared<ItemListing>(MakeAttachmentItems(Message().attachments));
}

const std::shared_ptr<ListingItems>& Browser::FolderItems() {
  Position& at = Standing();
  if (!at.folders) {
    // The names keep the tree's mailbox.
    const auto datesOf = [store = store_, names = at.names, tree = at.tree](const std::string& folder) {
      return store->DatesOf(tree, folder);
    };
    at.folders = MakeFolderItems(Kept(BindingOf(at.tree)), store_->Folders(at.tree, at.folder), datesOf);
  }
  return at.folders;
}

const std::shared_ptr<ListingItems>& Browser::MessageItems() {
  Position& at = Standing();
  if (!at.messages) {
    at.messages = MakeMessageItems(Kept(BindingOf(at.tree), at.folder), store_->Messages(at.tree, at.folder));
  }
  return at.messages;
}

// ---- the message ----------------------------------------------------------------------------------------

Value Browser::MessageSubject() { return Message().subject; }
Value Browser::MessageSender() { return Message().sender; }
Value Browser::MessageSize() { return Message().size; }
Value Browser::MessageCreationDate() { return DateValue(Message().sent); }
Value Browser::MessageModificationDate() { return DateValue(Message().received); }

const MessageDetails& Browser::Message() {
  if (!message_) throw StoreFailed("No message is open.");
  return *message_;
}

// ---- where it stands ------------------------------------------------------------------------------------

Tree TreeNamed(const Directory& names, std::string_view server, std::string_view mailbox, std::int32_t flags) {
  if (InPublicFolders(flags)) return {names.Server(server).name, nullptr};
  const Mailbox& found = names.Find(server, mailbox);
  return {found.server, &found};
}

Binding Browser::BindingOf(const Tree& tree) {
  if (tree.IsPublic()) return {store_->Key(), tree.server, ""};
  return {store_->Key(), tree.server, tree.mailbox->location};
}

void Browser::StandOn(Tree tree, std::string folder, FolderPath path) {
  position_ = Position{names_, std::move(tree), std::move(folder), std::move(path), nullptr, nullptr};
}

void Browser::StandNowhere() {
  position_.reset();
  message_.reset();
}

Browser::Position& Browser::Standing() {
  if (!position_) throw StoreFailed("No mailbox or folder is open.");
  return *position_;
}

}  // namespace kalvo::mail
