#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/platform/value.h"

namespace kalvo {

// A list of folders, messages, attachments or addresses, one of which is current. A list taken earlier on a
// page survives every later positioning of its container.
class Listing : public Object {
 public:
  virtual void MoveFirst() = 0;

  // Allowed from the last item: the listing then stands past its end, where every field answers "". Moves, then
  // fails, where the store has failed to tell a field since the last move.
  virtual void MoveNext() = 0;

  virtual std::int32_t Count() = 0;

  // A field of the current item. Names are matched without regard to case; an unknown one fails.
  virtual Value Field(std::string_view name) = 0;

  // The sum of a field over all items.
  virtual Value Total(std::string_view name) = 0;

  virtual void ClearSortFields() = 0;

  // Adds a field to sort by: ascending 0, descending 1. An unknown field fails.
  virtual void AddSortField(std::string_view name, std::int32_t descending) = 0;

  // Sorts by the fields added since the last clear, the first of them first. Stable.
  virtual void Sort() = 0;
};

// How a container is opened. The remaining bits are ignored.
namespace live {
inline constexpr std::int32_t kByPath = 1;         // the container name is a path to open; "" is the root
inline constexpr std::int32_t kPublicFolders = 4;  // the public-folder store; clear: the named mailbox
}  // namespace live

// The browsing object of one user session: it stands on a mailbox, a folder or a message. Identifiers are
// opaque, printable, and checked when they come back.
class LiveContainer : public Object {
 public:
  // Stands on a folder by its path. `OldThreshold` is accepted and ignored.
  virtual void GotoContainer(std::string_view server, std::string_view mailbox, std::string_view container,
                             std::int32_t OldThreshold, std::int32_t flags) = 0;

  // Stands on a folder of the store that the last `GotoContainer` opened.
  virtual void GotoContainerById(std::string_view server, std::string_view folderId, std::int32_t flags) = 0;

  // Stands on a message. The message id finds its folder itself.
  virtual void GotoMsgAttachment(std::string_view server, std::string_view mailbox, std::string_view messageId,
                                 std::int32_t flags) = 0;

  // The account that owns the mailbox, in the form of the logon name. Fails for a mailbox that is unknown or
  // ambiguous, and for the product's own; never answers "".
  virtual std::string MailboxOwner(std::string_view server, std::string_view mailbox) = 0;

  virtual std::string CurrentMailboxName() = 0;
  virtual std::string CurrentContainerName() = 0;

  virtual std::shared_ptr<Listing> Folders() = 0;
  virtual std::int32_t FolderCount() = 0;
  virtual std::shared_ptr<Listing> Messages() = 0;
  virtual std::int32_t MessageCount() = 0;
  virtual std::shared_ptr<Listing> Attachments() = 0;

  // The mailboxes of the server that a typed name may mean, standing on the first, with the field "Address".
  // A name is a prefix of a display name; "=Ken" is exact; addresses and distinguished names are accepted.
  // Fails with 0xE1C10029 for several, 0x8004010F for none, 0x80004002 for a server that is too old.
  virtual std::shared_ptr<Listing> ResolveNameToAddress(std::string_view server, std::string_view mailbox) = 0;

  // The name of the server that holds the mailbox.
  virtual std::string MailboxHomeServer(std::string_view server, std::string_view mailbox) = 0;

  // Forgets which mailbox each typed name was found to mean.
  virtual void ResetNameResolution() = 0;

  // Of the message that the container stands on: size in bytes, dates as serials, or "" where it has none.
  virtual Value MessageSubject() = 0;
  virtual Value MessageSender() = 0;
  virtual Value MessageSize() = 0;
  virtual Value MessageCreationDate() = 0;
  virtual Value MessageModificationDate() = 0;

  // Deletes exactly that message. The folder id is not trusted; the message id finds its folder.
  virtual void RemoveMessage(std::string_view server, std::string_view mailbox, std::string_view folderId,
                             std::string_view messageId, std::int32_t flags) = 0;
};

}  // namespace kalvo
