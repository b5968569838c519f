#pragma once

#include <span>

#include "host/script/binding/binding.h"

// The members of each class, in published order. Each table stands in the file of its class.
namespace kalvo::host {

// The public classes.
std::span<const Member> GeneratorMembers();
std::span<const Member> TableMembers();
std::span<const Member> TableDatabaseMembers();
std::span<const Member> TableConstantsMembers();
std::span<const Member> ContextMembers();
std::span<const Member> DisplayMembers();
std::span<const Member> ColumnMembers();
std::span<const Member> ControlColumnMembers();
std::span<const Member> ColumnDatabaseMembers();
std::span<const Member> DataSrcMembers();
std::span<const Member> DbDataSrcMembers();
std::span<const Member> TopnDataSrcMembers();
std::span<const Member> MapiDataSrcMembers();

// The live mailbox, where the host provides it.
std::span<const Member> LiveContainerMembers();
std::span<const Member> ListingMembers();

// Objects of the host's own.
std::span<const Member> AuditLogMembers();
std::span<const Member> HeldMessagesMembers();

// The page's intrinsic objects.
std::span<const Member> RequestMembers();
std::span<const Member> NameCollectionMembers();
std::span<const Member> ValueListMembers();
std::span<const Member> ResponseMembers();
std::span<const Member> ServerMembers();
std::span<const Member> SessionMembers();
std::span<const Member> ResponseCookiesMembers();
std::span<const Member> ResponseCookieMembers();
std::span<const Member> SessionItemMembers();
std::span<const Member> SessionContentsMembers();
std::span<const Member> ApplicationMembers();
std::span<const Member> ScriptingContextMembers();

}  // namespace kalvo::host
