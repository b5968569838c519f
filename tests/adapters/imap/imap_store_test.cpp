// What the contract does not ask: orders, windows, names and rights on a real server, and its death.
#include "adapters/imap/imap_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <iterator>
#include <thread>

#include "adapters/imap/imap_under_test.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/error_of.h"
#include "support/patience.h"

namespace kalvo::test {
namespace {

using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::string>;

Texts FieldsOf(Listing& listing, std::string_view field) {
  Texts texts;
  listing.MoveFirst();
  for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) texts.push_back(ToText(listing.Field(field)));
  return texts;
}

class ImapStoreTest : public ::testing::Test {
 protected:
  ImapStoreTest() : server_(FixtureUsers()) {}

  std::shared_ptr<imap::ImapStore> Store(std::string_view more = "&silence=1&time-limit=5") {
    return std::make_shared<imap::ImapStore>(imap::ReadSettings(StoreAddress(server_, more)));
  }

  static void OpenInbox(LiveContainer& live) { live.GotoContainer("EX01", "alice", "Inbox", 0, live::kByPath); }

  void Fill(int messages) {
    PlainImap imap(server_.Port(), "alice");
    for (int i = 0; i < messages; ++i) imap.Append("INBOX", Message(i), 915148800 + i * 60);
  }

  // Of every kind of date, with equal dates and sizes among them.
  static std::string Message(int number) {
    char date[80];
    std::snprintf(date, sizeof date, "Date: Fri, %02d Jan 1999 %02d:00:00 %+05d\n", 1 + number * 7 % 28,
                  number * 5 % 24, number % 3 * 100);
    std::string text = number % 11 == 3 ? "" : number % 13 == 5 ? "Date: the day after tomorrow\n" : date;
    text += "From: Sender " + std::to_string(number % 9) +
            " <s@kalvo.example>\nSubject: " + (number % 4 == 0 ? "Re: " : "") + "Topic " + std::to_string(number % 17) +
            "\n\n";
    return text.append(static_cast<std::size_t>(number % 6 * 10), 'x') + "\n";
  }

  DovecotServer server_;
};

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

TEST_F(ImapStoreTest, AttachmentsComeFromTheStructure) {
  PlainImap(server_.Port(), "alice")
      .Append("INBOX", R"(From: a@b.example
Subject: many parts
MIME-Version: 1.0
Content-Type: multipart/mixed; boundary=b

--b
Content-Type: multipart/alternative; boundary=c

--c
Content-Type: text/plain

text
--c
Content-Type: text/html

html
--c--
--b
Content-Type: application/pdf
Content-Disposition: attachment; filename*=utf-8''%C3%9Cbersicht%20Q1.pdf
Content-Transfer-Encoding: base64

QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVpBQkNERUZHSElKS0xNTk9QUVJTVFVWV1hZWkFC
QUJDREVGR0hJSktMTU5PUFFSU1RVVldYWVpBQkNERUZHSElKS0xNTk9QUVJTVFVWV1hZWkFC
--b
Content-Type: image/png; name="=?iso-8859-1?Q?Bl=FCte.png?="

png
--b
Content-Type: application/zip
Content-Disposition: attachment; filename*0="a very long "; filename*1="name.zip"

zip
--b
Content-Type: text/plain
Content-Disposition: attachment; filename="C:\\temp\\a \"b\".txt"

12345
--b
Content-Type: message/rfc822

Subject: inner
Content-Type: application/octet-stream; name=inner.bin

inner
--b
Content-Type: application/octet-stream

bare
--b--
)",
              915148800);
  const auto live = Browse(Store());
  OpenInbox(*live);
  const auto messages = live->Messages();
  EXPECT_EQ(ToText(messages->Field("HasAttachment")), "1");
  live->GotoMsgAttachment("EX01", "alice", ToText(messages->Field("ExchangeId")), 0);
  EXPECT_EQ(
      FieldsOf(*live->Attachments(), "LongFileName"),
      (Texts{"\xC3\x9C"
             "bersicht Q1.pdf",
             "Bl\xC3\xBCte.png", "a very long name.zip", "a \"b\".txt", "message/rfc822", "application/octet-stream"}));
  const auto sizes = live->Attachments();
  EXPECT_NEAR(ToDouble(sizes->Field("Size")), 108, 3);
}

