#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "host/audit/record.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo::audit {

class Trail;

// A browsing object that deletes nothing unrecorded: before a message is removed the intent is in the audit log, and
// after it the outcome. All else it hands on.
class RecordedContainer : public LiveContainer {
 public:
  // Whether the page may delete that message now.
  using MayRemove = std::function<bool(std::string_view messageId)>;

  RecordedContainer(std::shared_ptr<LiveContainer> inner, Trail& trail, Visitor visitor, MayRemove mayRemove);

  // Fails without touching the message when the page may not, and when the intent cannot be written.
  void RemoveMessage(std::string_view server, std::string_view mailbox, std::string_view folderId,
                     std::string_view messageId, std::int32_t flags) override;

  void GotoContainer(std::string_view server, std::string_view mailbox, std::string_view container,
                     std::int32_t OldThreshold, std::int32_t flags) override {
    inner_->GotoContainer(server, mailbox, container, OldThreshold, flags);
  }
  void GotoContainerById(std::string_view server, std::string_view folderId, std::int32_t flags) override {
    inner_->GotoContainerById(server, folderId, flags);
  }
  void GotoMsgAttachment(std::string_view server, std::string_view mailbox, std::string_view messageId,
                         std::int32_t flags) override {
    inner_->GotoMsgAttachment(server, mailbox, messageId, flags);
  }
  std::string MailboxOwner(std::string_view server, std::string_view mailbox) override {
    return inner_->MailboxOwner(server, mailbox);
  }
  std::string CurrentMailboxName() override { return inner_->CurrentMailboxName(); }
  std::string CurrentContainerName() override { return inner_->CurrentContainerName(); }
  std::shared_ptr<Listing> Folders() override { return inner_->Folders(); }
  std::int32_t FolderCount() override { return inner_->FolderCount(); }
  std::shared_ptr<Listing> Messages() override { return inner_->Messages(); }
  std::int32_t MessageCount() override { return inner_->MessageCount(); }
  std::shared_ptr<Listing> Attachments() override { return inner_->Attachments(); }
  std::shared_ptr<Listing> ResolveNameToAddress(std::string_view server, std::string_view mailbox) override {
    return inner_->ResolveNameToAddress(server, mailbox);
  }
  std::string MailboxHomeServer(std::string_view server, std::string_view mailbox) override {
    return inner_->MailboxHomeServer(server, mailbox);
  }
  void ResetNameResolution() override { inner_->ResetNameResolution(); }
  Value MessageSubject() override { return inner_->MessageSubject(); }
  Value MessageSender() override { return inner_->MessageSender(); }
  Value MessageSize() override { return inner_->MessageSize(); }
  Value MessageCreationDate() override { return inner_->MessageCreationDate(); }
  Value MessageModificationDate() override { return inner_->MessageModificationDate(); }

 private:
  Details Described(std::string_view server, std::string_view mailbox, std::string_view messageId, std::int32_t flags);

  std::shared_ptr<LiveContainer> inner_;
  Trail& trail_;
  Visitor visitor_;
  MayRemove mayRemove_;
};

}  // namespace kalvo::audit
