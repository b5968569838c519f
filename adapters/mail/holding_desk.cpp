#include "adapters/mail/holding_desk.h"

#include <algorithm>
#include <map>
#include <utility>

#include "adapters/mail/browser.h"
#include "adapters/mail/directory.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/shown_text.h"

namespace kalvo::mail {

HeldMessage ToHold(const Tree& tree, MessagePlace place, MessageDetails details, const Deletion& deletion) {
  HeldMessage held;
  held.id = NewHeldId();
  held.server = tree.server;
  held.mailbox = tree.mailbox ? tree.mailbox->location : "";
  held.folder = std::move(place.path);
  held.folderKey = std::move(place.key);
  held.subject = std::move(details.subject);
  held.sender = std::move(details.sender);
  held.size = details.size;
  held.sent = details.sent;
  held.received = details.received;
  held.deletion = deletion;
  return held;
}

bool CameFrom(const HeldMessage& held, const Tree& tree) {
  return held.server == tree.server && held.mailbox == (tree.mailbox ? tree.mailbox->location : "");
}

void LastDeletedFirst(std::vector<HeldMessage>& held) {
  std::stable_sort(held.begin(), held.end(),
                   [](const HeldMessage& a, const HeldMessage& b) { return a.deletion.when > b.deletion.when; });
}

std::vector<HeldItem> HoldingDesk::Held(std::string_view server, std::string_view mailbox, std::int32_t flags) {
  const auto names = store_->Mailboxes();
  const Tree tree = TreeNamed(*names, server, mailbox, flags);
  std::vector<HeldItem> items;
  for (HeldMessage& message : store_->Held(&tree)) {
    items.push_back(
        {std::move(message), tree.mailbox ? tree.mailbox->Address() : "", tree.mailbox ? tree.mailbox->account : ""});
  }
  return items;
}

std::vector<HeldItem> HoldingDesk::All() {
  const auto names = store_->Mailboxes();
  std::map<std::pair<std::string, std::string>, const Mailbox*> mailboxes;  // by server and location
  for (const Mailbox& mailbox : names->Mailboxes())
    mailboxes.emplace(std::pair(mailbox.server, mailbox.location), &mailbox);
  std::vector<HeldItem> items;
  for (HeldMessage& message : store_->Held(nullptr)) {
    if (message.mailbox.empty()) {
      items.push_back({std::move(message), "", ""});
      continue;
    }
    const auto found = mailboxes.find(std::pair(message.server, message.mailbox));
    if (found == mailboxes.end()) continue;
    items.push_back({std::move(message), found->second->Address(), found->second->account});
  }
  return items;
}

std::optional<HeldItem> HoldingDesk::Find(std::string_view id) {
  for (HeldItem& item : All()) {
    if (item.message.id == id) return std::move(item);
  }
  return std::nullopt;
}

std::string HoldingDesk::Restore(std::string_view server, std::string_view mailbox, std::string_view id,
                                 std::int32_t flags, std::string_view into) {
  const auto names = store_->Mailboxes();
  return Restore(TreeNamed(*names, server, mailbox, flags), id, into);
}

std::string HoldingDesk::Restore(const HeldItem& item, std::string_view into) {
  const auto names = store_->Mailboxes();
  const bool isPublic = item.mailbox.empty();
  return Restore(TreeNamed(*names, item.message.server, item.mailbox, isPublic ? live::kPublicFolders : 0),
                 item.message.id, into);
}

std::string HoldingDesk::Restore(const Tree& tree, std::string_view id, std::string_view into) {
  std::optional<FolderPath> path;
  if (!into.empty()) path = ParsePath(into);
  return PathText(store_->Restore(tree, id, path));
}

}  // namespace kalvo::mail
