// What holds of deleted messages whatever store is behind them.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>

#include "adapters/live_mailbox/fixture.h"
#include "adapters/mail/browser.h"
#include "adapters/mail/holding_desk.h"
#include "adapters/mail/shown_text.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {

namespace {

constexpr std::int32_t kByPath = live::kByPath, kPublic = live::kPublicFolders;

class HoldingContract : public ::testing::Test {
 protected:
  void SetUp() override {
    store_ = MakeStoreUnderTest();
    mail_ = store_->Store();
    live_ = std::make_shared<mail::Browser>(mail_, "KALVO\\carol");
  }

  mail::HoldingDesk Desk() { return mail::HoldingDesk(store_->Store()); }

  // A message of alice's as all its places show it: the identifier, size and dates of its row.
  std::string Row(std::string_view path, std::string_view subject) {
    live_->GotoContainer("EX01", "alice", path, 0, kByPath);
    const auto messages = live_->Messages();
    for (std::int32_t i = 0; i < messages->Count(); ++i, messages->MoveNext()) {
      if (ToText(messages->Field("Name")) != subject) continue;
      return ToText(messages->Field("Size")) + " " + ToText(messages->Field("CreateDate")) + " " +
             ToText(messages->Field("ModifiedDate"));
    }
    return "";
  }

  std::string IdOf(std::string_view path, std::string_view subject, std::int32_t flags = kByPath) {
    live_->GotoContainer("EX01", "alice", path, 0, flags);
    const auto messages = live_->Messages();
    for (std::int32_t i = 0; i < messages->Count(); ++i, messages->MoveNext()) {
      if (ToText(messages->Field("Name")) == subject) return ToText(messages->Field("ExchangeId"));
    }
    ADD_FAILURE() << "no message " << subject;
    return {};
  }

  void Delete(std::string_view path, std::string_view subject) {
    live_->RemoveMessage("EX01", "alice", "", IdOf(path, subject), 0);
  }

