#include "adapters/imap/mail_check.h"

#include <sys/stat.h>

#include <algorithm>
#include <functional>

#include "adapters/imap/imap_connection.h"
#include "adapters/imap/imap_error.h"
#include "adapters/imap/imap_settings.h"
#include "adapters/mail/directory.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

constexpr const char* kInbox = "INBOX";

// clang-format off
constexpr struct { const char* name; bool isNeeded; std::string_view without; } kCapabilities[] = {
  {"UIDPLUS",     true,  "nothing can be deleted"},
  {"SORT",        false, "orders by date read every head"},
  {"LIST-STATUS", false, "folders are asked for one by one"},
};
constexpr struct { char right; std::string_view without; } kRights[] = {
  {'r', "it cannot be read; where the server has access lists, the login needs the owner's rights (acl_user)"},
  {'t', "nothing can be deleted"},
  {'e', "nothing can be deleted"},
};
// clang-format on

class Check {
 public:
  Check(const Settings& settings, std::vector<Finding>& findings) : settings_(settings), findings_(findings) {}

  void PasswordFile() {
    struct stat status {};
    if (stat(settings_.passwordFile.c_str(), &status) != 0) return;
    const bool isClosed = (status.st_mode & 077) == 0;
    Add(isClosed, "password file ", settings_.passwordFile,
        isClosed ? " is closed to others" : " is open to others: chmod 600");
  }

  void Mailbox(const mail::MailServer& server, const mail::Mailbox& mailbox) {
    const std::string user = settings_.LoginOf(mailbox.location);
    As(server, user, [&](Connection& connection) {
      for (const auto& each : kCapabilities) {
        if (!connection.Has(each.name)) Add(!each.isNeeded, server.name, " has no ", each.name, ": ", each.without);
      }
      const auto rights = connection.Rights(kInbox);
      for (const auto& each : kRights) {
        const bool has = !rights || rights->find(each.right) != rights->npos;
        if (!has) Add(false, server.name, " gives ", user, " no right ", each.right, " in INBOX: ", each.without);
      }
      const auto state = connection.Open(kInbox, Access::Read);
      Add(true, server.name, " lets ", user, " read INBOX (", state.messages, " messages)");
    });
  }

  void PublicFolders(const mail::MailServer& server) {
    if (server.publicFolders.empty()) return;
    const std::string user = settings_.LoginOf("");
    As(server, user, [&](Connection& connection) {
      const auto folders = connection.List(server.publicFolders + "%", server.publicFolders);
      Add(!folders.empty(), server.name, " shows ", user, " ", folders.size(), " public folders below ",
          server.publicFolders);
    });
  }

 private:
  template <typename... Pieces>
  void Add(bool isGood, const Pieces&... pieces) {
    findings_.push_back({isGood, Built([&](std::string& out) { Append(out, pieces...); })});
  }

  void As(const mail::MailServer& server, const std::string& user, const std::function<void(Connection&)>& step) {
    try {
      Connection connection(settings_.AddressOf(server.name), settings_.LoginAs(user), settings_.limits,
                            Deadline(settings_.limits.operation));
      step(connection);
    } catch (const ImapError& error) {
      Add(false, server.name, " as ", user, ": ", error.Description());
    }
  }

  const Settings& settings_;
  std::vector<Finding>& findings_;
};

}  // namespace

std::vector<Finding> CheckMail(const Settings& settings, const mail::Directory& directory) {
  std::vector<Finding> findings;
  Check check(settings, findings);
  check.PasswordFile();
  for (const mail::MailServer& server : directory.Servers()) {
    const auto& all = directory.Mailboxes();
    const auto mailbox =
        std::find_if(all.begin(), all.end(), [&](const mail::Mailbox& each) { return each.server == server.name; });
    if (mailbox != all.end()) check.Mailbox(server, *mailbox);
    check.PublicFolders(server);
  }
  return findings;
}

}  // namespace kalvo::imap
