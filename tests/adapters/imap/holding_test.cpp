// Deleted messages on a real server: in the product's own account, and in one place whatever is killed.
#include "adapters/imap/imap_holding.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <functional>
#include <thread>

#include "adapters/imap/imap_under_test.h"
#include "adapters/mail/holding_desk.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/error_of.h"
#include "support/killed_process.h"

namespace kalvo::test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

const std::string kText = "From: a@kalvo.example\nSubject: once\n\nBody.\n";
constexpr std::int64_t kReceived = 915148800;

class ImapHolding : public ::testing::Test {
 protected:
  ImapHolding() : server_(FixtureUsers()) {}

  std::shared_ptr<imap::ImapStore> Store(std::string_view more = "") {
    auto settings = imap::ReadSettings(StoreAddress(server_, more));
    settings.limits.patience = milliseconds(0);  // nobody restores beside us but those that are killed
    return std::make_shared<imap::ImapStore>(settings);
  }

  void Fill() { PlainImap(server_.Port(), "alice").Append("INBOX", kText, kReceived); }

  void Empty(std::string_view user, const std::string& folder) {
    PlainImap imap(server_.Port(), user);
    if (imap.Run("LIST \"\" " + Quoted(folder)).find("* LIST") == std::string::npos) return;
    imap.Run("SELECT " + Quoted(folder));
    imap.Run("UID STORE 1:* +FLAGS (\\Deleted)");
    imap.Run("EXPUNGE");
  }

  static mail::Tree Alice(mail::MailStore& store) { return {"EX01", &store.Mailboxes()->Find("EX01", "alice")}; }

  // Deletes the newest message of alice's inbox.
  static std::string Delete(mail::MailStore& store, std::int64_t when = std::time(nullptr)) {
    const mail::Tree alice = Alice(store);
    const auto messages = store.Messages(alice, "INBOX");
    const std::int32_t first[] = {0};
    return store.Remove(alice, "INBOX", std::string(messages->Row(first).key), {"KALVO\\alice", when});
  }

  std::size_t InInbox() {
    const auto store = Store();
    return static_cast<std::size_t>(store->Messages(Alice(*store), "INBOX")->Count());
  }
  std::vector<mail::HeldMessage> Held() {
    const auto store = Store();
    const mail::Tree alice = Alice(*store);
    return store->Held(&alice);
  }

  // A server may still be at what a killed process asked for last.
  std::string Places() {
    const auto until = Clock::now() + std::chrono::seconds(20);
    std::string places;
    do {
      places = std::to_string(InInbox()) + " in the inbox, " + std::to_string(Held().size()) + " held";
      if (places == "1 in the inbox, 0 held" || places == "0 in the inbox, 1 held") return "one";
      std::this_thread::sleep_for(milliseconds(20));
    } while (Clock::now() < until);
    return places;
  }

  std::string FlagsOf(std::string_view user, const std::string& folder) {
    PlainImap imap(server_.Port(), user);
    imap.Run("EXAMINE " + Quoted(folder));
    const std::string answer = imap.Run("FETCH 1 (FLAGS INTERNALDATE)");
    return answer.substr(0, answer.find("\r\n"));
  }

  DovecotServer server_;
};

TEST_F(ImapHolding, TheMessageIsInTheProductsAccountAndInNoOthers) {
  Fill();
  const auto store = Store();
  Delete(*store);
  EXPECT_NE(PlainImap(server_.Port(), "kalvo").Run("STATUS \"Kalvo held\" (MESSAGES)").find("MESSAGES 1"),
            std::string::npos);
  const std::string folders = PlainImap(server_.Port(), "alice").Run("LIST \"\" *");
  EXPECT_EQ(folders.find("held"), std::string::npos) << folders;
  EXPECT_EQ(InInbox(), 0u);
}

TEST_F(ImapHolding, AFolderOfTheSettingsHoldsThem) {
  Fill();
  Delete(*Store("&holding=Deleted%20%C3%BC"));
  EXPECT_NE(PlainImap(server_.Port(), "kalvo").Run("STATUS \"Deleted &APw-\" (MESSAGES)").find("MESSAGES 1"),
            std::string::npos);
}

TEST_F(ImapHolding, FlagsAndKeywordsAndTheTimeComeBack) {
  Fill();
  {
    PlainImap imap(server_.Port(), "alice");
    imap.Run("SELECT INBOX");
    imap.Run("STORE 1 +FLAGS (\\Seen \\Answered \\Flagged \\Deleted $Label)");
  }
  const std::string before = FlagsOf("alice", "INBOX");
  ASSERT_NE(before.find("$Label"), before.npos);
  const auto store = Store();
  const std::string id = Delete(*store);
  const mail::Tree alice = Alice(*store);
  store->Restore(alice, id, std::nullopt);
  std::string after = FlagsOf("alice", "INBOX");
  for (const char* flag : {"\\Seen", "\\Answered", "\\Flagged", "$Label"})
    EXPECT_NE(after.find(flag), after.npos) << after;
  EXPECT_NE(after.find("1999"), after.npos) << after;
  EXPECT_EQ(after.find("\\Deleted"), after.npos) << after;
  EXPECT_EQ(server_.AllMessages(), std::vector<std::string>{kText});
}

