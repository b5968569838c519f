// Script objects as the live mailbox browsing object and its listings.
#include "host/script/late_binding/adapters.h"
#include "host/script/late_binding/late_bound.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::host {
namespace {

class ScriptListing : public Listing, public LateBound {
 public:
  ScriptListing(Engine& engine, duk_idx_t index) : LateBound(engine, index, "listing") {}

  void MoveFirst() override { Ask("MoveFirst"); }
  void MoveNext() override { Ask("MoveNext"); }
  std::int32_t Count() override { return ToInt32(Ask("Count")); }
  Value Field(std::string_view name) override { return Ask("Field", name); }
  Value Total(std::string_view name) override { return Ask("Total", name); }
  void ClearSortFields() override { Ask("ClearSortFields"); }
  void AddSortField(std::string_view name, std::int32_t descending) override { Ask("AddSortField", name, descending); }
  void Sort() override { Ask("Sort"); }
};

class ScriptLiveContainer : public LiveContainer, public LateBound {
 public:
  ScriptLiveContainer(Engine& engine, duk_idx_t index) : LateBound(engine, index, "live container") {}
  using Text = std::string_view;

  void GotoContainer(Text server, Text mailbox, Text container, std::int32_t oldThreshold,
                     std::int32_t flags) override {
    Ask("GotoContainer", server, mailbox, container, oldThreshold, flags);
  }
  void GotoContainerById(Text server, Text folderId, std::int32_t flags) override {
    Ask("GotoContainerById", server, folderId, flags);
  }
  void GotoMsgAttachment(Text server, Text mailbox, Text messageId, std::int32_t flags) override {
    Ask("GotoMsgAttachment", server, mailbox, messageId, flags);
  }
  std::string MailboxOwner(Text server, Text mailbox) override { return AskText("MailboxOwner", server, mailbox); }
  std::string CurrentMailboxName() override { return AskText("CurrentMailboxName"); }
  std::string CurrentContainerName() override { return AskText("CurrentContainerName"); }
  std::shared_ptr<Listing> Folders() override { return AskListing("Folders"); }
  std::int32_t FolderCount() override { return ToInt32(Ask("FolderCount")); }
  std::shared_ptr<Listing> Messages() override { return AskListing("Messages"); }
  std::int32_t MessageCount() override { return ToInt32(Ask("MessageCount")); }
  std::shared_ptr<Listing> Attachments() override { return AskListing("Attachments"); }
  std::shared_ptr<Listing> ResolveNameToAddress(Text server, Text mailbox) override {
    return AskListing("ResolveNameToAddress", server, mailbox);
  }
  std::string MailboxHomeServer(Text server, Text mailbox) override {
    return AskText("MailboxHomeServer", server, mailbox);
  }
  void ResetNameResolution() override { Ask("ResetNameResolution"); }
  Value MessageSubject() override { return Ask("MessageSubject"); }
  Value MessageSender() override { return Ask("MessageSender"); }
  Value MessageSize() override { return Ask("MessageSize"); }
  Value MessageCreationDate() override { return Ask("MessageCreationDate"); }
  Value MessageModificationDate() override { return Ask("MessageModificationDate"); }
  void RemoveMessage(Text server, Text mailbox, Text folderId, Text messageId, std::int32_t flags) override {
    Ask("RemoveMessage", server, mailbox, folderId, messageId, flags);
  }

 private:
  template <typename... A>
  std::shared_ptr<Listing> AskListing(const char* member, A&&... arguments) {
    std::shared_ptr<Listing> listing;
    Reach(member, [&](Engine& engine) {
      PushAnswer(engine, member, arguments...);
      listing = InterfaceAt<Listing>(engine, -1);
    });
    return listing;
  }
};

}  // namespace

template <>
std::shared_ptr<Listing> Adapt<Listing>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptListing>(engine, index);
}

template <>
std::shared_ptr<LiveContainer> Adapt<LiveContainer>(Engine& engine, duk_idx_t index) {
  return std::make_shared<ScriptLiveContainer>(engine, index);
}

}  // namespace kalvo::host