  std::unique_ptr<StoreUnderTest> store_;
  std::shared_ptr<mail::MailStore> mail_;
  std::shared_ptr<LiveContainer> live_;
};

TEST_F(HoldingContract, ADeletedMessageIsHeldWithWhereItWasAndWhoDeletedIt) {
  const std::int64_t before = std::time(nullptr);
  Delete("Inbox\\Projects", "Plan");
  auto desk = Desk();
  const auto held = desk.Held("ex01", "alice@kalvo.example", 0);
  ASSERT_EQ(held.size(), 1u);
  const auto& message = held[0].message;
  EXPECT_EQ(held[0].mailbox, "alice@kalvo.example");
  EXPECT_EQ(held[0].owner, "KALVO\\alice");
  EXPECT_EQ(message.server, "EX01");
  EXPECT_EQ(mail::PathText(message.folder), "Inbox\\Projects");
  EXPECT_EQ(message.subject, "Plan");
  EXPECT_EQ(message.sender, "bob@kalvo.example");
  EXPECT_EQ(message.sent, 915148800);
  EXPECT_EQ(message.received, 915148800);
  EXPECT_GT(message.size, 200);
  EXPECT_EQ(message.deletion.who, "KALVO\\carol");
  EXPECT_GE(message.deletion.when, before);
  EXPECT_LE(message.deletion.when, std::time(nullptr));
  EXPECT_TRUE(mail::IsHeldId(message.id));
  ASSERT_TRUE(desk.Find(message.id));
  EXPECT_EQ(desk.All().size(), 1u);
}

TEST_F(HoldingContract, AHeldMessageShowsInNoListingSizeOrTotal) {
  const auto everything = [&] {
    std::string shown;
    live_ = std::make_shared<mail::Browser>(store_->Store());
    const auto add = [&](std::string_view server, std::string_view mailbox, std::int32_t flags) {
      live_->GotoContainer(server, mailbox, "", 0, flags);
      const auto folders = live_->Folders();
      for (std::int32_t i = 0; i < folders->Count(); ++i, folders->MoveNext()) {
        shown += ToText(folders->Field("Name")) + " " + ToText(folders->Field("MessageCount")) + ", ";
      }
      shown += ToText(folders->Total("FolderSize")) + "; ";
    };
    for (const char* mailbox : {"alice", "bob", "=Ken"}) add("EX01", mailbox, kByPath);
    add("EX01", "Kalvo EX01", kByPath | kPublic);
    return shown;
  };
  for (const char* subject : {"Zebra", "apple", "Apple"}) Delete("Inbox", subject);
  live_->GotoContainer("EX01", "Kalvo EX01", "Sales", 0, kByPath | kPublic);
  live_->RemoveMessage("EX01", "Sales", "", ToText(live_->Messages()->Field("ExchangeId")), kPublic);
  const std::string shown = everything();
  EXPECT_EQ(Desk().All().size(), 4u);
  EXPECT_NE(shown.find("Inbox 3, "), shown.npos) << shown;
  EXPECT_NE(shown.find("Sales 0, 0; "), shown.npos) << shown;
  for (const auto& item : Desk().All()) Desk().Sweep(item.message.deletion.when + 1);
  EXPECT_EQ(Desk().All().size(), 0u);
  EXPECT_EQ(everything(), shown) << "it counted for nothing while it was held";
}

TEST_F(HoldingContract, AHeldMessageIsRestoredAsItWas) {
  const auto before = store_->AllMessages();
  const std::string row = Row("Inbox", "apple");
  Delete("Inbox", "apple");
  EXPECT_EQ(store_->AllMessages().size() + 1, before.size());
  const auto held = Desk().Held("EX01", "alice", 0);
  ASSERT_EQ(held.size(), 1u);
  EXPECT_EQ(Desk().Restore("EX01", "alice", held[0].message.id, 0), "Inbox");
  EXPECT_EQ(Row("Inbox", "apple"), row);
  EXPECT_EQ(store_->AllMessages(), before) << "bit for bit";
  EXPECT_EQ(Desk().All().size(), 0u);
  EXPECT_EQ(ErrorOf([&] { Desk().Restore("EX01", "alice", held[0].message.id, 0); }).Description(),
            "The deleted message is not held any more.");
}

TEST_F(HoldingContract, AHeldMessageOfAPublicFolderIsRestored) {
  live_->GotoContainer("EX01", "Kalvo EX01", "Sales\\Orders", 0, kByPath | kPublic);
  live_->RemoveMessage("EX01", "Sales", "", ToText(live_->Messages()->Field("ExchangeId")), kPublic);
  EXPECT_EQ(Desk().Held("EX01", "alice", 0).size(), 0u);
  const auto held = Desk().Held("EX01", "", kPublic);
  ASSERT_EQ(held.size(), 1u);
  EXPECT_EQ(held[0].mailbox, "");
  EXPECT_EQ(Desk().Restore(held[0]), "Sales\\Orders");
  live_->GotoContainer("EX01", "Kalvo EX01", "Sales\\Orders", 0, kByPath | kPublic);
  EXPECT_EQ(live_->MessageCount(), 1);
}

TEST_F(HoldingContract, AHeldMessageBelongsToItsMailboxAlone) {
  Delete("Inbox", "Zebra");
  const std::string id = Desk().Held("EX01", "alice", 0).at(0).message.id;
  EXPECT_EQ(Desk().Held("EX01", "bob", 0).size(), 0u);
  EXPECT_EQ(Desk().Held("EX01", "", kPublic).size(), 0u);
  for (const auto& [mailbox, flags] : {std::pair{"bob", 0}, {"", kPublic}}) {
    EXPECT_EQ(ErrorOf([&] { Desk().Restore("EX01", mailbox, id, flags); }).Description(),
              "The deleted message is not held any more.");
  }
  for (const std::string made : {"", "../../x", "00112233445566778899aabbccddeeff", "* 1:*"}) {
    EXPECT_EQ(ErrorOf([&] { Desk().Restore("EX01", "alice", made, 0); }).Description(),
              "The deleted message is not held any more.");
    EXPECT_FALSE(Desk().Find(made));
  }
  EXPECT_EQ(Desk().Held("EX01", "alice", 0).size(), 1u);
}

TEST_F(HoldingContract, WhereTheFolderIsGoneItSaysSoAndAnotherOneServes) {
  Delete("Inbox\\Projects", "Plan");
  const std::string id = Desk().Held("EX01", "alice", 0).at(0).message.id;
  store_->RemoveFolder("alice", {"Inbox", "Projects"});
  EXPECT_EQ(
      ErrorOf([&] { Desk().Restore("EX01", "alice", id, 0); }).Description(),
      "The folder \"Inbox\\Projects\" does not exist any more; the message can be restored into another folder of "
      "the mailbox.");
  EXPECT_NE(ErrorOf([&] { Desk().Restore("EX01", "alice", id, 0, "Nowhere"); }).Description(), "");
  EXPECT_EQ(Desk().Held("EX01", "alice", 0).size(), 1u) << "still held";
  EXPECT_EQ(Desk().Restore("EX01", "alice", id, 0, "sent items"), "Sent Items");
  EXPECT_NE(Row("Sent Items", "Plan"), "");
  EXPECT_EQ(Desk().All().size(), 0u);
}

TEST_F(HoldingContract, WhatIsPastItsTimeIsSweptAndNothingElse) {
  mail::Tree alice{"EX01", &mail_->Mailboxes()->Find("EX01", "alice")};
  const auto names = mail_->Mailboxes();
  const std::string inbox = mail_->FindFolder(alice, {"Inbox"});
  const auto remove = [&](std::int64_t when) {
    const auto messages = mail_->Messages(alice, inbox);
    const std::int32_t first[] = {0};
    const std::string key(messages->Row(first).key);
    return mail_->Remove(alice, inbox, key, {"", when});
  };
  const std::string old = remove(1000), older = remove(999), young = remove(1001);
  EXPECT_EQ(mail_->Sweep(999), 0);
  EXPECT_EQ(mail_->Sweep(1001), 2);
  const auto held = mail_->Held(&alice);
  ASSERT_EQ(held.size(), 1u);
  EXPECT_EQ(held[0].id, young);
  EXPECT_EQ(store_->AllMessages().size(), 7u) << "of ten, three were deleted";
}

TEST_F(HoldingContract, TheLastDeletedComesFirst) {
  mail::Tree alice{"EX01", &mail_->Mailboxes()->Find("EX01", "alice")};
  const auto names = mail_->Mailboxes();
  const std::string inbox = mail_->FindFolder(alice, {"Inbox"});
  std::vector<std::string> ids;
  for (const std::int64_t when : {1000, 3000, 2000}) {
    const auto messages = mail_->Messages(alice, inbox);
    const std::int32_t first[] = {0};
    ids.push_back(mail_->Remove(alice, inbox, std::string(messages->Row(first).key), {"", when}));
  }
  const auto held = mail_->Held(&alice);
  ASSERT_EQ(held.size(), 3u);
  EXPECT_EQ(held[0].id, ids[1]);
  EXPECT_EQ(held[1].id, ids[2]);
  EXPECT_EQ(held[2].id, ids[0]);
}

}  // namespace

}  // namespace kalvo::test
