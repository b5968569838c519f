// Mailboxes as they are out there: damaged messages, repaired folders, folders that may not be opened, other layouts.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <vector>

#include "adapters/imap/imap_under_test.h"
#include "adapters/imap/mail_check.h"
#include "adapters/mail/directory_file.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

using Texts = std::vector<std::string>;

Texts FieldsOf(Listing& listing, std::string_view field) {
  Texts texts;
  listing.MoveFirst();
  for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) texts.push_back(ToText(listing.Field(field)));
  return texts;
}

class OddMailbox : public ::testing::Test {
 protected:
  void Start(std::string_view moreSettings = "") {
    server_ = std::make_unique<DovecotServer>(FixtureUsers(), moreSettings);
    store_ = std::make_shared<imap::ImapStore>(imap::ReadSettings(StoreAddress(*server_)));
    live_ = Browse(store_);
  }

  void Go(std::string_view path) { live_->GotoContainer("EX01", "alice", path, 0, live::kByPath); }
  fs::path Mail() const { return server_->Folder() + "/users/alice/Maildir"; }

  std::unique_ptr<DovecotServer> server_;
  std::shared_ptr<imap::ImapStore> store_;
  std::shared_ptr<LiveContainer> live_;
};

TEST_F(OddMailbox, AMessageThatTheServerStumblesOverIsARowLikeTheOthers) {
  Start();
  PlainImap imap(server_->Port(), "alice");
  for (int i = 0; i < 6; ++i) imap.Append("INBOX", "Subject: good\n\nx\n", 915148800 + i);
  // The size in its name is wrong, as moves and restores leave it.
  server_->Write("users/alice/Maildir/cur/1700000003.M3.b,S=5000:2,S", "Subject: damaged\nFrom: a@b\n\nx\n");
  for (int look = 0; look < 2; ++look) {
    Go("Inbox");
    EXPECT_EQ(FieldsOf(*live_->Messages(), "Name"), (Texts{"damaged", "good", "good", "good", "good", "good", "good"}));
  }
  live_->GotoMsgAttachment("EX01", "alice", ToText(live_->Messages()->Field("ExchangeId")), 0);
  EXPECT_EQ(ToText(live_->MessageSubject()), "damaged");
  EXPECT_EQ(live_->Attachments()->Count(), 0);
}

TEST_F(OddMailbox, IsOpenedByWhoMayActForItsOwner) {
  Start();
  PlainImap(server_->Port(), "alice").Append("INBOX", "Subject: here\n\nx\n", 915148800);
  live_ = Browse(std::make_shared<imap::ImapStore>(
      imap::ReadSettings(StoreAddress(*server_, "&login=authorize&public-login=kalvo"))));
  Go("Inbox");
  EXPECT_EQ(FieldsOf(*live_->Messages(), "Name"), Texts{"here"});
  server_->Write("password", "wrong\n");
  live_ = Browse(std::make_shared<imap::ImapStore>(imap::ReadSettings(
      "imap://master@127.0.0.1:" + std::to_string(server_->Port()) + "/?tls=none&login=authorize&directory=" +
      server_->Folder() + "/directory&password-file=" + server_->Folder() + "/password")));
  EXPECT_NE(ErrorOf([&] { Go("Inbox"); }).Description().find("Authentication failed. (LOGIN)"), std::string::npos)
      << ErrorOf([&] { Go("Inbox"); }).Description();
}

// What a check of the server says, each finding that is not as it should be after "!".
std::string Checked(const DovecotServer& server, const std::string& address) {
  const auto settings = imap::ReadSettings(address);
  mail::Directory directory = mail::ReadDirectoryFile(server.Folder() + "/directory");
  std::string all;
  for (const auto& finding : imap::CheckMail(settings, directory))
    all += (finding.isGood ? "" : "!") + finding.text + "\n";
  return all;
}

