// What holds of a live mailbox whatever store is behind it.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "adapters/live_mailbox/fixture.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/error_of.h"

namespace kalvo::test {

namespace {

constexpr std::int32_t kMailboxFolder = 1, kPublicFolder = 5, kPublicStore = 4;

std::string Hex(std::int32_t number) {
  char text[16];
  std::snprintf(text, sizeof text, "%X", static_cast<unsigned>(number));
  return text;
}

// The number of the error that an operation raises, in hexadecimal; "0" for none.
std::string Raised(const std::function<void()>& operation) {
  const Error error = ErrorOf(operation);
  EXPECT_EQ(error.Description().empty(), error.Number() == 0);
  return Hex(error.Number());
}

constexpr const char* kNoFolder = "E1C1002F";
constexpr const char* kNone = "8004010F";
constexpr const char* kAmbiguous = "E1C10029";

std::vector<std::string> Texts(Listing& listing, std::string_view field) {
  std::vector<std::string> texts;
  listing.MoveFirst();
  for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) texts.push_back(ToText(listing.Field(field)));
  return texts;
}

using Names = std::vector<std::string>;

class LiveMailboxContract : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("TZ", "UTC", 1);
    tzset();
    store_ = MakeStoreUnderTest();
    live_ = store_->Open();
  }

  void OpenInbox() { live_->GotoContainer("EX01", "alice@kalvo.example", "Inbox", 0, kMailboxFolder); }

  // The identifier of the item of the listing whose name is `name`.
  std::string IdOf(Listing& listing, std::string_view name) {
    listing.MoveFirst();
    for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) {
      if (ToText(listing.Field("Name")) == name) return ToText(listing.Field("ExchangeId"));
    }
    ADD_FAILURE() << "no item " << name;
    return {};
  }

  std::string InboxMessage(std::string_view subject) {
    OpenInbox();
    return IdOf(*live_->Messages(), subject);
  }

  std::unique_ptr<StoreUnderTest> store_;
  std::shared_ptr<LiveContainer> live_;
};

// ---- names ----------------------------------------------------------------------------------------------

