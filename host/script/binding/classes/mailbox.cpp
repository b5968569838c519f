#include "host/script/binding/classes/members.h"

#include "kalvo/platform/live_mailbox.h"

namespace kalvo::host {
namespace {

using L = LiveContainer;

// clang-format off
constexpr Member kLiveContainer[] = {
  Method<&L::GotoContainer>("GotoContainer", {{"server"}, {"mailbox"}, {"container"}, {"OldThreshold"}, {"flags"}},
    "Stands on a folder by its path. `OldThreshold` is accepted and ignored; `flags` is 0 for a mailbox, 4 "
    "for public folders. Fails with 0xE1C1002F for a folder that is not there."),
  Method<&L::GotoContainerById>("GotoContainerById", {{"server"}, {"folderId"}, {"flags"}},
    "Stands on a folder of the store that was gone to last, by its identifier."),
  Method<&L::GotoMsgAttachment>("GotoMsgAttachment", {{"server"}, {"mailbox"}, {"messageId"}, {"flags"}},
    "Stands on a message, by its identifier."),
  Method<&L::MailboxOwner>("MailboxOwner", {{"server"}, {"mailbox"}},
    "Answers the account that owns a mailbox, in the form of a logon name. Fails with 0x8004010F for none, "
    "with 0xE1C10029 for several."),
  Method<&L::CurrentMailboxName>("CurrentMailboxName",
    "Answers the name of the mailbox that was gone to."),
  Method<&L::CurrentContainerName>("CurrentContainerName",
    "Answers the name of the folder that was gone to."),
  Method<&L::Folders>("Folders",
    "Answers a listing of the folders below the current one."),
  Method<&L::FolderCount>("FolderCount",
    "Answers how many folders are below the current one."),
  Method<&L::Messages>("Messages",
    "Answers a listing of the messages of the current folder."),
  Method<&L::MessageCount>("MessageCount",
    "Answers how many messages the current folder has."),
  Method<&L::Attachments>("Attachments",
    "Answers a listing of the attachments of the current message."),
  Method<&L::ResolveNameToAddress>("ResolveNameToAddress", {{"server"}, {"mailbox"}},
    "Answers a listing of the mailboxes that a typed name may mean, standing on the first, with the field "
    "Address. \"=Ken\" is exact. Fails with 0xE1C10029 for several, with 0x8004010F for none."),
  Method<&L::MailboxHomeServer>("MailboxHomeServer", {{"server"}, {"mailbox"}},
    "Answers the name of the server that holds a mailbox."),
  Method<&L::ResetNameResolution>("ResetNameResolution",
    "Forgets which mailbox each typed name was found to mean."),
  Method<&L::MessageSubject>("MessageSubject",
    "Answers the subject of the current message, or \"\"."),
  Method<&L::MessageSender>("MessageSender",
    "Answers the sender of the current message, or \"\"."),
  Method<&L::MessageSize>("MessageSize",
    "Answers the size of the current message in bytes, or \"\"."),
  Method<&L::MessageCreationDate>("MessageCreationDate",
    "Answers the date of the current message in days since 1899-12-30, or \"\"."),
  Method<&L::MessageModificationDate>("MessageModificationDate",
    "Answers when the current message was changed, in days since 1899-12-30, or \"\"."),
  Method<&L::RemoveMessage>("RemoveMessage", {{"server"}, {"mailbox"}, {"folderId"}, {"messageId"}, {"flags"}},
    "Deletes exactly that message, where the page has taken its token; `folderId` is not trusted."),
};

constexpr Member kListing[] = {
  Method<&Listing::MoveFirst>("MoveFirst",
    "Makes the first item current."),
  Method<&Listing::MoveNext>("MoveNext",
    "Makes the next item current; allowed from the last, where every field is then \"\"."),
  Method<&Listing::Count>("Count",
    "Answers how many items there are."),
  Method<&Listing::Field>("Field", {{"name"}},
    "Answers a field of the current item: Name, Size (bytes), ... Fails for an unknown one."),
  Method<&Listing::Total>("Total", {{"name"}},
    "Answers the sum of a field over all items."),
  Method<&Listing::ClearSortFields>("ClearSortFields",
    "Forgets the fields to sort by."),
  Method<&Listing::AddSortField>("AddSortField", {{"name"}, {"descending"}},
    "Adds a field to sort by: `descending` is 0 or 1. Fails for an unknown one."),
  Method<&Listing::Sort>("Sort",
    "Sorts by the fields that were added, the first of them first."),
};
// clang-format on

}  // namespace

std::span<const Member> LiveContainerMembers() { return kLiveContainer; }
std::span<const Member> ListingMembers() { return kListing; }

}  // namespace kalvo::host
