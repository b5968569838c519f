// What holds of a live mailbox whatever store is behind it.
#include <gtest/gtest.h>

#include "adapters/live_mailbox/contract_fixture.h"

namespace kalvo::test {
namespace {

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

// ---- one message ----------------------------------------------------------------------------------------

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
