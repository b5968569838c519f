#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/mail/mail_store.h"
#include "adapters/mail/message_head.h"
#include "adapters/maildir/files.h"

namespace kalvo::maildir {

enum class Read { Listing, Attachments };

// What a message says of itself. A message that makes no sense has empty texts and no date, one that cannot be read
// says so as its subject; it never fails.
struct MessageContent : mail::HeadTexts {
  bool isReadable = true;
  bool hasAttachment = false;
  std::vector<mail::Attachment> attachments;  // with `Read::Attachments`
};

// Reads a message from an open file, unpacked where a server has packed it: for a listing at most its first 2 MiB, for
// its attachments at most 192 MiB, of heads and parts no more than `message_scan.h` allows. A file that is closed
// cannot be read.
MessageContent ReadMessage(const File& file, Read what);

}  // namespace kalvo::maildir
