#include "adapters/imap/imap_under_test.h"

#include <fstream>

#include "adapters/live_mailbox/fixture.h"
#include "adapters/mail/browser.h"
#include "adapters/mail/shown_text.h"

namespace kalvo::test {

std::string ServerName(const std::vector<std::string>& names, bool isPublic) {
  std::string name = isPublic ? "Public" : "";
  for (const auto& each : names) {
    if (!name.empty()) name += '/';
    name += !isPublic && name.empty() && each == "Inbox" ? "INBOX" : mail::ToModifiedUtf7(each);
  }
  return name;
}

std::string StoreAddress(const std::string& folder, std::uint16_t port, std::string_view more) {
  std::ofstream(folder + "/directory") << FixtureDirectory("Public/");
  std::ofstream(folder + "/password") << "pw\n";
  return "imap://master@127.0.0.1:" + std::to_string(port) +
         "/?tls=none&public-login=kalvo*{admin}&directory=" + folder + "/directory&password-file=" + folder +
         "/password" + std::string(more);
}

std::string StoreAddress(const DovecotServer& server, std::string_view more) {
  return StoreAddress(server.Folder(), server.Port(), more);
}

std::vector<std::string> FixtureUsers() {
  std::vector<std::string> users;
  for (const auto& tree : FixtureTrees()) {
    if (!tree.isPublic) users.push_back(tree.location);
  }
  return users;
}

void LoadFixture(const DovecotServer& server) {
  for (const auto& tree : FixtureTrees()) {
    for (const auto& folder : tree.folders) {
      if (tree.isPublic) server.MakePublicFolder(folder);
    }
    PlainImap imap(server.Port(), tree.isPublic ? "kalvo" : tree.location);
    for (const auto& folder : tree.folders) {
      if (!tree.isPublic) imap.Run("CREATE " + Quoted(ServerName(folder, false)));
    }
    for (const auto& message : tree.messages) {
      imap.Append(ServerName(message.folder, tree.isPublic), message.text, message.received);
    }
  }
}

std::shared_ptr<LiveContainer> Browse(const std::shared_ptr<imap::ImapStore>& store) {
  return std::make_shared<mail::Browser>(store);
}

}  // namespace kalvo::test