TEST_F(ImapStoreTest, OddMessagesAreListedLikeAnyOther) {
  std::string nested = "Subject: nested\nContent-Type: multipart/mixed; boundary=b0\n\n", inner = "Subject: inner\n";
  for (int i = 0; i < 300; ++i) {
    const auto number = std::to_string(i), next = std::to_string(i + 1);
    nested += "--b" + number + "\nContent-Type: multipart/mixed; boundary=b" + next + "\n\n";
    inner += "Content-Type: message/rfc822\n\nSubject: inner " + number + "\n";
  }
  const std::string messages[] = {
      "\n",
      "no header at all\n",
      "Subject:\n\nx\n",
      "Subject: " + std::string(400'000, 'h') + "\n\nx\n",
      "Subject: " + std::string(3000, '(') + "\n\nx\n",
      "Subject: \"" + std::string(3000, '(') + "\\\n\nx\n",
      "Subject: * 1 FETCH (BODYSTRUCTURE " + std::string(3000, '(') +
          "\nFrom: =?utf-8?Q?=22=28=28?= <a@b.example>\n\nx\n",
      "Subject: raw \xFC and \xC3\xBC {5}\n\nx\n",
      "Subject: =?utf-8?B?broken?= =?nowhere?Q?x?=\nFrom: \"unclosed <a@b\n\nx\n",
      "Subject: group\nFrom: undisclosed-recipients:;\n\nx\n",
      "Subject: two\nFrom: A <a@b.example>, B <b@b.example>\n\nx\n",
      "Subject: folded\n and\n\tfolded again\nContent-Type: nonsense\nContent-Disposition: ;;;filename\n\nx\n",
      nested,
      inner + "\nx\n",
  };
  {
    PlainImap imap(server_.Port(), "alice");
    std::int64_t received = 915148800;
    for (const auto& message : messages) imap.Append("INBOX", message, received++);
  }
  const auto live = Browse(Store());
  OpenInbox(*live);
  const auto listed = live->Messages();
  listed->AddSortField("ModifiedDate", 0);
  listed->Sort();
  ASSERT_EQ(listed->Count(), static_cast<int>(std::size(messages)));
  const auto names = FieldsOf(*listed, "Name");
  EXPECT_EQ(names[0], "");
  EXPECT_EQ(names[1], "");
  EXPECT_LT(names[3].size(), 600u);
  EXPECT_GE(names[3].size(), 500u);
  EXPECT_TRUE(names[4].starts_with("((((")) << names[4].substr(0, 20);
  EXPECT_TRUE(names[6].starts_with("* 1 FETCH (BODYSTRUCTURE ((((")) << names[6].substr(0, 40);
  EXPECT_NE(names[7].find("\xC3\xBC {5}"), std::string::npos) << names[7];
  EXPECT_EQ(names[11], "folded and folded again");
  EXPECT_EQ(names[12], "nested");
  EXPECT_EQ(names[13], "inner");
  const auto senders = FieldsOf(*listed, "Sender");
  EXPECT_EQ(senders[6], "\"(( <a@b.example>");
  EXPECT_EQ(senders[9], "undisclosed-recipients");
  EXPECT_EQ(senders[10], "A <a@b.example>");
  for (const auto& id : FieldsOf(*listed, "ExchangeId")) {
    EXPECT_EQ(ErrorOf([&] { live->GotoMsgAttachment("EX01", "alice", id, 0); }).Description(), "");
    live->Attachments();
  }
}

TEST_F(ImapStoreTest, SubjectAndSenderAreWhatPeopleRead) {
  const struct {
    const char* why;
    std::string head, subject, sender;
  } cases[] = {
      {"words that are padded",
       "Subject: =?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cyBNw7xuY2hlbg==?=\n"
       "From: =?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cw==?= <x@y>\n",
       "Gr\xC3\xBC\xC3\x9F"
       "e aus M\xC3\xBCnchen",
       "Gr\xC3\xBC\xC3\x9F"
       "e aus <x@y>"},
      {"a local user", "From: root (Cron Daemon)\n", "", "Cron Daemon <root>"},
      {"a local user without a name", "From: root\n", "", "root"},
      {"a name alone", "From: \"Somebody\" <>\n", "", "Somebody"},
      {"a group", "From: Team: ann@x, bob@x;\n", "", "ann@x"},
      {"raw bytes in the message's charset",
       "Subject: \xC1\nFrom: \xC1 <x@y>\nContent-Type: text/plain; charset=koi8-r\n", "\xD0\xB0", "\xD0\xB0 <x@y>"},
      {"raw bytes in none", "Subject: caf\xE9\n", "caf\xC3\xA9", ""},
  };
  PlainImap imap(server_.Port(), "alice");
  std::int64_t received = 915148800;
  for (const auto& c : cases) imap.Append("INBOX", c.head + "\nBody.\n", received--);
  const auto live = Browse(Store());
  OpenInbox(*live);
  const auto messages = live->Messages();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ToText(messages->Field("Name")), c.subject);
    EXPECT_EQ(ToText(messages->Field("Sender")), c.sender);
    messages->MoveNext();
  }
}

