// What is shown of a message: its subject, sender, dates and attachments, however odd it is.
#include <gtest/gtest.h>

#include "adapters/imap/imap_store_fixture.h"

namespace kalvo::test {
namespace {

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

}  // namespace
}  // namespace kalvo::test
