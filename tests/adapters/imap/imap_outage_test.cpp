// A real server that dies, stops or comes back.
#include <gtest/gtest.h>

#include "adapters/imap/imap_store_fixture.h"

namespace kalvo::test {
namespace {

TEST_F(ImapStoreTest, AServerKilledWhileItDeletesLosesNothingElse) {
  Fill(12);
  for (int i = 0; i < 8; ++i) {
    const auto live = Browse(Store("&silence=10&time-limit=20"));
    OpenInbox(*live);
    const auto id = ToText(live->Messages()->Field("ExchangeId"));
    const auto subject = ToText(live->Messages()->Field("Name"));
    const auto before = server_.AllMessages();
    std::thread killer([&] {
      std::this_thread::sleep_for(milliseconds(2 * i));
      server_.Kill();
    });
    const auto failure = ErrorOf([&] { live->RemoveMessage("EX01", "alice", "", id, 0); }).Description();
    killer.join();
    server_.Start();
    const auto after = server_.AllMessages();
    EXPECT_TRUE(std::includes(before.begin(), before.end(), after.begin(), after.end()));
    EXPECT_LE(before.size() - after.size(), 1u);
    if (failure.empty()) {
      EXPECT_EQ(before.size() - after.size(), 1u);
    }
    for (const auto& message : before) {
      if (message.find("Subject: " + subject + "\n") == message.npos) {
        EXPECT_TRUE(std::binary_search(after.begin(), after.end(), message));
      }
    }
  }
}

TEST_F(ImapStoreTest, AStoppedServerGivesAnErrorAndTheNextPageWorks) {
  Fill(120);
  const auto store = Store();
  const auto live = Browse(store);
  OpenInbox(*live);
  const auto messages = live->Messages();
  EXPECT_NE(ToText(messages->Field("Name")), "");
  for (int i = 0; i < 60; ++i) messages->MoveNext();
  server_.Pause();
  const auto begin = Clock::now();
  const auto failure = ErrorOf([&] { messages->Field("Name"); }).Description();
  EXPECT_NE(failure.find("did not answer in time"), std::string::npos) << failure;
  EXPECT_NE(ErrorOf([&] { Browse(store)->GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath); }).Description(),
            "");
  EXPECT_LT(Clock::now() - begin, milliseconds(15'000));
  server_.Resume();
  const auto next = Browse(store);
  // For a while nobody asks a server that was silent again.
  EXPECT_TRUE(Eventually([&] { return ErrorOf([&] { OpenInbox(*next); }).Description().empty(); }));
  EXPECT_EQ(FieldsOf(*next->Messages(), "Name").size(), 120u);
}

TEST_F(ImapStoreTest, AKilledServerGivesAnErrorAndTheNextPageWorks) {
  Fill(120);
  const auto store = Store();
  const auto live = Browse(store);
  OpenInbox(*live);
  const auto messages = live->Messages();
  EXPECT_NE(ToText(messages->Field("Name")), "");
  for (int i = 0; i < 60; ++i) messages->MoveNext();
  server_.Kill();
  const auto begin = Clock::now();
  const auto failure = ErrorOf([&] { messages->Field("Name"); }).Description();
  EXPECT_NE(failure.find("cannot be reached"), std::string::npos) << failure;
  EXPECT_LT(Clock::now() - begin, milliseconds(15'000));
  server_.Start();
  EXPECT_NE(ToText(messages->Field("Name")), "") << "the same listing goes on";
  const auto next = Browse(store);
  OpenInbox(*next);
  EXPECT_EQ(FieldsOf(*next->Messages(), "Name").size(), 120u);
}

TEST_F(ImapStoreTest, AServerStartedAnewBetweenTwoPagesIsNotNoticed) {
  Fill(3);
  const auto store = Store();
  for (int i = 0; i < 2; ++i) {
    const auto live = Browse(store);
    OpenInbox(*live);
    EXPECT_EQ(FieldsOf(*live->Messages(), "Name").size(), 3u);
    server_.Kill();
    server_.Start();
  }
}

}  // namespace
}  // namespace kalvo::test