TEST_F(ImapHolding, AMessageOfSeveralPiecesComesBackAsItWas) {
  std::string large = "Subject: large\n\n";
  while (large.size() < (9u << 20)) large += "A line of a body that is longer than what is fetched at once: \xFF\n";
  PlainImap(server_.Port(), "alice").Append("INBOX", large, kReceived);
  const auto before = server_.AllMessages();
  const auto store = Store();
  const std::string id = Delete(*store);
  EXPECT_TRUE(server_.AllMessages().empty());
  store->Restore(Alice(*store), id, std::nullopt);
  EXPECT_TRUE(server_.AllMessages() == before);
}

TEST_F(ImapHolding, WhatCannotBeHeldIsNotDeleted) {
  Fill();
  const auto store = Store("&holding-login=nobody-there");
  const std::string failure = ErrorOf([&] { Delete(*store); }).Description();
  EXPECT_TRUE(failure.starts_with("The message was not deleted, because it cannot be held. The mail server"))
      << failure;
  EXPECT_EQ(InInbox(), 1u);
}

TEST_F(ImapHolding, TheOwnersAccountIsNeverUsed) {
  for (const char* more :
       {"&holding-login={mailbox}*{admin}", "&holding=INBOX", "&holding=inbox", "&holding=", "&holding=%2A"}) {
    EXPECT_NE(ErrorOf([&] { Store(more); }).Description(), "") << more;
  }
}

TEST_F(ImapHolding, AFolderThatDoesNotTakeItLeavesItHeldAndFreeForTheNext) {
  server_.MakePublicFolder({"Sales"});
  PlainImap(server_.Port(), "kalvo").Append("Public/Sales", kText, kReceived);
  const auto store = Store();
  const mail::Tree sales{"EX01", nullptr};
  const auto messages = store->Messages(sales, "Public/Sales");
  const std::int32_t first[] = {0};
  const std::string id = store->Remove(sales, "Public/Sales", std::string(messages->Row(first).key), {"", 1000});
  server_.Write("public/.Sales/dovecot-acl", "user=kalvo lrte\n");
  std::this_thread::sleep_for(milliseconds(1100));  // the server looks at it once a second
  EXPECT_NE(ErrorOf([&] { Store()->Restore(sales, id, std::nullopt); }).Description().find("refused"),
            std::string::npos);
  EXPECT_EQ(PlainImap(server_.Port(), "kalvo").Run("LIST \"\" \"Kalvo held *\"").find("* LIST"), std::string::npos);
  ASSERT_EQ(Store()->Held(&sales).size(), 1u);
  server_.Write("public/.Sales/dovecot-acl", "user=kalvo lrwstipekxa\n");
  std::this_thread::sleep_for(milliseconds(1100));
  Store()->Restore(sales, id, std::nullopt);
  EXPECT_EQ(Store()->Held(&sales).size(), 0u);
  EXPECT_EQ(server_.AllMessages(), std::vector<std::string>{kText});
}

TEST_F(ImapHolding, OfTwoWhoDeleteTheCopyOfTheOneWhoDidStays) {
  Fill();
  const auto store = Store();
  const std::string id = Delete(*store);
  // Another one had made a copy as well when the message went, and takes that back.
  auto other = Held().at(0);
  other.id = mail::NewHeldId();
  imap::ConnectionPool pool(imap::ReadSettings(StoreAddress(server_)));
  imap::Holding holding(pool, store->Key());
  holding.Put(other, {"Subject: once\r\n\r\nBody.\r\n", "", kReceived});
  EXPECT_EQ(Held().size(), 1u) << "the same message";
  holding.Drop(other);
  ASSERT_EQ(Held().size(), 1u);
  EXPECT_EQ(Held()[0].id, id);
}

TEST_F(ImapHolding, OfManyWhoRestoreOneSucceeds) {
  Fill();
  const std::string id = Delete(*Store());
  constexpr int kProcesses = 4;
  const auto settings = imap::ReadSettings(StoreAddress(server_));  // which writes the files that it names
  std::vector<pid_t> processes;
  for (int i = 0; i < kProcesses; ++i) {
    const pid_t process = fork();
    if (process == 0) {
      _exit(ErrorOf([&] {
              imap::ImapStore store(settings);
              store.Restore(Alice(store), id, std::nullopt);
            })
                    .Description()
                    .empty()
                ? 1
                : 0);
    }
    processes.push_back(process);
  }
  int restored = 0;
  for (const pid_t process : processes) {
    int status = 0;
    waitpid(process, &status, 0);
    restored += WEXITSTATUS(status);
  }
  EXPECT_EQ(restored, 1);
  EXPECT_EQ(InInbox(), 1u);
  EXPECT_EQ(Held().size(), 0u);
  EXPECT_EQ(PlainImap(server_.Port(), "kalvo").Run("LIST \"\" \"Kalvo held *\"").find("* LIST"), std::string::npos);
}