TEST_F(LiveMailboxContract, ATypedNameMeansAMailbox) {
  const struct {
    const char *why, *typed, *address;
  } cases[] = {
      {"the beginning of a display name", "alice", "alice@kalvo.example"},
      {"a whole display name", "Alice Archer", "alice@kalvo.example"},
      {"a display name in other case", "BOB brown", "bob@kalvo.example"},
      {"an address, which means itself", "alice@kalvo.example", "alice@kalvo.example"},
      {"a further address", "ARCHER@kalvo.example", "alice@kalvo.example"},
      {"a distinguished name", "/o=Kalvo/ou=First/cn=Recipients/cn=alice", "alice@kalvo.example"},
      {"an account", "kalvo\\bob", "bob@kalvo.example"},
      {"an exact display name", "=Ken", "ken@kalvo.example"},
      {"a mailbox of another server", "Zoe Miller", "zoe@kalvo.example"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const auto candidates = live_->ResolveNameToAddress("EX01", c.typed);
    EXPECT_EQ(ToText(candidates->Field("Address")), c.address);
  }
}

TEST_F(LiveMailboxContract, ANameThatMeansNoneOrSeveralFails) {
  EXPECT_EQ(Raised([&] { live_->ResolveNameToAddress("EX01", "Ken"); }), kAmbiguous);
  EXPECT_EQ(Raised([&] { live_->ResolveNameToAddress("EX01", "Nobody"); }), kNone);
  EXPECT_EQ(Raised([&] { live_->ResolveNameToAddress("EX01", ""); }), kNone);
  EXPECT_EQ(Raised([&] { live_->ResolveNameToAddress("EX01", "="); }), kNone);
  EXPECT_EQ(Raised([&] { live_->ResolveNameToAddress("EX01", "=Ke"); }), kNone);
  EXPECT_EQ(Raised([&] { live_->ResolveNameToAddress("NOWHERE", "alice"); }), kNone);
  EXPECT_EQ(Raised([&] { live_->ResolveNameToAddress("EX01", "Kalvo EX01"); }), kNone);
}

TEST_F(LiveMailboxContract, TheHomeServerIsTheOneThatHoldsTheMailbox) {
  EXPECT_EQ(live_->MailboxHomeServer("ex01", "alice"), "EX01");
  EXPECT_EQ(live_->MailboxHomeServer("EX01", "Zoe Miller"), "EX02");
}

TEST_F(LiveMailboxContract, TheOwnerIsAnAccountAndNeverEmpty) {
  EXPECT_EQ(live_->MailboxOwner("EX01", "alice"), "KALVO\\alice");
  EXPECT_EQ(live_->MailboxOwner("ex01", "/o=Kalvo/ou=First/cn=Recipients/cn=alice"), "KALVO\\alice");
  EXPECT_EQ(Raised([&] { live_->MailboxOwner("EX01", "Ken"); }), kAmbiguous);
  EXPECT_EQ(Raised([&] { live_->MailboxOwner("EX01", "Nobody"); }), kNone);
  EXPECT_EQ(Raised([&] { live_->MailboxOwner("EX01", ""); }), kNone);
  EXPECT_EQ(Raised([&] { live_->MailboxOwner("EX01", "Zoe Miller"); }), kNone);
  EXPECT_EQ(Raised([&] { live_->MailboxOwner("EX01", "Kalvo EX01"); }), kNone);
}

TEST_F(LiveMailboxContract, QuestionsAboutNamesLeaveThePositionAlone) {
  OpenInbox();
  live_->ResetNameResolution();
  live_->ResolveNameToAddress("EX01", "bob");
  live_->MailboxOwner("EX01", "bob");
  EXPECT_EQ(live_->CurrentContainerName(), "Inbox");
  EXPECT_EQ(live_->CurrentMailboxName(), "alice@kalvo.example");
  EXPECT_EQ(live_->MessageCount(), 6);
}

// ---- folders --------------------------------------------------------------------------------------------

TEST_F(LiveMailboxContract, TheRootOfAMailboxHasFoldersByNameAndNoMessages) {
  live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
  EXPECT_EQ(live_->CurrentContainerName(), "");
  const auto folders = live_->Folders();
  const Names expected = {"back\\slash",
                          "Empty",
                          "Entw\xC3\xBCrfe",
                          "Inbox",
                          "Say \"hi\" & <go>",
                          "Sent Items",
                          "\xD0\x9E\xD1\x82\xD1\x87\xD1\x91\xD1\x82\xD1\x8B"};
  EXPECT_EQ(Texts(*folders, "Name"), expected);
  EXPECT_EQ(live_->FolderCount(), folders->Count());
  EXPECT_EQ(live_->MessageCount(), 0);
  EXPECT_EQ(live_->Messages()->Count(), 0);
}

TEST_F(LiveMailboxContract, AFolderIsFoundByItsPath) {
  for (const char* path : {"Inbox\\Projects", "\\Inbox\\Projects", "\\\\inbox\\\\PROJECTS\\"}) {
    SCOPED_TRACE(path);
    live_->GotoContainer("EX01", "alice", path, 0, kMailboxFolder);
    EXPECT_EQ(live_->CurrentContainerName(), "Inbox\\Projects");
    EXPECT_EQ(Texts(*live_->Messages(), "Name"), Names{"Plan"});
  }
}

TEST_F(LiveMailboxContract, EveryFolderIsFoundByItsIdentifier) {
  live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
  const auto folders = live_->Folders();
  folders->MoveFirst();
  for (std::int32_t i = 0; i < folders->Count(); ++i, folders->MoveNext()) {
    const std::string name = ToText(folders->Field("Name")), id = ToText(folders->Field("ExchangeId"));
    SCOPED_TRACE(name);
    EXPECT_EQ(id.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_"),
              std::string::npos);
    live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
    live_->GotoContainerById("EX01", id, kMailboxFolder);
    EXPECT_EQ(live_->CurrentContainerName(), name);
  }
}

TEST_F(LiveMailboxContract, EveryFolderIsFoundByThePathThatIsShown) {
  live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
  for (const std::string& name : Texts(*live_->Folders(), "Name")) {
    SCOPED_TRACE(name);
    live_->GotoContainer("EX01", "alice", name, 0, kMailboxFolder);
    EXPECT_EQ(live_->CurrentContainerName(), name);
  }
}

TEST_F(LiveMailboxContract, FoldersHaveCountsAndSizesWithTotals) {
  live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
  const auto folders = live_->Folders();
  const Names counts = {"0", "0", "0", "6", "0", "0", "0"};
  EXPECT_EQ(Texts(*folders, "MessageCount"), counts);
  EXPECT_EQ(ToText(folders->Total("messagecount")), "6");
  OpenInbox();
  EXPECT_EQ(ToText(folders->Total("FolderSize")), ToText(live_->Messages()->Total("Size")));
}

TEST_F(LiveMailboxContract, AFolderThatIsNotThereFails) {
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "alice", "Nowhere", 0, kMailboxFolder); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "alice", "Inbox\\..\\..", 0, kMailboxFolder); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "alice", "..", 0, kMailboxFolder); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "alice", "/etc", 0, kMailboxFolder); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "alice", "a\r\nb", 0, kMailboxFolder); }), kNoFolder);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "alice", std::string("Inbox\0x", 7), 0, kMailboxFolder); }),
            kNoFolder);
  EXPECT_NE(Raised([&] { live_->Messages(); }), "0") << "a failed positioning stands nowhere";
}

TEST_F(LiveMailboxContract, AMailboxThatIsNotThereFails) {
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "Nobody", "", 0, kMailboxFolder); }), kNone);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "Ken", "", 0, kMailboxFolder); }), kAmbiguous);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "Zoe Miller", "", 0, kMailboxFolder); }), kNone);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("NOWHERE", "alice", "", 0, kMailboxFolder); }), kNone);
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "Kalvo EX01", "", 0, kMailboxFolder); }), kNone);
}

// ---- messages -------------------------------------------------------------------------------------------

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

