// What the contract does not ask: orders, windows, names and rights on a real server, and its death.
#include <gtest/gtest.h>

#include "adapters/imap/imap_store_fixture.h"

namespace kalvo::test {
namespace {

TEST_F(ImapStoreTest, TheServersOrderIsOurs) {
  Fill(80);
  const auto sorting = Store(), plain = Store("&sort=no");
  const auto ids = [](const std::shared_ptr<imap::ImapStore>& store, std::string_view field, int descending,
                      std::string_view second) {
    const auto live = Browse(store);
    OpenInbox(*live);
    const auto messages = live->Messages();
    messages->AddSortField(field, descending);
    if (!second.empty()) messages->AddSortField(second, 1);
    messages->Sort();
    return FieldsOf(*messages, "ExchangeId");
  };
  for (const char* field : {"Name", "Sender", "Size", "CreateDate", "ModifiedDate"}) {
    for (const int descending : {0, 1}) {
      for (const char* second : {"", "Size", "ModifiedDate", "Sender"}) {
        SCOPED_TRACE(std::string(field) + (descending != 0 ? " down, " : " up, ") + second);
        EXPECT_EQ(ids(sorting, field, descending, second), ids(plain, field, descending, second));
      }
    }
  }
}

TEST_F(ImapStoreTest, OnlyTheRowsThatAreShownAreFetched) {
  Fill(300);
  const auto store = Store();
  const auto page = [&](int first) {
    const auto live = Browse(store);
    OpenInbox(*live);
    const auto messages = live->Messages();
    messages->AddSortField("ModifiedDate", 1);
    messages->Sort();
    messages->MoveFirst();
    for (int i = 0; i < first; ++i) messages->MoveNext();
    for (int i = 0; i < 50; ++i, messages->MoveNext()) EXPECT_NE(ToText(messages->Field("Name")), "");
    EXPECT_GT(ToDouble(messages->Total("Size")), 300 * 50);
  };
  page(0);
  EXPECT_EQ(store->Cost().messagesFetched, 50u);
  page(200);
  EXPECT_EQ(store->Cost().messagesFetched, 100u);
  page(0);
  EXPECT_EQ(store->Cost().messagesFetched, 100u) << "known from the first time";
  EXPECT_EQ(store->Cost().connections, 1u);
}

TEST_F(ImapStoreTest, AServerThatSortsByDateIsAskedForNoMoreThanThePage) {
  Fill(300);
  const auto fetched = [&](std::string_view more) {
    const auto store = Store(more);
    const auto live = Browse(store);
    OpenInbox(*live);
    const auto messages = live->Messages();
    messages->AddSortField("CreateDate", 1);
    messages->Sort();
    for (int i = 0; i < 50; ++i, messages->MoveNext()) EXPECT_NE(ToText(messages->Field("CreateDate")), "");
    return store->Cost().messagesFetched;
  };
  int undated = 0;
  for (int i = 0; i < 300; ++i) undated += i % 11 == 3 || i % 13 == 5 ? 1 : 0;
  EXPECT_EQ(fetched(""), 50u + static_cast<std::size_t>(undated));
  EXPECT_EQ(fetched("&sort=no"), 300u + 50u) << "heads, and rows";
}

TEST_F(ImapStoreTest, NewAndVanishedMessagesAreSeenOnTheNextPage) {
  Fill(5);
  const auto store = Store();
  const auto subjects = [&] {
    const auto live = Browse(store);
    OpenInbox(*live);
    EXPECT_EQ(live->MessageCount(), live->Messages()->Count());
    return FieldsOf(*live->Messages(), "Name");
  };
  EXPECT_EQ(subjects(), (Texts{"Re: Topic 4", "Topic 3", "Topic 2", "Topic 1", "Re: Topic 0"}));
  PlainImap other(server_.Port(), "alice");
  other.Append("INBOX", "Subject: new\n\nx\n", 1000000000);
  other.Run("SELECT INBOX");
  other.Run("STORE 2 +FLAGS (\\Deleted)");
  other.Run("EXPUNGE");
  EXPECT_EQ(subjects(), (Texts{"new", "Re: Topic 4", "Topic 3", "Topic 2", "Re: Topic 0"}));
  other.Append("INBOX", "Subject: newer\n\nx\n", 1000000001);
  other.Run("STORE 1 +FLAGS (\\Deleted)");
  other.Run("EXPUNGE");
  EXPECT_EQ(subjects(), (Texts{"newer", "new", "Re: Topic 4", "Topic 3", "Topic 2"})) << "as many as before";
}

TEST_F(ImapStoreTest, AMessageThatVanishesWhileItIsListedKeepsItsRow) {
  Fill(3);
  const auto live = Browse(Store());
  OpenInbox(*live);
  const auto messages = live->Messages();
  PlainImap other(server_.Port(), "alice");
  other.Run("SELECT INBOX");
  other.Run("STORE 1:* +FLAGS (\\Deleted)");
  other.Run("EXPUNGE");
  EXPECT_EQ(FieldsOf(*messages, "Name"), Texts(3, ""));
}

TEST_F(ImapStoreTest, ANameCannotEndACommand) {
  Fill(1);
  const auto settings = imap::ReadSettings(StoreAddress(server_));
  imap::Connection connection(settings.server, {"alice*master", "pw", ""}, settings.limits,
                              imap::Deadline(settings.limits.operation));
  const std::string evil[] = {"x\r\nA1 DELETE INBOX", "x\nA1 DELETE INBOX", std::string("x\0y", 3), "x\x7F"};
  for (const auto& name : evil) {
    EXPECT_NE(ErrorOf([&] { connection.Open(name, imap::Access::Read); }).Description().find("control character"),
              std::string::npos);
    EXPECT_NE(ErrorOf([&] { connection.Status(name); }).Description().find("control character"), std::string::npos);
    EXPECT_NE(ErrorOf([&] { connection.List(name, ""); }).Description().find("control character"), std::string::npos);
    EXPECT_NE(ErrorOf([&] { connection.Rights(name); }).Description().find("control character"), std::string::npos);
  }
  EXPECT_NE(ErrorOf([&] {
              imap::Connection(settings.server, {"alice\r\nA1 LOGOUT", "pw", ""}, settings.limits,
                               imap::Deadline(settings.limits.operation));
            })
                .Description()
                .find("control character"),
            std::string::npos);
  EXPECT_EQ(connection.Open("INBOX", imap::Access::Read).messages, 1u);
}

TEST_F(ImapStoreTest, AWrongPasswordIsTold) {
  server_.Write("password", "pw\n");
  auto settings = imap::ReadSettings(StoreAddress(server_));
  settings.password = "wrong";
  const auto live = Browse(std::make_shared<imap::ImapStore>(settings));
  EXPECT_NE(ErrorOf([&] { OpenInbox(*live); }).Description().find("refused"), std::string::npos);
}

TEST_F(ImapStoreTest, WithoutTheRightNothingIsDeleted) {
  server_.MakePublicFolder({"Sales"});
  PlainImap(server_.Port(), "kalvo").Append("Public/Sales", "Subject: kept\n\nx\n", 915148800);
  const auto before = Browse(Store());
  before->GotoContainer("EX01", "Kalvo EX01", "Sales", 0, live::kByPath | live::kPublicFolders);
  const auto id = ToText(before->Messages()->Field("ExchangeId"));
  for (const char* rights : {"lrs", "lrst", "lrse"}) {
    server_.Write("public/.Sales/dovecot-acl", std::string("user=kalvo ") + rights + "\n");
    const auto live = Browse(Store());  // the server reads the rights at the beginning of a connection
    EXPECT_EQ(ErrorOf([&] { live->RemoveMessage("EX01", "", "", id, live::kPublicFolders); }).Description(),
              "Deleting messages is not allowed in this folder.");
  }
  EXPECT_EQ(server_.AllMessages().size(), 1u);
}

TEST_F(ImapStoreTest, WhatOthersMarkedAsDeletedStays) {
  Fill(5);
  PlainImap other(server_.Port(), "alice");
  other.Run("SELECT INBOX");
  other.Run("STORE 1:5 +FLAGS (\\Deleted)");
  const auto live = Browse(Store());
  OpenInbox(*live);
  const auto before = server_.AllMessages();
  live->RemoveMessage("EX01", "alice", "", ToText(live->Messages()->Field("ExchangeId")), 0);
  const auto after = server_.AllMessages();
  EXPECT_EQ(after.size(), 4u);
  EXPECT_TRUE(std::includes(before.begin(), before.end(), after.begin(), after.end()));
}

TEST_F(ImapStoreTest, OnlyConfiguredServersAreConnectedTo) {
  const auto store = Store();
  const auto live = Browse(store);
  for (const char* name : {"127.0.0.2", "localhost:1", "evil.example", ""}) {
    EXPECT_NE(ErrorOf([&] { live->GotoContainer(name, "alice", "", 0, live::kByPath); }).Description(), "");
    EXPECT_NE(ErrorOf([&] {
                live->GotoContainer(name, "Kalvo x", "", 0, live::kByPath | live::kPublicFolders);
              }).Description(),
              "");
  }
  EXPECT_EQ(store->Cost().connections, 0u);
}

}  // namespace
}  // namespace kalvo::test
