#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/mail/mail_store.h"
#include "adapters/maildir/files.h"

namespace kalvo::maildir {

enum class Read { Listing, Attachments };

// What a message says of itself. A message that makes no sense has empty texts and no date; it never fails.
struct MessageContent {
  std::string subject, sender;       // cleaned
  std::optional<std::int64_t> sent;  // seconds since 1970, UTC
  bool hasAttachment = false;
  std::vector<mail::Attachment> attachments;  // with `Read::Attachments`
};

// Reads a message from an open file, at most its first 64 MiB.
MessageContent ReadMessage(const File& file, Read what);

}  // namespace kalvo::maildir