// ---- one message ----------------------------------------------------------------------------------------

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

TEST_F(LiveMailboxContract, AFolderIdentifierBelongsToTheMailboxThatIsOpen) {
  live_->GotoContainer("EX01", "alice", "", 0, kMailboxFolder);
  const std::string id = IdOf(*live_->Folders(), "Sent Items");
  live_->GotoContainer("EX01", "bob", "", 0, kMailboxFolder);
  EXPECT_EQ(Raised([&] { live_->GotoContainerById("EX01", id, kMailboxFolder); }), kNoFolder);
  live_->GotoContainer("EX01", "Kalvo EX01", "", 0, kPublicStore);
  EXPECT_EQ(Raised([&] { live_->GotoContainerById("EX01", id, kPublicStore); }), kNoFolder);
  EXPECT_EQ(Raised([&] { store_->Open()->GotoContainerById("EX01", id, kMailboxFolder); }), kNoFolder);
}

// ---- public folders -------------------------------------------------------------------------------------

TEST_F(LiveMailboxContract, PublicFoldersAreOpenedThroughTheProductsMailbox) {
  live_->GotoContainer("EX01", "Kalvo EX01", "", 0, kPublicFolder);
  EXPECT_EQ(Texts(*live_->Folders(), "Name"), Names{"Sales"});
  EXPECT_EQ(live_->MessageCount(), 0);
  live_->GotoContainer("EX01", "kalvo ex01", "Sales\\Orders", 0, kPublicFolder);
  EXPECT_EQ(live_->CurrentContainerName(), "Sales\\Orders");
  EXPECT_EQ(Texts(*live_->Messages(), "Name"), Names{"Order 1"});
  EXPECT_EQ(Raised([&] { live_->GotoContainer("EX01", "Kalvo EX01", "Nowhere", 0, kPublicFolder); }), kNoFolder);
}

TEST_F(LiveMailboxContract, APublicFolderIsFoundByItsIdentifier) {
  live_->GotoContainer("EX01", "Kalvo EX01", "Sales", 0, kPublicFolder);
  const std::string id = IdOf(*live_->Folders(), "Orders"), message = IdOf(*live_->Messages(), "Prices");
  live_->GotoContainer("EX01", "Kalvo EX01", "", 0, kPublicStore);
  live_->GotoContainerById("EX01", id, kPublicStore);
  EXPECT_EQ(live_->CurrentContainerName(), "Sales\\Orders");
  live_->GotoMsgAttachment("EX01", "Sales", message, 4);
  EXPECT_EQ(ToText(live_->MessageSubject()), "Prices");
  EXPECT_EQ(Raised([&] { live_->GotoMsgAttachment("EX01", "alice", message, 0); }), kNoFolder);
}

// ---- deletion -------------------------------------------------------------------------------------------

TEST_F(LiveMailboxContract, ExactlyTheOneMessageIsDeleted) {
  const std::string id = InboxMessage("Zebra");
  const auto before = store_->AllMessages();
  live_->RemoveMessage("EX01", "alice", "any folder at all", id, 0);
  const auto after = store_->AllMessages();
  ASSERT_EQ(after.size() + 1, before.size());
  std::vector<std::string> gone;
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(), std::back_inserter(gone));
  ASSERT_EQ(gone.size(), 1u);
  EXPECT_NE(gone[0].find("Subject: Zebra"), std::string::npos);
  EXPECT_TRUE(std::includes(before.begin(), before.end(), after.begin(), after.end())) << "all others bit for bit";
  OpenInbox();
  EXPECT_EQ(live_->MessageCount(), 5);
}

TEST_F(LiveMailboxContract, AMessageIsDeletedOnce) {
  const std::string id = InboxMessage("Zebra");
  live_->RemoveMessage("EX01", "alice", "", id, 0);
  const auto before = store_->AllMessages();
  EXPECT_EQ(Raised([&] { live_->RemoveMessage("EX01", "alice", "", id, 0); }), kNone);
  EXPECT_EQ(Raised([&] { live_->GotoMsgAttachment("EX01", "alice", id, 0); }), kNone);
  EXPECT_EQ(store_->AllMessages(), before);
}

TEST_F(LiveMailboxContract, AMessageOfAPublicFolderIsDeletedByTheFlag) {
  live_->GotoContainer("EX01", "Kalvo EX01", "Sales", 0, kPublicFolder);
  const std::string id = IdOf(*live_->Messages(), "Prices");
  EXPECT_EQ(Raised([&] { live_->RemoveMessage("EX01", "alice", "", id, 0); }), kNoFolder);
  live_->RemoveMessage("EX01", "Sales", "", id, 4);
  live_->GotoContainer("EX01", "Kalvo EX01", "Sales", 0, kPublicFolder);
  EXPECT_EQ(live_->MessageCount(), 0);
}

TEST_F(LiveMailboxContract, IdentifiersStayTheSameFromSessionToSession) {
  const std::string id = InboxMessage("apple");
  live_ = store_->Open();
  EXPECT_EQ(InboxMessage("apple"), id);
}

}  // namespace

}  // namespace kalvo::test
