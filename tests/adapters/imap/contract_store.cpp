// The contract's store: a Dovecot, loaded anew for each test.
#include "adapters/imap/imap_under_test.h"
#include "adapters/live_mailbox/fixture.h"

namespace kalvo::test {

namespace {

class ImapUnderTest : public StoreUnderTest {
 public:
  ImapUnderTest() : server_(FixtureUsers()) {
    LoadFixture(server_);
    store_ = std::make_shared<imap::ImapStore>(imap::ReadSettings(StoreAddress(server_)));
  }

  std::shared_ptr<LiveContainer> Open() override { return Browse(store_); }
  std::shared_ptr<mail::MailStore> Store() override {
    return std::make_shared<imap::ImapStore>(imap::ReadSettings(StoreAddress(server_)));
  }
  void RemoveFolder(const std::string& mailbox, const std::vector<std::string>& folder) override {
    PlainImap(server_.Port(), mailbox).Run("DELETE " + Quoted(ServerName(folder, false)));
  }
  std::vector<std::string> AllMessages() override { return server_.AllMessages(); }

 private:
  DovecotServer server_;
  std::shared_ptr<imap::ImapStore> store_;
};

}  // namespace

std::unique_ptr<StoreUnderTest> MakeStoreUnderTest() { return std::make_unique<ImapUnderTest>(); }

}  // namespace kalvo::test
