#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/imap/deadline.h"
#include "adapters/imap/fetched.h"
#include "adapters/imap/imap_limits.h"
#include "adapters/imap/whole_message.h"
#include "adapters/mail/held_message.h"
#include "adapters/mail/identifiers.h"

struct mailimap_fetch_type;
struct mailimap_set;

namespace kalvo::imap {

class OwnedList;
class ResponseGuard;
class Transport;
struct Login;
struct ServerAddress;

// The state of a folder's messages: as long as all three are the same, the messages are.
struct FolderState {
  std::uint32_t uidValidity = 0;
  std::uint32_t uidNext = 0;  // 0 where the server does not tell
  std::uint32_t messages = 0;

  bool operator==(const FolderState&) const = default;
};

struct Folder {
  std::string name;  // as the server writes it
  bool selectable = true;
  std::optional<FolderState> state;  // where it was asked for and may be known
  std::optional<std::int64_t> size;  // bytes of its messages
};

enum class ServerSortKey { Date, Arrival, Size };

struct ServerSort {
  ServerSortKey key;
  bool descending;
};

enum class Access { Read, Write };

// How far a held copy is: marks that no server gives by itself. The flags of the original are in its record.
inline constexpr std::string_view kUnfinished = "\\Draft", kDeleted = "\\Deleted";

// A message of the holding folder, by its record.
struct HeldCopy {
  std::uint32_t uid = 0;
  bool isUnfinished = false;  // its original may still be there
  mail::HeldMessage message;
};

// One connection to a mail server, logged in. Folder names are the server's own bytes. Every failure is an
// `ImapError`; after one whose fault is not `Refused` the connection is of no more use.
class Connection {
 public:
  // Connects and logs in.
  Connection(const ServerAddress& address, const Login& login, const Limits& limits, const Deadline& deadline);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // All that follows shares this deadline.
  void Begin(const Deadline& deadline);

  bool Has(const char* capability);

  // What stands between the names of a folder and those below it; '\0' where the server has no tree.
  char Separator();

  // The prefix of the user's own folders, and those of other people's and of shared ones.
  const std::string& PersonalPrefix();
  const std::vector<std::string>& ForeignPrefixes();

  // Whether a listing of folders tells their states and sizes with them, in one answer.
  bool ListsStates();

  // Such a listing.
  std::vector<Folder> ListStates(std::string_view pattern, std::string_view prefix);

  // Folders by a LIST pattern. Only whole names that begin with `prefix` are answered.
  std::vector<Folder> List(std::string_view pattern, std::string_view prefix);

  FolderState Status(const std::string& folder);

  // Opens a folder and answers its state now. Fails with `Refused` where there is none.
  FolderState Open(const std::string& folder, Access access);

  // Opens it to read, unless it is the one that is open; the state is that of its opening.
  FolderState Stay(const std::string& folder);

  // What the user may do in the folder (RFC 4314's letters), nothing where the server has no such lists. Not while
  // a folder is open.
  std::optional<std::string> Rights(const std::string& folder);

  // Of the folder that is open:
  std::vector<std::uint32_t> AllUids();
  std::vector<std::uint32_t> SortedUids(std::span<const ServerSort> keys);
  // Those that the server takes to have no date, or one before 1971.
  std::vector<std::uint32_t> WithoutSentDate();
  // Of a damaged message servers cannot tell all; without `Sizes` it counts none, without `Parts` only its head is
  // asked for.
  enum class Sizes : bool { No, Yes };
  void FetchSummaries(std::uint32_t firstUid, std::uint32_t lastUid, Sizes sizes, std::vector<Summary>& summaries);
  enum class Parts : bool { No, Yes };
  std::vector<Fetched> Fetch(std::span<const std::uint32_t> uids, Parts parts = Parts::Yes);
  bool Exists(std::uint32_t uid);
  void Mark(std::uint32_t uid, std::string_view flag, bool set);
  void Expunge(std::uint32_t uid);
  // All of a message that is there. Fails where it is larger than any that is held.
  WholeMessage FetchWhole(std::uint32_t uid);
  // Those that have a record of ours.
  std::vector<HeldCopy> HeldCopies(const mail::IdentifierKey& key);

  // Writes a message into a folder, and answers its UID there; 0 where the server does not tell.
  std::uint32_t Put(const std::string& folder, const WholeMessage& message);
  void Create(const std::string& folder);
  void DeleteFolder(const std::string& folder);

  std::size_t BytesRead() const;

 private:
  struct Session;

  void Connect(const ServerAddress& address);
  void LogIn(const Login& login);
  void ReadNamespaces();
  using TakeLine = std::function<void(const std::string& line)>;
  void Say(const std::string& command, std::string_view step, const TakeLine& take);
  void SendLine(const std::string& line, std::string_view step);
  std::string ReadAnswerLine(std::string_view step);
  void LogInFor(const Login& login, std::string_view step);
  void FetchHeldCopies(std::uint32_t first, std::uint32_t last, const mail::IdentifierKey& key,
                       std::vector<HeldCopy>& copies);
  void Fetch(mailimap_set* messages, mailimap_fetch_type* wanted, OwnedList& found);
  void Command();
  void Check(int code, std::string_view step);
  [[noreturn]] void Fail(int code, std::string_view step);

  std::string name_;  // for errors
  std::unique_ptr<Transport> transport_;
  std::unique_ptr<ResponseGuard> guard_;
  std::unique_ptr<Session> session_;
  std::string openFolder_;
  FolderState openState_;
  std::string refusal_;  // the server's words, where the mail library does not have them
  bool knowsNamespaces_ = false;
  char separator_ = 0;
  std::string personal_;
  std::vector<std::string> foreign_;
};

}  // namespace kalvo::imap
