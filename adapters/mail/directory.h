#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace kalvo::mail {

// A mailbox as its store knows it.
struct Mailbox {
  std::string server;
  std::string name;                    // display name
  std::string account;                 // its owner, in the form of the logon name
  std::vector<std::string> addresses;  // the first is the one that it is known by
  std::string distinguishedName;       // may be ""
  std::string location;                // where the store keeps it, in the store's own terms

  const std::string& Address() const { return addresses.front(); }
};

struct MailServer {
  std::string name;
  std::string publicFolders;  // where the store keeps them, in the store's own terms; "" for none
};

// The servers and mailboxes of a store, and which of them a typed name means:
//   an address, a distinguished name or an account "DOMAIN\name" is that mailbox;
//   "=Ken" is the mailbox with exactly this display name;
//   any other text is the beginning of a display name, or, where none begins so, an account without its domain.
// All without regard to case. The product's own mailbox of a server, "Kalvo <server>", is never among them.
class Directory {
 public:
  // Every mailbox has an address, an account, and one of the servers.
  Directory(std::vector<MailServer> servers, std::vector<Mailbox> mailboxes);

  // The server of that name. Fails with 0x8004010F.
  const MailServer& Server(std::string_view name) const;

  // The mailbox of that server that a typed name means. Fails with 0xE1C10029 for several, 0x8004010F for none.
  const Mailbox& Find(std::string_view server, std::string_view typed) const;

  // The same; where that server has none, the one mailbox of another server that it means.
  const Mailbox& Resolve(std::string_view server, std::string_view typed) const;

  const std::vector<MailServer>& Servers() const { return servers_; }
  const std::vector<Mailbox>& Mailboxes() const { return mailboxes_; }

 private:
  std::vector<std::size_t> Matches(std::string_view typed) const;
  void AddExact(std::string_view text, std::size_t mailbox);

  std::vector<MailServer> servers_;
  std::vector<Mailbox> mailboxes_;
  std::unordered_multimap<std::string, std::size_t> exact_;     // addresses, distinguished names, accounts
  std::unordered_multimap<std::string, std::size_t> accounts_;  // without their domain
  std::vector<std::pair<std::string, std::size_t>> names_;      // display names in lower case, sorted
};

// "Kalvo <server>", without regard to case.
bool IsProductMailbox(std::string_view server, std::string_view mailbox);
std::string ProductMailbox(std::string_view server);

}  // namespace kalvo::mail
