// Trees and messages that somebody made to hurt, and deletes that are cut off.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>

#include "adapters/maildir/maildir_fixture.h"
#include "adapters/maildir/maildir_store.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

namespace {

namespace fs = std::filesystem;

std::vector<std::string> Names(Listing& listing) {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < listing.Count(); ++i, listing.MoveNext()) names.push_back(ToText(listing.Field("Name")));
  return names;
}

class HostileTree : public ::testing::Test {
 protected:
  void SetUp() override {
    LoadFixture(folder_.Path());
    tree_ = folder_.Path() / "ken";
    MakeMaildir(outside_.Path());
    Deliver(outside_.Path(), "secret.host:2,S", "Subject: Secret\n\nx\n", 900'000'000);
  }

  std::shared_ptr<LiveContainer> OpenRoot(std::string_view path = "") {
    const auto live = maildir::MaildirStore(folder_.Path().string()).Open();
    live->GotoContainer("EX01", "=Ken", path, 0, live::kByPath);
    return live;
  }

  TemporaryFolder folder_, outside_;
  fs::path tree_;
};

TEST_F(HostileTree, NothingOutsideTheStoreIsOpened) {
  fs::create_directory_symlink(outside_.Path(), tree_ / ".Linked");
  MakeMaildir(tree_ / ".Half");
  fs::remove_all(tree_ / ".Half" / "cur");
  fs::create_directory_symlink(outside_.Path() / "cur", tree_ / ".Half" / "cur");
  fs::create_symlink(outside_.Path() / "cur" / "secret.host:2,S", tree_ / "cur" / "link.host:2,S");
  EXPECT_EQ(Names(*OpenRoot()->Folders()), (std::vector<std::string>{"Half", "Inbox"}));
  EXPECT_EQ(OpenRoot("Half")->MessageCount(), 0);
  EXPECT_EQ(OpenRoot("Inbox")->MessageCount(), 0);
}

TEST_F(HostileTree, AMailboxThatLeadsOutsideHasNoFolders) {
  fs::remove_all(tree_);
  fs::create_directory_symlink(outside_.Path(), tree_);
  EXPECT_THROW(OpenRoot("Inbox"), Error);
  for (const std::string location : {"../x", "/etc", "a/../../x", "."}) {
    SCOPED_TRACE(location);
    WriteFile(folder_.Path() / "mailboxes.txt",
              "[server EX01]\n[mailbox Ken]\nserver = EX01\naccount = K\\k\n"
              "address = k@k\nlocation = " +
                  location + "\n");
    EXPECT_THROW(OpenRoot("Inbox"), Error);
  }
}

TEST_F(HostileTree, OnlyRegularFilesAreMessages) {
  mkfifo((tree_ / "cur" / "pipe.host:2,S").c_str(), 0600);
  fs::create_directory(tree_ / "cur" / "folder.host:2,S");
  WriteFile(tree_ / "cur" / ".hidden", "Subject: hidden\n\n");
  Deliver(tree_, "real.host:2,S", "Subject: Real\n\n", 900'000'000);
  EXPECT_EQ(Names(*OpenRoot("Inbox")->Messages()), std::vector<std::string>{"Real"});
}

