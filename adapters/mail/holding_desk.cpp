#include "adapters/mail/holding_desk.h"

#include <algorithm>

#include "adapters/mail/browser.h"
#include "adapters/mail/directory.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/text.h"

namespace kalvo::mail {

namespace {

void Add(MailStore& store, const Tree& tree, std::vector<HeldItem>& items) {
  for (HeldMessage& message : store.Held(tree)) {
    items.push_back(
        {std::move(message), tree.mailbox ? tree.mailbox->Address() : "", tree.mailbox ? tree.mailbox->account : ""});
  }
}

}  // namespace

std::vector<HeldItem> HoldingDesk::Held(std::string_view server, std::string_view mailbox, std::int32_t flags) {
  const auto names = store_->Mailboxes();
  std::vector<HeldItem> items;
  Add(*store_, TreeNamed(*names, server, mailbox, flags), items);
  return items;
}

std::vector<HeldItem> HoldingDesk::All() {
  const auto names = store_->Mailboxes();
  std::vector<HeldItem> items;
  for (const Mailbox& mailbox : names->Mailboxes()) Add(*store_, {mailbox.server, &mailbox}, items);
  for (const MailServer& server : names->Servers()) {
    if (!server.publicFolders.empty()) Add(*store_, {server.name, nullptr}, items);
  }
  std::stable_sort(items.begin(), items.end(), [](const HeldItem& a, const HeldItem& b) {
    return a.message.deletion.when > b.message.deletion.when;
  });
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
