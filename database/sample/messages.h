#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "database/sample/organization.h"

namespace kalvo::sample {

// One message of a mailbox or public folder.
struct Message {
  std::int64_t size = 0;           // bytes
  std::optional<Moment> modified;  // nothing: nobody knows when
  std::uint8_t folder = 0;         // in kMailboxFolders; 0 in a public folder
  bool hasAttachment = false;
};

// The folders that every mailbox has.
inline constexpr std::string_view kMailboxFolders[] = {"Inbox", "Sent Items", "Deleted Items", "Archive"};
inline constexpr std::size_t kFoldersAMailbox = std::size(kMailboxFolders);

// Replaces `messages` by `count` ones whose sizes add up to `space`, none younger than `scan`. The same stream
// gives the same messages.
void MakeMessages(Random& random, std::int32_t count, std::int64_t space, Moment scan, std::vector<Message>& messages);

}  // namespace kalvo::sample
