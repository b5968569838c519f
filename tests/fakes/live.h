#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fakes/steps.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo::test {

using LiveItem = std::map<std::string, Value>;

// Steps: MoveFirst, MoveNext, Count, Field, Total, ClearSortFields, AddSortField, Sort. A field that an item
// does not have fails with 13.
class FakeListing : public Listing {
 public:
  explicit FakeListing(Steps& steps) : steps_(steps) {}

  std::vector<LiveItem> items;
  LiveItem totals;

  void MoveFirst() override { steps_.Do("MoveFirst"), at_ = 0; }
  void MoveNext() override { steps_.Do("MoveNext"), ++at_; }
  std::int32_t Count() override { return steps_.Do("Count"), static_cast<std::int32_t>(items.size()); }
  Value Field(std::string_view name) override {
    steps_.Do("Field", name);
    return at_ < items.size() ? Of(items[at_], name) : Value(std::string());
  }
  Value Total(std::string_view name) override { return steps_.Do("Total", name), Of(totals, name); }
  void ClearSortFields() override { steps_.Do("ClearSortFields"); }
  void AddSortField(std::string_view name, std::int32_t descending) override {
    steps_.Do("AddSortField", name, descending);
  }
  void Sort() override { steps_.Do("Sort"); }

 private:
  static Value Of(const LiveItem& item, std::string_view name) {
    const auto found = item.find(std::string(name));
    if (found == item.end()) throw TypeMismatch();
    return found->second;
  }

  Steps& steps_;
  std::size_t at_ = 0;
};

// A browsing object whose answers are written down. Every operation is a step of its own name; those with
// arguments record them.
class FakeLive : public LiveContainer {
 public:
  Steps steps;
  std::string owner = "DOMAIN\\ken", homeServer = "EXCH01", mailboxName = "Ken", containerName = "\\Inbox";
  std::shared_ptr<FakeListing> folders = std::make_shared<FakeListing>(steps);
  std::shared_ptr<FakeListing> messages = std::make_shared<FakeListing>(steps);
  std::shared_ptr<FakeListing> attachments = std::make_shared<FakeListing>(steps);
  std::shared_ptr<FakeListing> candidates = std::make_shared<FakeListing>(steps);
  Value subject = std::string("Hello"), sender = std::string("Ann"), size = 1536, created = 36162.0, modified = 36163.5;

  void GotoContainer(std::string_view server, std::string_view mailbox, std::string_view container,
                     std::int32_t threshold, std::int32_t flags) override {
    steps.Do("GotoContainer", server, mailbox, container, threshold, flags);
  }
  void GotoContainerById(std::string_view server, std::string_view folderId, std::int32_t flags) override {
    steps.Do("GotoContainerById", server, folderId, flags);
  }
  void GotoMsgAttachment(std::string_view server, std::string_view mailbox, std::string_view messageId,
                         std::int32_t flags) override {
    steps.Do("GotoMsgAttachment", server, mailbox, messageId, flags);
  }
  std::string MailboxOwner(std::string_view server, std::string_view mailbox) override {
    return steps.Do("MailboxOwner", server, mailbox), owner;
  }
  std::string CurrentMailboxName() override { return steps.Do("CurrentMailboxName"), mailboxName; }
  std::string CurrentContainerName() override { return steps.Do("CurrentContainerName"), containerName; }
  std::shared_ptr<Listing> Folders() override { return steps.Do("Folders"), folders; }
  std::int32_t FolderCount() override { return steps.Do("FolderCount"), Size(*folders); }
  std::shared_ptr<Listing> Messages() override { return steps.Do("Messages"), messages; }
  std::int32_t MessageCount() override { return steps.Do("MessageCount"), Size(*messages); }
  std::shared_ptr<Listing> Attachments() override { return steps.Do("Attachments"), attachments; }
  std::shared_ptr<Listing> ResolveNameToAddress(std::string_view server, std::string_view mailbox) override {
    return steps.Do("ResolveNameToAddress", server, mailbox), candidates;
  }
  std::string MailboxHomeServer(std::string_view server, std::string_view mailbox) override {
    return steps.Do("MailboxHomeServer", server, mailbox), homeServer;
  }
  void ResetNameResolution() override { steps.Do("ResetNameResolution"); }
  Value MessageSubject() override { return steps.Do("MessageSubject"), subject; }
  Value MessageSender() override { return steps.Do("MessageSender"), sender; }
  Value MessageSize() override { return steps.Do("MessageSize"), size; }
  Value MessageCreationDate() override { return steps.Do("MessageCreationDate"), created; }
  Value MessageModificationDate() override { return steps.Do("MessageModificationDate"), modified; }
  void RemoveMessage(std::string_view server, std::string_view mailbox, std::string_view folderId,
                     std::string_view messageId, std::int32_t flags) override {
    steps.Do("RemoveMessage", server, mailbox, folderId, messageId, flags);
  }

 private:
  static std::int32_t Size(const FakeListing& listing) { return static_cast<std::int32_t>(listing.items.size()); }
};

}  // namespace kalvo::test