TEST_F(OddMailbox, ACheckTellsWhatIsThereAndWhatWouldBeRight) {
  Start();
  server_->MakePublicFolder({"Sales"});
  const std::string address = StoreAddress(*server_);
  fs::permissions(server_->Folder() + "/password", fs::perms(0600));
  const std::string good = "password file " + server_->Folder() + "/password is closed to others\n";
  EXPECT_EQ(Checked(*server_, address), good +
                                            "EX01 lets alice*master read INBOX (0 messages)\n"
                                            "EX01 shows kalvo*master 1 public folders below Public/\n"
                                            "EX02 lets zoe*master read INBOX (0 messages)\n");
  fs::permissions(server_->Folder() + "/password", fs::perms(0644));
  server_->Write("users/alice/Maildir/dovecot-acl", "owner lr\n");
  const std::string bad = Checked(*server_, address + "&public-login=nobody");
  EXPECT_NE(bad.find("!password file " + server_->Folder() + "/password is open to others: chmod 600\n"), bad.npos)
      << bad;
  EXPECT_NE(bad.find("!EX01 gives alice*master no right e in INBOX: nothing can be deleted\n"), bad.npos) << bad;
  EXPECT_NE(bad.find("!EX01 as nobody: The mail server"), bad.npos) << bad;
}

TEST_F(OddMailbox, AFolderThatIsRepairedWhileItIsOpenIsReadAgain) {
  Start();
  PlainImap imap(server_->Port(), "alice");
  imap.Run("CREATE Work");
  imap.Append("Work", "Subject: here\n\nx\n", 915148800);
  Go("Work");
  EXPECT_EQ(FieldsOf(*live_->Messages(), "Name"), Texts{"here"});
  for (const auto& entry : fs::directory_iterator(Mail() / ".Work")) {
    if (entry.path().filename().string().starts_with("dovecot")) fs::remove(entry.path());
  }
  Go("Work");
  EXPECT_EQ(FieldsOf(*live_->Messages(), "Name"), Texts{"here"});
}

TEST_F(OddMailbox, AFolderThatMayNotBeOpenedShowsNoNumbers) {
  Start();
  PlainImap imap(server_->Port(), "alice");
  imap.Run("CREATE Closed");
  imap.Append("Closed", "Subject: secret\n\nx\n", 915148800);
  server_->Write("users/alice/Maildir/.Closed/dovecot-acl", "owner l\n");
  Go("");
  const auto folders = live_->Folders();
  EXPECT_EQ(FieldsOf(*folders, "Name"), (Texts{"Closed", "Inbox"}));
  EXPECT_EQ(FieldsOf(*folders, "MessageCount"), (Texts{"", "0"}));
  EXPECT_EQ(FieldsOf(*folders, "FolderSize"), (Texts{"", "0"}));
  EXPECT_EQ(ToText(folders->Total("MessageCount")), "0");
}

TEST_F(OddMailbox, FoldersBelowAPrefixThatIsTheInboxAreListedOnce) {
  Start(
      "namespace inbox {\n  separator = .\n  prefix = INBOX.\n}\nnamespace public {\n  separator = .\n"
      "  prefix = Public.\n}\n");
  PlainImap imap(server_->Port(), "alice");
  for (const char* folder : {"INBOX.Work", "INBOX.Work.Old"}) imap.Run(std::string("CREATE ") + folder);
  imap.Append("INBOX.Work.Old", "Subject: deep\n\nx\n", 915148800);
  Go("");
  EXPECT_EQ(FieldsOf(*live_->Folders(), "Name"), (Texts{"Inbox", "Work"}));
  Go("Inbox");
  EXPECT_EQ(live_->FolderCount(), 0);
  Go("Work\\Old");
  EXPECT_EQ(live_->CurrentContainerName(), "Work\\Old");
  EXPECT_EQ(FieldsOf(*live_->Messages(), "Name"), Texts{"deep"});
}

TEST_F(OddMailbox, OddFolderNamesAreFoundByThePathThatIsShown) {
  Start();
  const struct {
    const char *folder, *shown;
  } cases[] = {
      {" leading", "leading"}, {"trailing ", "trailing"}, {"two\\\\slashes", "two\\\\slashes"},
      {"&IC4-", "Unnamed"},    {"a&ICg-b", "a b"},
  };
  PlainImap imap(server_->Port(), "alice");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.shown);
    imap.Run("CREATE " + Quoted(c.folder));
    imap.Append(c.folder, "Subject: here\n\nx\n", 915148800);
    Go(c.shown);
    EXPECT_EQ(live_->CurrentContainerName(), c.shown);
    EXPECT_EQ(FieldsOf(*live_->Messages(), "Name"), Texts{"here"});
  }
}

}  // namespace
}  // namespace kalvo::test
