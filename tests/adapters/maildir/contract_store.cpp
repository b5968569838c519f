// The store that the contract of live mailboxes is tested on here.
#include <algorithm>

#include "adapters/live_mailbox/fixture.h"
#include "adapters/maildir/maildir_fixture.h"
#include "adapters/maildir/maildir_store.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

namespace {

class MaildirUnderTest : public StoreUnderTest {
 public:
  MaildirUnderTest() { LoadFixture(folder_.Path()); }

  // A store of its own each time, as another process opens it.
  std::shared_ptr<LiveContainer> Open() override { return maildir::MaildirStore(folder_.Path().string()).Open(); }

  std::shared_ptr<mail::MailStore> Store() override { return maildir::MaildirStore(folder_.Path().string()).Store(); }

  void RemoveFolder(const std::string& mailbox, const std::vector<std::string>& folder) override {
    std::filesystem::remove_all(MaildirFolder(folder_.Path() / mailbox, folder));
  }

  std::vector<std::string> AllMessages() override {
    std::vector<std::string> messages;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder_.Path())) {
      const auto parent = entry.path().parent_path().filename();
      if (entry.is_regular_file() && (parent == "cur" || parent == "new")) messages.push_back(ReadFile(entry.path()));
    }
    std::sort(messages.begin(), messages.end());
    return messages;
  }

 private:
  TemporaryFolder folder_;
};

}  // namespace

std::unique_ptr<StoreUnderTest> MakeStoreUnderTest() { return std::make_unique<MaildirUnderTest>(); }

}  // namespace kalvo::test
