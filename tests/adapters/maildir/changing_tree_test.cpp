// A store that somebody changes while it is open: its directory, its folders, its messages.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "adapters/mail/directory.h"
#include "adapters/mail/mail_store.h"
#include "adapters/maildir/folder.h"
#include "adapters/maildir/maildir_fixture.h"
#include "adapters/maildir/maildir_store.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

namespace {

namespace fs = std::filesystem;

void SetTime(const fs::path& path, std::int64_t seconds) {
  const timespec then{seconds, 0};
  const timespec times[] = {then, then};
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

class ChangingTree : public ::testing::Test {
 protected:
  void SetUp() override { LoadFixture(folder_.Path()); }

  std::string FolderField(LiveContainer& live, const char* name, const char* field) {
    const auto folders = live.Folders();
    for (std::int32_t i = 0; i < folders->Count(); ++i, folders->MoveNext()) {
      if (ToText(folders->Field("Name")) == name) return ToText(folders->Field(field));
    }
    return "no such folder";
  }

  TemporaryFolder folder_;
};

TEST_F(ChangingTree, AMailboxThatIsAddedIsFoundByAnOpenStore) {
  const auto store = maildir::MaildirStore(folder_.Path().string()).Store();
  EXPECT_THROW(store->Mailboxes()->Find("EX01", "Late Comer"), Error);
  const fs::path file = folder_.Path() / "mailboxes.txt";
  WriteFile(file, ReadFile(file) +
                      "\n[mailbox Late Comer]\nserver = EX01\naccount = K\\late\naddress = late@k\n"
                      "location = late\n");
  SetTime(file, 2'000'000'000);
  EXPECT_EQ(store->Mailboxes()->Find("EX01", "Late Comer").location, "late");
}

TEST_F(ChangingTree, AFolderThatIsGoneIsNotFoundByItsIdentifier) {
  const fs::path passing = folder_.Path() / "ken" / ".Passing";
  MakeMaildir(passing);
  const auto live = maildir::MaildirStore(folder_.Path().string()).Open();
  live->GotoContainer("EX01", "=Ken", "", 0, live::kByPath);
  const std::string id = FolderField(*live, "Passing", "ExchangeId");
  live->GotoContainerById("EX01", id, 0);
  fs::remove_all(passing);
  try {
    live->GotoContainerById("EX01", id, 0);
    ADD_FAILURE() << "it is found";
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "The folder does not exist any more.");
  }
}

// A reader that marks a message may make its second name before it removes the first.
TEST_F(ChangingTree, AMessageOfTwoNamesIsOne) {
  const fs::path tree = folder_.Path() / "ken" / ".Twice";
  MakeMaildir(tree);
  for (const char* name : {"new/1.host", "cur/1.host:2,S"}) WriteFile(tree / name, "Subject: Once\n\nx\n");
  maildir::MaildirStore store(folder_.Path().string());
  const auto live = store.Open();
  live->GotoContainer("EX01", "=Ken", "Twice", 0, live::kByPath);
  EXPECT_EQ(live->MessageCount(), 1);
  const auto messages = live->Messages();
  EXPECT_EQ(messages->Count(), 1);
  const std::int64_t before = store.Done().bytesRead;
  live->GotoMsgAttachment("EX01", "=Ken", ToText(messages->Field("ExchangeId")), 0);
  EXPECT_EQ(store.Done().bytesRead - before, 17) << "a message that is opened is read once";
}

TEST_F(ChangingTree, AFolderIsAsOldAsItsMark) {
  const fs::path marked = folder_.Path() / "ken" / ".Marked";
  MakeMaildir(marked);
  WriteFile(marked / "maildirfolder", "");
  SetTime(marked / "maildirfolder", 915'289'445);  // 1999-01-02 15:04:05 UTC
  const auto live = maildir::MaildirStore(folder_.Path().string()).Open();
  live->GotoContainer("EX01", "=Ken", "", 0, live::kByPath);
  EXPECT_EQ(FolderField(*live, "Marked", "CreateDate"), "1/2/1999 3:04:05 PM");
}

}  // namespace

}  // namespace kalvo::test
