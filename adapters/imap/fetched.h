#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "adapters/mail/mail_store.h"
#include "adapters/mail/message_head.h"

struct mailimap_msg_att;

namespace kalvo::imap {

// What a folder's totals and its order of arrival need of each message.
struct Summary {
  std::uint32_t uid = 0;
  std::int64_t size = 0;
  std::int64_t received = 0;  // seconds since 1970, UTC
};

// One message, without its body.
struct Fetched : mail::HeadTexts {
  std::uint32_t uid = 0;
  std::int64_t size = 0;
  std::optional<std::int64_t> received;
  std::vector<mail::Attachment> attachments;
};

// What a FETCH answer says of one message; what it leaves out stays as it was made.
Fetched ReadMessage(const mailimap_msg_att& answer);

// The same, with the texts of its head, whose fields the answer holds.
Fetched ReadListed(const mailimap_msg_att& answer);

}  // namespace kalvo::imap