TEST_F(ImapStoreTest, DatesHaveZonesInAnyCase) {
  const char* dates[] = {"Tue, 28 May 1996 12:24:23 cst", "Tue, 28 May 1996 12:24:23 -600", "28 may 1996 18:24:23 gmt"};
  PlainImap imap(server_.Port(), "alice");
  for (const char* date : dates) imap.Append("INBOX", std::string("Date: ") + date + "\n\nx\n", 915148800);
  const auto live = Browse(Store());
  OpenInbox(*live);
  for (const auto& sent : FieldsOf(*live->Messages(), "CreateDate")) EXPECT_EQ(sent, "5/28/1996 6:24:23 PM");
}

TEST_F(ImapStoreTest, AttachmentsHaveTheNamesThatOthersShow) {
  const struct {
    const char* why;
    std::string head, name;  // "": it is none
  } cases[] = {
      {"a type without subtype is text", "Content-Type: text\n", ""},
      {"a type that makes no sense is text", "Content-Type: image\n", ""},
      {"an unknown type by its name", "Content-Type: APPLICATION/X-BE2\n", "application/x-be2"},
      {"an attached message by the name of its type", "Content-Type: message/rfc822; name=\"Forwarded.eml\"\n",
       "Forwarded.eml"},
      {"a name in raw bytes",
       "Content-Type: text/plain\nContent-Disposition: attachment; filename=\"Fr\xF6sche.txt\"\n",
       "Fr\xC3\xB6sche.txt"},
      {"a name in raw bytes of the message's charset", "Content-Type: text/plain; charset=koi8-r; name=\"\xC1.txt\"\n",
       "\xD0\xB0.txt"},
      {"a name in several words",
       "Content-Type: image/png; name=\"=?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cy5wbmc=?=\"\n",
       "Gr\xC3\xBC\xC3\x9F"
       "e aus.png"},
  };
  PlainImap imap(server_.Port(), "alice");
  std::int64_t received = 915148800;
  for (const auto& c : cases) imap.Append("INBOX", c.head + "\nBody.\n", received--);
  const auto live = Browse(Store());
  OpenInbox(*live);
  const auto messages = live->Messages();
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(ToText(messages->Field("HasAttachment")), c.name.empty() ? "0" : "1");
    live->GotoMsgAttachment("EX01", "alice", ToText(messages->Field("ExchangeId")), 0);
    EXPECT_EQ(FieldsOf(*live->Attachments(), "LongFileName"), c.name.empty() ? Texts() : Texts{c.name});
    messages->MoveNext();
  }
}

TEST_F(ImapStoreTest, ANameCannotEndACommand) {
  Fill(1);
  const auto settings = imap::ReadSettings(StoreAddress(server_));
  imap::Connection connection(settings.server, {"alice*master", "pw"}, settings.limits,
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
              imap::Connection(settings.server, {"alice\r\nA1 LOGOUT", "pw"}, settings.limits,
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
