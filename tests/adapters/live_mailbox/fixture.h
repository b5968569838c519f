#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo {
class LiveContainer;
}
namespace kalvo::mail {
class MailStore;
}

namespace kalvo::test {

// What every mail store is loaded with before the contract is tested on it.
struct FixtureMessage {
  std::vector<std::string> folder;  // names from the root; the first of a mailbox's inbox is "Inbox"
  std::string text;                 // a whole message, lines ended by LF
  std::int64_t received = 0;        // seconds since 1970, UTC
};

struct FixtureTree {
  std::string location;  // of the mailbox, as the directory names it; of public folders the server's name
  bool isPublic = false;
  std::vector<std::vector<std::string>> folders;  // all of them, those without messages too; the inbox is not listed
  std::vector<FixtureMessage> messages;
};

// Servers EX01 (with public folders) and EX02 (without); the directory file has "%EX01%" where EX01's public
// folders' location goes.
std::string FixtureDirectory(std::string_view publicLocation);
const std::vector<FixtureTree>& FixtureTrees();

// A loaded store under test.
class StoreUnderTest {
 public:
  virtual ~StoreUnderTest() = default;

  // A browsing object as a new session gets it.
  virtual std::shared_ptr<LiveContainer> Open() = 0;

  // The store itself, as a new process opens it.
  virtual std::shared_ptr<mail::MailStore> Store() = 0;

  // Removes a folder of a mailbox with everything in it, as another program does.
  virtual void RemoveFolder(const std::string& mailbox, const std::vector<std::string>& folder) = 0;

  // Every message of the store, all trees, as its bytes are stored; sorted. Deleted ones that are held are none.
  virtual std::vector<std::string> AllMessages() = 0;
};

// Each store's tests define this: a store freshly loaded with the fixture.
std::unique_ptr<StoreUnderTest> MakeStoreUnderTest();

}  // namespace kalvo::test
