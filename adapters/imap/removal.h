#pragma once

#include <string>

#include "adapters/imap/imap_connection.h"
#include "adapters/imap/message_source.h"

namespace kalvo::imap {

// Deletes exactly one message. It may be run again on another connection after the first was lost: a message that
// is gone by then was deleted by us.
class Removal {
 public:
  Removal(std::string folder, MessageNumber number) : folder_(std::move(folder)), number_(number) {}

  // Reads the message that is to be deleted, so that it can be held. Fails as `Run` does.
  WholeMessage Read(Connection& connection) const;

  // Fails with `mail::NoSuchMessage` where the message is not there, with 0x80004005 where it may not be deleted or
  // where the server can only remove everything that is marked as deleted.
  void Run(Connection& connection);

 private:
  void CheckAllowed(Connection& connection) const;
  bool IsThere(Connection& connection) const;

  std::string folder_;
  MessageNumber number_;
  bool expunging_ = false;
};

}  // namespace kalvo::imap
