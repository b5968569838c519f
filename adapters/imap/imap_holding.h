#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/imap/connection_pool.h"
#include "adapters/mail/held_message.h"
#include "adapters/mail/identifiers.h"

namespace kalvo::imap {

// The folder of the product's own account in which deleted messages are held. A message gets there in steps: its copy
// is written and marked as unfinished, compared, the original is removed, and the mark is taken off. Whatever stops a
// process in between, the message is where its owner has it as long as the original is there, and held once it is
// not: an unfinished copy counts for what its original tells.
class Holding {
 public:
  Holding(ConnectionPool& pool, const mail::IdentifierKey& key) : pool_(pool), key_(key) {}

  // Holds a copy, unfinished. Fails with a sentence that says that nothing was deleted.
  void Put(const mail::HeldMessage& held, const WholeMessage& message);

  // The original is gone: the copy is the message.
  void Finish(const mail::HeldMessage& held);

  // The original was not removed: its copy goes. Another process may have made one of its own, and removed it.
  void Drop(const mail::HeldMessage& held);

  // All that a server holds, each message once; those of deletes that were never finished are left out.
  std::vector<mail::HeldMessage> Held(const std::string& server);

  // Puts a message into a folder of its mailbox and holds it no longer. False where it is not held. Of several who do
  // it at once one does: the one who could make a folder of the message's id. A restore that was stopped in the middle
  // leaves that folder, and is finished by the next one, not done twice.
  bool Restore(const mail::HeldMessage& held, const std::string& folder);

  // Removes what was deleted before that moment, and copies of deletes that were stopped.
  std::int32_t Sweep(const std::string& server, std::int64_t before);

  // Whether that is a folder of ours, for whoever lists the account's folders.
  bool IsIt(Connection& connection, const std::string& user, std::string_view folder) const;

 private:
  template <typename Step>
  auto InFolder(const std::string& server, Step&& step);

  enum class Copies { This, OfTheMessage };
  void Remove(const mail::HeldMessage& held, Copies which);
  void GiveUp(const mail::HeldMessage& held);
  bool WaitForAnother(const mail::HeldMessage& held);
  std::string FolderName(Connection& connection) const;
  bool HasOriginal(const mail::HeldMessage& held);
  bool IsThereAlready(const mail::HeldMessage& held, const std::string& folder, const WholeMessage& message);

  ConnectionPool& pool_;
  const mail::IdentifierKey& key_;
};

}  // namespace kalvo::imap
