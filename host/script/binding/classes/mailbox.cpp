#include "host/script/binding/classes/members.h"

#include "kalvo/platform/live_mailbox.h"

namespace kalvo::host {
namespace {

using L = LiveContainer;

// clang-format off
constexpr Member kLiveContainer[] = {
  Method<&L::GotoContainer>("GotoContainer", {{"server"}, {"mailbox"}, {"container"}, {"OldThreshold"}, {"flags"}}),
  Method<&L::GotoContainerById>("GotoContainerById", {{"server"}, {"folderId"}, {"flags"}}),
  Method<&L::GotoMsgAttachment>("GotoMsgAttachment", {{"server"}, {"mailbox"}, {"messageId"}, {"flags"}}),
  Method<&L::MailboxOwner>("MailboxOwner", {{"server"}, {"mailbox"}}),
  Method<&L::CurrentMailboxName>("CurrentMailboxName"),
  Method<&L::CurrentContainerName>("CurrentContainerName"),
  Method<&L::Folders>("Folders"),
  Method<&L::FolderCount>("FolderCount"),
  Method<&L::Messages>("Messages"),
  Method<&L::MessageCount>("MessageCount"),
  Method<&L::Attachments>("Attachments"),
  Method<&L::ResolveNameToAddress>("ResolveNameToAddress", {{"server"}, {"mailbox"}}),
  Method<&L::MailboxHomeServer>("MailboxHomeServer", {{"server"}, {"mailbox"}}),
  Method<&L::ResetNameResolution>("ResetNameResolution"),
  Method<&L::MessageSubject>("MessageSubject"),
  Method<&L::MessageSender>("MessageSender"),
  Method<&L::MessageSize>("MessageSize"),
  Method<&L::MessageCreationDate>("MessageCreationDate"),
  Method<&L::MessageModificationDate>("MessageModificationDate"),
  Method<&L::RemoveMessage>("RemoveMessage", {{"server"}, {"mailbox"}, {"folderId"}, {"messageId"}, {"flags"}}),
};

constexpr Member kListing[] = {
  Method<&Listing::MoveFirst>("MoveFirst"),
  Method<&Listing::MoveNext>("MoveNext"),
  Method<&Listing::Count>("Count"),
  Method<&Listing::Field>("Field", {{"name"}}),
  Method<&Listing::Total>("Total", {{"name"}}),
  Method<&Listing::ClearSortFields>("ClearSortFields"),
  Method<&Listing::AddSortField>("AddSortField", {{"name"}, {"descending"}}),
  Method<&Listing::Sort>("Sort"),
};
// clang-format on

}  // namespace

std::span<const Member> LiveContainerMembers() { return kLiveContainer; }
std::span<const Member> ListingMembers() { return kListing; }

}  // namespace kalvo::host
