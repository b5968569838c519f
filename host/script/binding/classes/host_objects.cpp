#include "host/script/binding/classes/host_objects.h"

#include "host/script/binding/classes/members.h"

namespace kalvo::host {
namespace {

// clang-format off
constexpr Member kAuditLog[] = {
  Method<&AuditLog::Lines>("Lines", {{"event"}, {"user"}, {"skipped"}, {"count"}}),
  Method<&AuditLog::Events>("Events"),
};

constexpr Member kHeldMessages[] = {
  Property<&HeldMessages::Days>("Days"),
  Method<&HeldMessages::Held>("Held", {{"server"}, {"mailbox"}, {"flags"}}),
  Method<&HeldMessages::Restore>("Restore", {{"server"}, {"mailbox"}, {"id"}, {"flags"}}),
};
// clang-format on

}  // namespace

std::span<const Member> AuditLogMembers() { return kAuditLog; }
std::span<const Member> HeldMessagesMembers() { return kHeldMessages; }

}  // namespace kalvo::host
