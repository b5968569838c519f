#include "host/script/binding/classes/host_objects.h"

#include "host/script/binding/classes/members.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kAuditLog[] = {
  Method<&AuditLog::Lines>("Lines", {{"event"}, {"user"}, {"skipped"}, {"count"}},
    "Answers a JSON list of the newest lines of an event and a user (\"\" is any): `count` of them, at most "
    "500, after `skipped` newer ones. Fails with 5 for an event that there is not."),
  Method<&AuditLog::Events>("Events",
    "Answers the names of all events as a JSON list."),
};

constexpr Member kHeldMessages[] = {
  Property<&HeldMessages::Days>("Days",
    "How many days a deleted message is held."),
  Method<&HeldMessages::Held>("Held", {{"server"}, {"mailbox"}, {"flags"}},
    "Answers a JSON list of the messages deleted from a mailbox (`flags` 0) or the public folders (4), the "
    "last first, at most 1,000: objects with Id, Subject, Sender, Folder, Size (bytes), Deleted (days since "
    "1899-12-30) and Who."),
  Method<&HeldMessages::Restore>("Restore", {{"server"}, {"mailbox"}, {"id"}, {"flags"}},
    "Puts a message back where it was, and answers the folder's path, where the page has taken the token "
    "\"RestoreMessage \" + id."),
};
// clang-format on

}  // namespace

std::span<const Member> AuditLogMembers() { return kAuditLog; }
std::span<const Member> HeldMessagesMembers() { return kHeldMessages; }

}  // namespace kalvo::host
