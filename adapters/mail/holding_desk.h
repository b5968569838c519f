#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/mail/mail_store.h"

namespace kalvo::mail {

// A held message as people are shown it.
struct HeldItem {
  HeldMessage message;
  std::string mailbox;  // the address that the mailbox is known by; "" for the public folders
  std::string owner;    // the account of the mailbox; "" for the public folders
};

// Deleted messages, asked for by the names that pages and commands use. Who may ask is the caller's to check: the
// owner of a mailbox for its own, administrators for all of them, as it is for deleting.
class HoldingDesk {
 public:
  explicit HoldingDesk(std::shared_ptr<MailStore> store) : store_(std::move(store)) {}

  // What was deleted from a mailbox, or with the public-folder bit from the server's public folders; names and flags
  // as `LiveContainer::RemoveMessage` takes them, errors as it raises them. The last deleted first.
  std::vector<HeldItem> Held(std::string_view server, std::string_view mailbox, std::int32_t flags);

  // What was deleted from every mailbox of the directory and from public folders, the last deleted first.
  std::vector<HeldItem> All();

  // The item of that id, of any mailbox; nothing where it is not held.
  std::optional<HeldItem> Find(std::string_view id);

  // Puts a message back where it was, or into the folder of that path ("Inbox\\Projects"), and answers the path of
  // the folder. Fails as `MailStore::Restore` does.
  std::string Restore(std::string_view server, std::string_view mailbox, std::string_view id, std::int32_t flags,
                      std::string_view into = "");
  std::string Restore(const HeldItem& item, std::string_view into = "");

  // Ends the holding of what was deleted before that moment (seconds since 1970, UTC), and answers how many.
  std::int32_t Sweep(std::int64_t before) { return store_->Sweep(before); }

 private:
  std::string Restore(const Tree& tree, std::string_view id, std::string_view into);

  std::shared_ptr<MailStore> store_;
};

}  // namespace kalvo::mail