TEST_F(HostileTree, OddFolderNamesAreShownAndOpened) {
  const struct {
    const char *folder, *shown;
  } cases[] = {
      {".&ZeVnLIqe-", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E"},
      {".Entw\xC3\xBCrfe", "Entw\xC3\xBCrfe"},
      {".A &- B", "A & B"},
      {".a&AC8-b", "a/b"},
      {".v1&AC4-2", "v1.2"},
      {".<b>\"x\"", "<b>\"x\""},
      {".tab\there", "tab here"},
      {".line\nend", "line end"},
      {".bad\xFF"
       "byte",
       "bad\xEF\xBF\xBD"
       "byte"},
      {".&bad", "&bad"},
      {".&AAoACg-", "Unnamed"},
      {". leading", "leading"},
      {".trailing ", "trailing"},
      {".two\\\\slashes\\", "two\\\\slashes\\"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.shown);
    MakeMaildir(tree_ / c.folder);
    Deliver(tree_ / c.folder, "m.host:2,S", "Subject: Here\n\n", 900'000'000);
    const auto live = OpenRoot();
    const auto folders = live->Folders();
    std::string id;
    for (std::int32_t i = 0; i < folders->Count(); ++i, folders->MoveNext()) {
      if (ToText(folders->Field("Name")) == c.shown) id = ToText(folders->Field("ExchangeId"));
    }
    ASSERT_FALSE(id.empty());
    live->GotoContainerById("EX01", id, live::kByPath);
    EXPECT_EQ(Names(*live->Messages()), std::vector<std::string>{"Here"});
    live->GotoContainer("EX01", "=Ken", c.shown, 0, live::kByPath);
    EXPECT_EQ(Names(*live->Messages()), std::vector<std::string>{"Here"}) << "by its path";
    fs::remove_all(tree_ / c.folder);
  }
}

TEST_F(HostileTree, NamesThatAreNoFoldersAreLeftOut) {
  for (const char* name : {"..", "..x", ".a..b", ".a.", "plain", "..."}) {
    if (std::string_view(name) != "..") fs::create_directory(tree_ / name);
  }
  MakeMaildir(tree_ / ".Up.Down");
  const auto live = OpenRoot();
  EXPECT_EQ(Names(*live->Folders()), (std::vector<std::string>{"Inbox", "Up"})) << "a folder above without files";
  EXPECT_EQ(Names(*OpenRoot("Up")->Folders()), std::vector<std::string>{"Down"});
  EXPECT_EQ(OpenRoot("Up")->MessageCount(), 0);
}

TEST_F(HostileTree, MessagesThatMakeNoSenseAreListed) {
  std::string nested = "Subject: Nested\nMIME-Version: 1.0\n";
  for (int i = 0; i < 3000; ++i) {
    nested += "Content-Type: multipart/mixed; boundary=b" + std::to_string(i) + "\n\n--b" + std::to_string(i) + "\n";
  }
  const struct {
    const char* why;
    std::string text, subject;
  } cases[] = {
      {"empty", "", ""},
      {"no header at all", "Just a line", ""},
      {"only line ends", "\n\n\n", ""},
      {"deep nesting", nested, "Nested"},
      {"bytes of zero", std::string("Subject: a\0b\n\n\0\0\0", 17), "a b"},
      {"a subject of a megabyte", "Subject: " + std::string(1 << 20, 'x') + "\n\n",
       std::string(500, 'x') + "\xE2\x80\xA6"},
      {"raw bytes", "Subject: caf\xC3\xA9\n\n", "caf\xC3\xA9"},
      {"line ends in an encoded word", "Subject: =?utf-8?Q?a=0D=0AX-Evil:_b?=\n\n", "a X-Evil: b"},
      {"a boundary of nothing", "Subject: Odd\nContent-Type: multipart/mixed; boundary=\"\"\n\n--\n--\n", "Odd"},
      {"a bad date", "Subject: When\nDate: yesterday\n\n", "When"},
  };
  int number = 0;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const std::string name = "m" + std::to_string(++number) + ".host:2,S";
    Deliver(tree_, name, c.text, 900'000'000);
    const auto live = OpenRoot("Inbox");
    const auto messages = live->Messages();
    ASSERT_EQ(messages->Count(), 1);
    EXPECT_EQ(ToText(messages->Field("Name")), c.subject);
    EXPECT_EQ(ToText(messages->Field("CreateDate")), "");
    live->GotoMsgAttachment("EX01", "=Ken", ToText(messages->Field("ExchangeId")), 0);
    EXPECT_EQ(ToText(live->MessageSubject()), c.subject);
    EXPECT_GE(live->Attachments()->Count(), 0);
    fs::remove(tree_ / "cur" / name);
  }
}

TEST_F(HostileTree, ADeleteThatIsKilledLeavesEveryOtherMessageAsItWas) {
  constexpr int kMessages = 300;
  std::map<std::string, std::string> texts;
  for (int i = 0; i < kMessages; ++i) {
    const std::string name = "k" + std::to_string(i) + ".host:2,S";
    texts[name] = "Subject: " + std::to_string(i) + "\n\n" + std::string(static_cast<std::size_t>(i), 'b') + "\n";
    Deliver(tree_, name, texts[name], 900'000'000 + i);
  }
  const auto live = OpenRoot("Inbox");
  std::vector<std::string> ids;
  const auto messages = live->Messages();
  for (std::int32_t i = 0; i < messages->Count(); ++i, messages->MoveNext()) {
    ids.push_back(ToText(messages->Field("ExchangeId")));
  }
  ASSERT_EQ(ids.size(), static_cast<std::size_t>(kMessages));
  int told[2];
  ASSERT_EQ(pipe(told), 0);
  const pid_t pid = fork();
  if (pid == 0) {
    for (const std::string& id : ids) {
      live->RemoveMessage("EX01", "=Ken", "", id, 0);
      if (write(told[1], "x", 1) != 1) _exit(1);
    }
    pause();
  }
  char bytes[40];
  int done = 0;
  while (done < 40) done += static_cast<int>(read(told[0], bytes, 1));
  kill(pid, SIGKILL);
  waitpid(pid, nullptr, 0);
  close(told[1]);
  for (ssize_t more; (more = read(told[0], bytes, sizeof bytes)) > 0;) done += static_cast<int>(more);
  close(told[0]);
  // The newest first: those that were told are gone, at most one more, and all others are what they were.
  int left = 0;
  for (int i = 0; i < kMessages; ++i) {
    const std::string name = "k" + std::to_string(i) + ".host:2,S";
    if (!fs::exists(tree_ / "cur" / name)) {
      EXPECT_GE(i, kMessages - done - 1);
      continue;
    }
    ++left;
    EXPECT_EQ(ReadFile(tree_ / "cur" / name), texts[name]);
  }
  EXPECT_LE(left, kMessages - done);
  EXPECT_GE(left, kMessages - done - 1);
}

}  // namespace

}  // namespace kalvo::test
