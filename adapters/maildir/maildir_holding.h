#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/mail/held_message.h"
#include "adapters/maildir/files.h"

namespace kalvo::maildir {

class Folder;

// The deleted messages of a store, held in a folder of its own: "held/TREE/ID.record" says where a message came from,
// "held/TREE/ID.mail" is the message. A record is on the disk before its message arrives and goes after it has left,
// so a message is always in one place and always has its record; a record alone is what a process left behind that was
// stopped, and stands for nothing.
class Holding {
 public:
  // `own` is the store's own folder; it may be closed, then nothing can be held.
  explicit Holding(const File& own) : own_(own) {}

  // Moves a message out of a folder and records `held` with it, which has its id and all else but name and flags.
  // False where the message is gone. Fails where it cannot be held: it is then where it was.
  bool Take(const std::string& tree, Folder& from, std::string_view unique, mail::HeldMessage held);

  // The messages held of a tree, or of all of them; in no order.
  std::vector<mail::HeldMessage> Held(const std::string& tree) const;
  std::vector<mail::HeldMessage> All() const;

  // The record of a message that is held; nothing where it is not.
  std::optional<mail::HeldMessage> Find(const std::string& tree, std::string_view id) const;

  // Moves a message into a folder, where it gets its old name. False where it is not held any more. Fails where the
  // folder cannot take it: it is then still held.
  bool Give(const std::string& tree, const mail::HeldMessage& held, Folder& into);

  // Removes every message that was deleted before that moment, and what stopped processes left behind.
  std::int32_t Sweep(std::int64_t before);

 private:
  File OpenTree(const std::string& tree) const;

  const File& own_;
};

}  // namespace kalvo::maildir
