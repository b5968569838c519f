#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/temporary_folder.h"

namespace kalvo::test {

// A Dovecot of the tests' own: its settings, its mail and its sockets are in a temporary folder, which goes with it.
// Its users have the password "pw"; "USER*master" with the password "pw" opens any of their mailboxes; the user
// "kalvo" may do everything in the public folders, which are below "Public/". Runs as root.
class DovecotServer {
 public:
  // Lines that are added to the settings, for servers that are to be different ("imap_capability = ...").
  explicit DovecotServer(const std::vector<std::string>& users, std::string_view moreSettings = "");
  ~DovecotServer();
  DovecotServer(const DovecotServer&) = delete;
  DovecotServer& operator=(const DovecotServer&) = delete;

  // Started by the constructor; again after `Kill`. Returns when connections are accepted.
  void Start();
  void Kill();    // SIGKILL to all its processes
  void Pause();   // SIGSTOP to all its processes
  void Resume();  // SIGCONT

  std::uint16_t Port() const { return port_; }
  std::string Folder() const { return folder_.Path().string(); }

  // A file of its folder, and its path.
  std::string Write(std::string_view name, std::string_view text) const;

  // Makes a public folder (".Sales.Orders" on disk) that everybody may read and "kalvo" may change; `rights` are
  // the letters that kalvo gets.
  void MakePublicFolder(const std::vector<std::string>& names, std::string_view rights = "lrwstipekxa") const;

  // The contents of all message files, sorted, but those of deleted messages that the product's own account holds.
  std::vector<std::string> AllMessages() const;

 private:
  void WriteSettings(const std::vector<std::string>& users, std::string_view moreSettings) const;
  void Signal(int signal) const;

  TemporaryFolder folder_;
  std::uint16_t port_;
  pid_t process_ = 0;
};

// Says things to an IMAP server as they are: fills it, and looks at it with other eyes than the code under test.
class PlainImap {
 public:
  PlainImap(std::uint16_t port, std::string_view user, std::string_view password = "pw");
  ~PlainImap();
  PlainImap(const PlainImap&) = delete;
  PlainImap& operator=(const PlainImap&) = delete;

  // Sends a command and answers all that comes back. Fails the test where it is not OK.
  std::string Run(const std::string& command);

  // `text` has lines ended by LF, `received` is in seconds since 1970.
  void Append(std::string_view folder, std::string_view text, std::int64_t received);

 private:
  int socket_;
  int tag_ = 0;
};

// The name in quotes, as a command has it; non-ASCII names have to be encoded before.
std::string Quoted(std::string_view name);

}  // namespace kalvo::test
