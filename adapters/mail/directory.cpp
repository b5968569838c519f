#include "adapters/mail/directory.h"

#include <algorithm>

#include "adapters/mail/errors.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::mail {

namespace {

constexpr std::string_view kProduct = "Kalvo ";

std::string_view WithoutDomain(std::string_view account) {
  return account.substr(account.rfind('\\') + 1);  // no domain: from 0
}

}  // namespace

Directory::Directory(std::vector<MailServer> servers, std::vector<Mailbox> mailboxes)
    : servers_(std::move(servers)), mailboxes_(std::move(mailboxes)) {
  for (std::size_t i = 0; i < mailboxes_.size(); ++i) {
    const Mailbox& mailbox = mailboxes_[i];
    for (const std::string& address : mailbox.addresses) AddExact(address, i);
    if (!mailbox.distinguishedName.empty()) exact_.emplace(ToLower(mailbox.distinguishedName), i);
    AddExact(mailbox.account, i);
    accounts_.emplace(ToLower(WithoutDomain(mailbox.account)), i);
    names_.emplace_back(ToLower(mailbox.name), i);
  }
  std::sort(names_.begin(), names_.end());
}

void Directory::AddExact(std::string_view text, std::size_t mailbox) {
  // An account without a domain would hide the display names that begin with it.
  if (text.find_first_of("@\\/") != std::string::npos) exact_.emplace(ToLower(text), mailbox);
}

const MailServer& Directory::Server(std::string_view name) const {
  for (const MailServer& server : servers_) {
    if (EqualsIgnoringCase(server.name, name)) return server;
  }
  throw NoSuchServer(name);
}

// Everywhere, each mailbox once.
std::vector<std::size_t> Directory::Matches(std::string_view typed) const {
  std::vector<std::size_t> found;
  const bool exactly = typed.starts_with('=');
  const std::string text = ToLower(exactly ? typed.substr(1) : typed);
  if (text.empty()) return found;
  const auto add = [&](const auto& range) {
    for (auto at = range.first; at != range.second; ++at) found.push_back(at->second);
  };
  add(exact_.equal_range(text));
  if (found.empty()) {
    for (auto at = std::lower_bound(names_.begin(), names_.end(), std::pair(text, std::size_t{0}));
         at != names_.end() && (exactly ? at->first == text : at->first.starts_with(text)); ++at) {
      found.push_back(at->second);
    }
  }
  if (found.empty()) add(accounts_.equal_range(text));
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

const Mailbox& Directory::Find(std::string_view server, std::string_view typed) const {
  const std::string& home = Server(server).name;
  if (IsProductMailbox(home, typed)) throw NoSuchMailbox(typed);
  const Mailbox* found = nullptr;
  for (const std::size_t i : Matches(typed)) {
    if (!EqualsIgnoringCase(mailboxes_[i].server, home)) continue;
    if (found) throw AmbiguousMailbox(typed);
    found = &mailboxes_[i];
  }
  if (!found) throw NoSuchMailbox(typed);
  return *found;
}

const Mailbox& Directory::Resolve(std::string_view server, std::string_view typed) const {
  try {
    return Find(server, typed);
  } catch (const Error& error) {
    if (error.Number() != codes::kNoSuchMailbox) throw;
  }
  Server(server);
  const std::vector<std::size_t> elsewhere = Matches(typed);
  if (elsewhere.size() != 1 || IsProductMailbox(server, typed)) throw NoSuchMailbox(typed);
  return mailboxes_[elsewhere.front()];
}

bool IsProductMailbox(std::string_view server, std::string_view mailbox) {
  if (mailbox.starts_with('=')) mailbox.remove_prefix(1);
  return EqualsIgnoringCase(mailbox, ProductMailbox(server));
}

std::string ProductMailbox(std::string_view server) {
  return Built([&](std::string& out) { Append(out, kProduct, server); });
}

}  // namespace kalvo::mail
