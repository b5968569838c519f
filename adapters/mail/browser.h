#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/mail/directory.h"
#include "adapters/mail/mail_store.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo::mail {

// The tree that a page's words mean. With the public-folder bit the mailbox is the product's own, or in message calls
// a folder's path: the server alone tells the tree. Fails as `Directory::Find` does.
Tree TreeNamed(const Directory& names, std::string_view server, std::string_view mailbox, std::int32_t flags);

// The browsing object over any mail store. It resolves names, reads the flags, checks identifiers against the tree
// that they have to belong to, and keeps the position; the store is asked for folders and messages by its own keys.
//
// A positioning that fails leaves it standing nowhere. Questions about names and owners leave the position alone.
class Browser : public LiveContainer {
 public:
  // `who` is the logon name of whoever browses: a deleted message is held with it.
  explicit Browser(std::shared_ptr<MailStore> store, std::string who = "");
  ~Browser() override;

  void GotoContainer(std::string_view server, std::string_view mailbox, std::string_view container,
                     std::int32_t OldThreshold, std::int32_t flags) override;
  void GotoContainerById(std::string_view server, std::string_view folderId, std::int32_t flags) override;
  void GotoMsgAttachment(std::string_view server, std::string_view mailbox, std::string_view messageId,
                         std::int32_t flags) override;
  std::string MailboxOwner(std::string_view server, std::string_view mailbox) override;
  std::string CurrentMailboxName() override;
  std::string CurrentContainerName() override;
  std::shared_ptr<Listing> Folders() override;
  std::int32_t FolderCount() override;
  std::shared_ptr<Listing> Messages() override;
  std::int32_t MessageCount() override;
  std::shared_ptr<Listing> Attachments() override;
  std::shared_ptr<Listing> ResolveNameToAddress(std::string_view server, std::string_view mailbox) override;
  std::string MailboxHomeServer(std::string_view server, std::string_view mailbox) override;
  void ResetNameResolution() override;
  Value MessageSubject() override;
  Value MessageSender() override;
  Value MessageSize() override;
  Value MessageCreationDate() override;
  Value MessageModificationDate() override;
  void RemoveMessage(std::string_view server, std::string_view mailbox, std::string_view folderId,
                     std::string_view messageId, std::int32_t flags) override;

 private:
  // The folder that the container stands on, with what was listed of it.
  struct Position {
    std::shared_ptr<const Directory> names;  // keeps the tree's mailbox
    Tree tree;
    std::string folder;
    FolderPath path;
    std::shared_ptr<ListingItems> folders, messages;
  };

  const Directory& Names();
  Tree TreeOf(std::string_view server, std::string_view mailbox, std::int32_t flags) {
    return TreeNamed(Names(), server, mailbox, flags);
  }
  Binding BindingOf(const Tree& tree);
  void StandOn(Tree tree, std::string folder, FolderPath path);
  void StandNowhere();
  Position& Standing();
  const MessageDetails& Message();
  const std::shared_ptr<ListingItems>& FolderItems();
  const std::shared_ptr<ListingItems>& MessageItems();

  std::shared_ptr<MailStore> store_;
  std::string who_;
  std::shared_ptr<const Directory> names_;
  std::optional<Position> position_;
  std::optional<MessageDetails> message_;
};

}  // namespace kalvo::mail
