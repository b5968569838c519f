#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::web::login {

// What stands in the place of a hash where there is no password.
inline constexpr std::string_view kNoPassword = "-";

// Somebody who may sign in.
struct User {
  std::string account;  // "KALVO\alice", as pages and the mailboxes' owners name her
  bool administrator = false;
  bool drillDown = false;  // may open her own mailbox
  std::string hash;        // of her password; `kNoPassword` for who comes in by the proxy alone

  // Changes when anything about the user does. It tells nothing of the password.
  std::string Stamp() const;
};

// The account that a name stands for: "alice" is "KALVO\alice", "COTE\alice" is itself. Nothing for a name that no
// account can have: domain and name are letters, digits, ".", "-", "_" and what lies beyond ASCII, at most 64 bytes
// each.
std::optional<std::string> AccountNamed(std::string_view name);

// The users file: a line for each user, her account, her rights ("administrator,drill-down", or "-") and the hash
// of her password (or "-"), with blanks between them; "#" begins a comment line. Whoever edits it with an editor edits
// between two sign-ins: it is read again for each.
//
// A file that others than its owner may write makes anybody an administrator: every operation fails with SettingError
// for one whose group or everybody may write it, or that lies where everybody may replace it.
class UsersFile {
 public:
  explicit UsersFile(std::filesystem::path file) : file_(std::move(file)) {}

  // The user of that account, matched without regard to case. Fails with SettingError, which names file and line,
  // when the file cannot be read or has a line that describes no user.
  std::optional<User> Find(std::string_view account) const;

  // Fails as `Find` does, for a file that no user can be found in.
  void CheckModes() const;

  // What the operator had better change, as a sentence; "" when there is nothing.
  std::string Warning() const;

  // Adds the user or replaces the one of her account. The file is made where there is none, for its owner's eyes
  // only, and a reader sees the old one or the new.
  void Put(const User& user);

  // Gives the user another hash, and changes nothing else. False when there is no such user or her hash is not the
  // old one any more.
  bool ChangeHash(std::string_view account, std::string_view oldHash, const std::string& newHash);

  // False when there was no such user.
  bool Remove(std::string_view account);

 private:
  std::vector<std::string> Lines() const;
  void Write(const std::vector<std::string>& lines);

  std::filesystem::path file_;
};

}  // namespace kalvo::web::login