TEST_F(ImapHolding, MessagesThatOthersPutThereAreLeftAlone) {
  Fill();
  Delete(*Store());
  {
    PlainImap kalvo(server_.Port(), "kalvo");
    kalvo.Append("Kalvo held", kText, kReceived);
    kalvo.Append("Kalvo held", "X-Kalvo-Held: 00;held=1;id=00112233445566778899aabbccddeeff;end=1\n" + kText,
                 kReceived);
  }
  EXPECT_EQ(Held().size(), 1u);
  EXPECT_EQ(Store()->Sweep(std::time(nullptr) + 10), 1);
  EXPECT_NE(PlainImap(server_.Port(), "kalvo").Run("STATUS \"Kalvo held\" (MESSAGES)").find("MESSAGES 2"),
            std::string::npos);
}

TEST_F(ImapHolding, ADeleteKilledAtAnyMomentLeavesTheMessageInOnePlace) {
  std::shared_ptr<imap::ImapStore> store;
  std::string key;
  const int kills = KillAtEveryMoment(
      Calls::ThatSend,
      [&] {
        Empty("alice", "INBOX");
        Empty("kalvo", "Kalvo held");
        Fill();
        store = Store();
        const auto messages = store->Messages(Alice(*store), "INBOX");
        const std::int32_t first[] = {0};
        key = std::string(messages->Row(first).key);
        store = Store();
      },
      [&] {
        store->Remove(Alice(*store), "INBOX", key, {"", std::time(nullptr)});
      },
      [&] {
        ASSERT_EQ(Places(), "one");
        const auto held = Held();
        if (held.empty()) return;
        const auto again = Store();
        again->Restore(Alice(*again), held[0].id, std::nullopt);
        ASSERT_EQ(InInbox(), 1u);
        ASSERT_EQ(Held().size(), 0u);
      });
  EXPECT_GT(kills, 15);
}

TEST_F(ImapHolding, ARestoreKilledAtAnyMomentLosesNothingAndDoublesNothing) {
  std::shared_ptr<imap::ImapStore> store;
  std::string id;
  const int kills = KillAtEveryMoment(
      Calls::ThatSend,
      [&] {
        Empty("alice", "INBOX");
        Empty("kalvo", "Kalvo held");
        Fill();
        id = Delete(*Store());
        store = Store();
      },
      [&] { store->Restore(Alice(*store), id, std::nullopt); },
      [&] {
        // As long as it is held it is restored again, and then it is in its folder alone.
        const auto until = Clock::now() + std::chrono::seconds(20);
        do {
          const auto again = Store();
          ErrorOf([&] { again->Restore(Alice(*again), id, std::nullopt); }).Description();
        } while (!Held().empty() && Clock::now() < until);
        ASSERT_EQ(InInbox(), 1u);
        ASSERT_EQ(Held().size(), 0u);
      });
  EXPECT_GT(kills, 10);
}

TEST_F(ImapHolding, WhatAStoppedDeleteLeavesBehindIsSweptLater) {
  Fill();
  auto store = Store();
  const mail::Tree alice = Alice(*store);
  const auto messages = store->Messages(alice, "INBOX");
  const std::int32_t first[] = {0};
  const std::string key(messages->Row(first).key);
  int calls = 0;
  const auto copies = [&] {
    PlainImap imap(server_.Port(), "kalvo");
    if (imap.Run("LIST \"\" \"Kalvo held\"").find("* LIST") == std::string::npos) return false;
    return imap.Run("STATUS \"Kalvo held\" (MESSAGES)").find("MESSAGES 0") == std::string::npos;
  };
  while (!copies() && ++calls < 100) {
    RunAndKillAt(calls, Calls::ThatSend, [&] {
      const auto killed = Store();
      killed->Remove(Alice(*killed), "INBOX", key, {"", std::time(nullptr) - 4000});
    });
  }
  ASSERT_EQ(InInbox(), 1u) << "it was killed right behind the copy";
  EXPECT_EQ(Held().size(), 0u);
  EXPECT_EQ(Store()->Sweep(0), 0) << "nothing that anybody could restore";
  EXPECT_FALSE(copies());
  EXPECT_EQ(InInbox(), 1u);
}

}  // namespace
}  // namespace kalvo::test
