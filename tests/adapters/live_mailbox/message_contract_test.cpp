// What holds of the messages of a live mailbox whatever store is behind it.
#include <gtest/gtest.h>

#include "adapters/live_mailbox/contract_fixture.h"

namespace kalvo::test {
namespace {

TEST_F(LiveMailboxContract, MessagesComeNewestFirst) {
  OpenInbox();
  const auto messages = live_->Messages();
  const Names expected = {"<b>Bold</b> & \"quoted\"",
                          "",
                          "Apple",
                          "apple",
                          "Gr\xC3\xBC\xC3\x9F"
                          "e aus K\xC3\xB6ln",
                          "Zebra"};
  EXPECT_EQ(Texts(*messages, "Name"), expected);
  EXPECT_EQ(live_->MessageCount(), 6);
  const Names attachments = {"0", "0", "0", "1", "0", "0"};
  EXPECT_EQ(Texts(*messages, "HasAttachment"), attachments);
}

TEST_F(LiveMailboxContract, FieldsAreTypedAndNamedWithoutRegardToCase) {
  OpenInbox();
  const auto messages = live_->Messages();
  messages->AddSortField("name", 1);
  messages->Sort();
  EXPECT_EQ(ToText(messages->Field("NAME")), "Zebra");
  EXPECT_EQ(ToText(messages->Field("sender")), "Bob Brown <bob@kalvo.example>");
  EXPECT_EQ(messages->Field("CreateDate"), Value(Date{36162.5}));
  EXPECT_EQ(messages->Field("ModifiedDate"), Value(Date{36162.5}));
  EXPECT_GT(ToDouble(messages->Field("Size")), 1800);
  EXPECT_EQ(Raised([&] { messages->Field("Nothing"); }), "80004005");
  EXPECT_EQ(Raised([&] { messages->Total("Name"); }), "80004005");
}

TEST_F(LiveMailboxContract, AMessageWithoutDateOrSubjectIsListed) {
  OpenInbox();
  const auto messages = live_->Messages();
  messages->MoveNext();
  EXPECT_EQ(ToText(messages->Field("Sender")), "nobody@kalvo.example");
  EXPECT_EQ(ToText(messages->Field("CreateDate")), "");
  EXPECT_NE(ToText(messages->Field("ModifiedDate")), "");
}

TEST_F(LiveMailboxContract, PastItsEndAListingAnswersNothing) {
  OpenInbox();
  const auto messages = live_->Messages();
  for (int i = 0; i < 20; ++i) messages->MoveNext();
  EXPECT_EQ(ToText(messages->Field("Name")), "");
  EXPECT_EQ(ToText(messages->Field("Size")), "");
  messages->MoveFirst();
  EXPECT_EQ(ToText(messages->Field("Name")), "<b>Bold</b> & \"quoted\"");
}

TEST_F(LiveMailboxContract, MessagesAreSortedByOneFieldOrSeveral) {
  OpenInbox();
  const auto messages = live_->Messages();
  const auto sorted = [&](std::vector<std::pair<const char*, int>> keys) {
    messages->ClearSortFields();
    for (const auto& [name, descending] : keys) messages->AddSortField(name, descending);
    messages->Sort();
    return Texts(*messages, "Sender");
  };
  const std::string bob = "Bob Brown <bob@kalvo.example>", carol = "Carol Clark <carol@kalvo.example>",
                    dave = "dave@kalvo.example", eve = "eve@kalvo.example", nobody = "nobody@kalvo.example",
                    jurgen = "J\xC3\xBCrgen <j@kalvo.example>";
  EXPECT_EQ(sorted({{"Sender", 0}}), (Names{bob, carol, dave, eve, jurgen, nobody}));
  EXPECT_EQ(sorted({{"Sender", 1}}), (Names{nobody, jurgen, eve, dave, carol, bob}));
  EXPECT_EQ(sorted({{"Name", 0}}), (Names{nobody, eve, dave, carol, jurgen, bob})) << "equal ones stay newest first";
  EXPECT_EQ(sorted({{"Name", 0}, {"Sender", 0}}), (Names{nobody, eve, carol, dave, jurgen, bob}));
  EXPECT_EQ(sorted({{"CreateDate", 0}}).front(), nobody) << "no date comes before every date";
  EXPECT_EQ(sorted({{"Size", 1}}).front(), bob);
  EXPECT_EQ(sorted({{"ModifiedDate", 0}}).front(), bob);
  EXPECT_EQ(Raised([&] { messages->AddSortField("Nothing", 0); }), "80004005");
  EXPECT_EQ(Raised([&] { messages->AddSortField("ExchangeId", 0); }), "80004005");
}

TEST_F(LiveMailboxContract, TheTotalIsTheSumOfTheRows) {
  OpenInbox();
  const auto messages = live_->Messages();
  double sum = 0;
  for (const std::string& size : Texts(*messages, "Size")) sum += *ParseNumber(size);
  EXPECT_EQ(ToDouble(messages->Total("Size")), sum);
}

TEST_F(LiveMailboxContract, AListTakenEarlierSurvivesLaterPositions) {
  OpenInbox();
  const auto messages = live_->Messages();
  live_->GotoContainer("EX01", "bob", "Inbox", 0, kMailboxFolder);
  EXPECT_EQ(Texts(*live_->Messages(), "Name"), Names{"For Bob"});
  EXPECT_EQ(messages->Count(), 6);
  EXPECT_EQ(Texts(*messages, "Name")[5], "Zebra");
}

TEST_F(LiveMailboxContract, AMessageIsFoundByItsIdentifierAlone) {
  const std::string id = InboxMessage("apple");
  live_ = store_->Open();
  live_->GotoMsgAttachment("EX01", "alice", id, 0);
  EXPECT_EQ(ToText(live_->MessageSubject()), "apple");
  EXPECT_EQ(ToText(live_->MessageSender()), "Carol Clark <carol@kalvo.example>");
  EXPECT_EQ(ToText(live_->MessageCreationDate()), "1/4/1999 10:00:00 AM");
  EXPECT_EQ(ToText(live_->MessageModificationDate()), "1/4/1999 10:00:00 AM");
  EXPECT_NEAR(ToDouble(live_->MessageSize()), 615, 20) << "with line ends of one byte or two";
  EXPECT_EQ(live_->CurrentContainerName(), "Inbox");
}

TEST_F(LiveMailboxContract, AttachmentsAreListedAsTheyStand) {
  live_->GotoMsgAttachment("EX01", "alice", InboxMessage("apple"), 0);
  const auto attachments = live_->Attachments();
  EXPECT_EQ(attachments->Count(), 2);
  EXPECT_EQ(Texts(*attachments, "LongFileName"), (Names{"Budget 1999.xls", "notes.txt"}));
  attachments->MoveFirst();
  EXPECT_NEAR(ToDouble(attachments->Field("Size")), 70, 4);
  attachments->AddSortField("Size", 0);
  attachments->Sort();
  EXPECT_EQ(ToText(attachments->Field("LongFileName")), "notes.txt");
}

TEST_F(LiveMailboxContract, AMessageIsOnlyFoundInItsOwnMailbox) {
  const std::string id = InboxMessage("apple");
  EXPECT_EQ(Raised([&] { live_->GotoMsgAttachment("EX01", "bob", id, 0); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->GotoMsgAttachment("EX02", "Zoe Miller", id, 0); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->GotoMsgAttachment("EX01", "alice", id, 4); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->RemoveMessage("EX01", "bob", "", id, 0); }), kNoFolder);
  EXPECT_NE(Raised([&] { live_->MessageSubject(); }), "0");
}

TEST_F(LiveMailboxContract, MadeUpIdentifiersAreRefused) {
  std::string id = InboxMessage("apple");
  std::string changed = id;
  changed[changed.size() / 2] = changed[changed.size() / 2] == 'A' ? 'B' : 'A';
  live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
  const std::string folderId = IdOf(*live_->Folders(), "Inbox");
  for (const std::string& made : {std::string(), std::string("x"), changed, id + "A", id.substr(1), folderId,
                                  std::string("../../etc/passwd"), std::string(100000, 'A'), id + "\r\nA1 DELETE x"}) {
    SCOPED_TRACE(made.substr(0, 60));
    EXPECT_EQ(Raised([&] { live_->GotoMsgAttachment("EX01", "alice", made, 0); }), kNoFolder);
    EXPECT_EQ(Raised([&] { live_->RemoveMessage("EX01", "alice", "", made, 0); }), kNoFolder);
    if (made == folderId) continue;
    live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
    EXPECT_EQ(Raised([&] { live_->GotoContainerById("EX01", made, kMailboxFolder); }), kNoFolder);
  }
}

}  // namespace
}  // namespace kalvo::test
