#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kalvo/platform/value.h"

namespace kalvo::host {

// The audit log as a page reads it: `Session.StaticObjects("gAuditLog")`, which only administrators get.
class AuditLog : public Object {
 public:
  // The newest lines of an event and a user ("" asks for any), the newest first: `count` of them, at most 500, after
  // `skipped` newer ones. A JSON list of the lines as they stand in the log; of the newest 64 MiB of it. An event that
  // there is not fails with 5.
  virtual std::string Lines(std::string_view event, std::string_view user, std::int32_t skipped,
                            std::int32_t count) = 0;

  // The names of all events, as a JSON list.
  virtual std::string Events() = 0;
};

// Deleted messages that are still held: `Session.StaticObjects("gHeldMessages")`. Names and flags are those that a
// message is deleted with. What the visitor may not delete, she may not see here or restore: that fails.
class HeldMessages : public Object {
 public:
  // How many days a message is held.
  virtual std::int32_t Days() = 0;

  // The messages that were deleted from a mailbox or public folders, the last deleted first, at most 1,000: a JSON list
  // of objects with Id, Subject, Sender, Folder, Size (bytes), Deleted (a date's number) and Who.
  virtual std::string Held(std::string_view server, std::string_view mailbox, std::int32_t flags) = 0;

  // Puts a message back where it was, with its date and flags, and answers the folder's path. The page has taken the
  // token for it: its purpose is "RestoreMessage " and the id.
  virtual std::string Restore(std::string_view server, std::string_view mailbox, std::string_view id,
                              std::int32_t flags) = 0;
};

}  // namespace kalvo::host
