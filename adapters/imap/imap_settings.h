#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "adapters/imap/imap_limits.h"

namespace kalvo::imap {

enum class Security {
  None,      // bytes as they are: for a server on this machine
  StartTls,  // TLS over the plain connection, before anything is said
  Tls,       // TLS from the first byte
};

struct Login {
  std::string user;
  std::string password;
  std::string authenticates;  // who logs in for the user, by SASL PLAIN; "": the user, by LOGIN
};

struct ServerAddress {
  std::string host;
  std::uint16_t port = 143;
  Security security = Security::StartTls;
  std::string certificateFile;  // the authorities to trust, PEM; "": the system's
};

// Where the mailboxes are and how we log in there. Only these servers are ever connected to.
struct Settings {
  ServerAddress server;                                       // of every server name that has no address of its own
  std::map<std::string, ServerAddress, std::less<>> servers;  // by server name, in lower case
  std::string administrator;
  std::string password;
  std::string loginTemplate;                 // "{mailbox}*{admin}"; {mailbox}: the mailbox's location in the directory
  std::string publicTemplate = "{admin}";    // who reads and deletes in public folders
  std::string holdingTemplate;               // the product's own account; "": the same as `publicTemplate`
  std::string holdingFolder = "Kalvo held";  // of that account, where deleted messages are held
  std::string directoryFile, passwordFile;
  bool authorizes = false;    // the administrator logs in for somebody by SASL PLAIN, not by a name made of both
  bool plainAllowed = false;  // passwords may go to other machines without TLS
  bool serverSort = true;     // use the server's own sorting where it has one
  Limits limits;

  const ServerAddress& AddressOf(std::string_view serverName) const;

  // The login name for a mailbox, by its location; for "" that of the public folders.
  std::string LoginOf(std::string_view mailbox) const;
  std::string HoldingLogin() const;

  // How to log in under such a name.
  Login LoginAs(const std::string& user) const;
};

// Reads the address of a mail store:
//
//   imap://ADMIN@HOST:PORT/?directory=FILE&password-file=FILE
//
// Words are percent-encoded as in any address. Beside these two, which have to be there, it may say
//   template=TEXT        the login name, default "{mailbox}*{admin}"
//   login=name|authorize how the administrator logs in for a mailbox: by a name made of both, or by SASL PLAIN with the
//                        mailbox's name to act for; then the template is "{mailbox}" where it is not given
//   public-login=TEXT    the login name for public folders, default "{admin}"
//   holding=NAME         the folder in which deleted messages are held, default "Kalvo held"; it is made when it is
//                        needed. A folder of the product's own account, never of a mailbox's owner
//   holding-login=TEXT   the login name for it, default that for public folders
//   tls=none|starttls|tls    default starttls ("imaps://" is tls, port 993)
//   plain=yes            allow tls=none to another machine than this
//   ca-file=FILE         the certificate authorities to trust, default the system's
//   server=NAME=HOST:PORT    where the directory's server of that name is, when not at HOST:PORT; once for each
//   sort=no              never ask the server to sort
//   silence=SECONDS      the longest wait for a byte, default 10
//   time-limit=SECONDS   the longest that one step may take, default 20
// The directory is a file as `mail::ReadDirectory` has it. A mailbox's location is its login name; a server's
// public folders are the name of their namespace ("Public/"). The password is the first line of its file.
// Anything else fails with 0x80004005 and says what is wrong.
Settings ReadSettings(std::string_view url);

// Fails where a text that is to be sent holds a byte that could end the command: below 0x20, or 0x7F.
void CheckSendable(std::string_view what, std::string_view text);

}  // namespace kalvo::imap
