#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/mail/held_message.h"
#include "adapters/mail/identifiers.h"

namespace kalvo::mail {

class Directory;
class ListingItems;
struct Mailbox;

// One tree of folders: a mailbox, or the public folders of a server.
struct Tree {
  std::string server;                // as the directory spells it
  const Mailbox* mailbox = nullptr;  // of the directory; null for the public folders

  bool IsPublic() const { return !mailbox; }
};

// Seconds since 1970, UTC; nothing where the store tells none.
struct FolderDates {
  std::optional<std::int64_t> created, modified;
};

// One folder below another. Keys are the store's own words for a folder or a message: any bytes, the same from
// call to call and from process to process. The root's key is "".
struct FolderInfo {
  std::string key;
  std::string name;                      // UTF-8, cleaned for showing (`CleanText`)
  std::optional<std::int64_t> size = 0;  // bytes of its own messages; nothing for a folder that may not be opened
  std::optional<std::int32_t> messageCount = 0;
  FolderDates dates;
  bool knowsDates = true;  // false: the store is asked for them when they are shown
};

// One message of a folder, as a listing shows it. Texts are cleaned.
struct MessageRow {
  std::string_view key;
  std::string_view subject;
  std::string_view sender;               // `SenderText`
  std::int64_t size = 0;                 // bytes
  std::optional<std::int64_t> sent;      // the Date header; seconds since 1970, UTC
  std::optional<std::int64_t> received;  // arrival in the store
  bool hasAttachment = false;
};

// The fields that messages are sorted by.
enum class MessageField { Subject, Sender, Size, Sent, Received };

struct MessageSort {
  MessageField field;
  bool descending;
};

// The messages of one folder as they were when it was made, numbered from 0, the last received first.
class MessageSource {
 public:
  virtual ~MessageSource() = default;

  virtual std::int32_t Count() = 0;

  // Message `upcoming.front()`; its texts are valid until the next call. The rest of `upcoming` is shown after it.
  virtual MessageRow Row(std::span<const std::int32_t> upcoming) = 0;

  // Bytes of all messages.
  virtual std::int64_t TotalSize() = 0;

  // All messages in the order of the keys (the first decides first, ties in the source's own order), where the
  // store sorts by itself; nothing: the caller reads every row and sorts.
  virtual std::optional<std::vector<std::int32_t>> Order(std::span<const MessageSort>) { return std::nullopt; }
};

struct Attachment {
  std::string name;       // cleaned; see `AttachmentName`
  std::int64_t size = 0;  // decoded bytes
};

struct MessageDetails {
  std::string subject;
  std::string sender;
  std::int64_t size = 0;
  std::optional<std::int64_t> sent;
  std::optional<std::int64_t> received;
  std::vector<Attachment> attachments;  // as they stand in the message
};

// What a mail store has to offer beneath the browsing object, which checks names, rights of identifiers and flags
// before it asks. Folder and message keys that come in were issued by this store for this tree; what they mean may
// be gone since. Every failure is a `kalvo::Error`.
class MailStore {
 public:
  virtual ~MailStore() = default;

  // The mailboxes as they are now. The browsing object keeps what it was given until its names are reset.
  virtual std::shared_ptr<const Directory> Mailboxes() = 0;

  // What identifiers are checked with: the same for every process that serves this store, and secret.
  virtual const IdentifierKey& Key() = 0;

  // The key of the folder at a path; names are matched exactly, else without regard to case (ASCII). Fails with
  // `NoSuchFolder`. The root is never asked for.
  virtual std::string FindFolder(const Tree& tree, const FolderPath& path) = 0;

  // The path of a folder. Fails with `NoSuchFolder` where it is gone.
  virtual FolderPath PathOf(const Tree& tree, std::string_view folder) = 0;

  // The folders right below a folder or the root, by name.
  virtual std::vector<FolderInfo> Folders(const Tree& tree, std::string_view folder) = 0;

  // The dates of one of them that does not know them.
  virtual FolderDates DatesOf(const Tree&, std::string_view) { return {}; }

  // The messages of a folder; none for the root. Fails with `NoSuchFolder` where it is gone.
  virtual std::unique_ptr<MessageSource> Messages(const Tree& tree, std::string_view folder) = 0;

  // One message. Fails with `NoSuchMessage` where it is gone.
  virtual MessageDetails Message(const Tree& tree, std::string_view folder, std::string_view message) = 0;

  // Deletes exactly that message: it moves into the store's holding folder, which no listing, size or total shows.
  // Answers its id there. Whatever stops the process, the message is in exactly one of the two places. Fails with
  // `NoSuchMessage` where it is gone, and leaves it where it is when it cannot be held.
  virtual std::string Remove(const Tree& tree, std::string_view folder, std::string_view message,
                             const Deletion& deletion) = 0;

  // The held messages that were deleted from a tree, or for null from any, the last deleted first.
  virtual std::vector<HeldMessage> Held(const Tree* tree) = 0;

  // Puts a held message of that tree back, with its date and flags: into the folder that it was in, or into another
  // one of the tree. Answers the folder's path. Fails with `NoSuchMessage` where it is not held (any more), with
  // `NoSuchFolder` where the folder is gone; it is then still held.
  virtual FolderPath Restore(const Tree& tree, std::string_view id, const std::optional<FolderPath>& into) = 0;

  // Ends the holding of every message that was deleted before that moment (seconds since 1970, UTC), and answers
  // how many.
  virtual std::int32_t Sweep(std::int64_t before) = 0;
};

// Where a message lies: the folder's path, and the same in the store's own words.
struct MessagePlace {
  FolderPath path;
  std::string key;
};

// What is to be held of a message that somebody deletes, under an id of its own; its name and its flags are left to
// the store.
HeldMessage ToHold(const Tree& tree, MessagePlace place, MessageDetails details, const Deletion& deletion);

// Whether a message was deleted from that tree.
bool CameFrom(const HeldMessage& held, const Tree& tree);

// In the order that held messages are answered in.
void LastDeletedFirst(std::vector<HeldMessage>& held);

}  // namespace kalvo::mail
