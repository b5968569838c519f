// Deleted messages on the disk: their names, flags and times, and what a process leaves behind that is killed.
#include "adapters/maildir/maildir_holding.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <functional>
#include <set>

#include "adapters/mail/directory.h"
#include "adapters/mail/mail_store.h"
#include "adapters/maildir/maildir_fixture.h"
#include "adapters/maildir/maildir_store.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"
#include "support/killed_process.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kReceived = 900'000'000;
const std::string kText = "From: a@kalvo.example\nSubject: <b>held</b>\n\nBody.\n";

class MaildirHolding : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteFile(folder_.Path() / "mailboxes.txt",
              "[server EX01]\n[mailbox Ken]\nserver = EX01\naccount = K\\k\naddress = k@k\nlocation = ken\n");
    MakeMaildir(tree_);
  }

  std::shared_ptr<mail::MailStore> Store() { return maildir::MaildirStore(folder_.Path().string()).Store(); }
  mail::Tree Ken(mail::MailStore& store) { return {"EX01", &store.Mailboxes()->Find("EX01", "Ken")}; }

  std::string Remove(const std::string& unique) {
    const auto store = Store();
    return store->Remove(Ken(*store), "INBOX", unique, {"K\\k", 1000});
  }
  mail::FolderPath Restore(const std::string& id) {
    const auto store = Store();
    return store->Restore(Ken(*store), id, std::nullopt);
  }
  std::vector<mail::HeldMessage> Held() {
    const auto store = Store();
    const mail::Tree ken = Ken(*store);
    return store->Held(&ken);
  }

  // The files of the mailbox, "cur/name".
  std::set<std::string> InTree() {
    std::set<std::string> names;
    for (const char* list : {"cur", "new"}) {
      for (const auto& entry : fs::directory_iterator(tree_ / list)) {
        names.insert(std::string(list) + "/" + entry.path().filename().string());
      }
    }
    return names;
  }

  std::vector<fs::path> InHolding(std::string_view ending) {
    std::vector<fs::path> files;
    if (!fs::exists(folder_.Path() / ".kalvo" / "held")) return files;
    for (const auto& entry : fs::recursive_directory_iterator(folder_.Path() / ".kalvo" / "held")) {
      if (entry.path().string().ends_with(ending)) files.push_back(entry.path());
    }
    return files;
  }

  TemporaryFolder folder_{"/dev/shm"};  // every move is written through, which takes a disk its time
  fs::path tree_ = folder_.Path() / "ken";
  std::shared_ptr<mail::MailStore> opened_;
};

TEST_F(MaildirHolding, NameFlagsAndTimeComeBack) {
  for (const std::string file : {"cur/1.host,S=52:2,FRS", "cur/2.host", "new/3.host", "cur/4.host:2,"}) {
    SCOPED_TRACE(file);
    WriteFile(tree_ / file, kText);
    const timespec times[2] = {{kReceived, 0}, {kReceived, 0}};
    utimensat(AT_FDCWD, (tree_ / file).c_str(), times, 0);
    const std::string id = Remove(std::string(file.substr(4, file.find(':') - 4)));
    EXPECT_EQ(InTree(), std::set<std::string>{});
    ASSERT_EQ(Held().size(), 1u);
    EXPECT_EQ(Held()[0].subject, "<b>held</b>");
    EXPECT_EQ(Held()[0].flags, file.find(":2,") == file.npos ? "" : file.substr(file.find(":2,") + 3));
    EXPECT_EQ(InHolding("").size(), 3u) << "its folder, its record and the message";
    EXPECT_EQ(Restore(id), mail::FolderPath{"Inbox"});
    EXPECT_EQ(InTree(), std::set<std::string>{file});
    EXPECT_EQ(ReadFile(tree_ / file), kText);
    struct stat status {};
    stat((tree_ / file).c_str(), &status);
    EXPECT_EQ(status.st_mtim.tv_sec, kReceived);
    EXPECT_EQ(InHolding(id + ".record").size(), 0u);
    fs::remove(tree_ / file);
  }
}

TEST_F(MaildirHolding, ALimitedMailboxCountsWhatIsDeletedAndRestored) {
  Deliver(tree_, "1.host,S=52:2,S", kText, kReceived);
  const std::string before = "1000000S\n52 1\n";
  WriteFile(tree_ / "maildirsize", before);
  const std::string id = Remove("1.host,S=52");
  EXPECT_EQ(ReadFile(tree_ / "maildirsize"), before + "-52 -1\n");
  Restore(id);
  EXPECT_EQ(ReadFile(tree_ / "maildirsize"), before + "-52 -1\n52 1\n");
  EXPECT_EQ(ErrorOf([&] { Remove("gone"); }).Description(), "The message does not exist any more.");
  EXPECT_EQ(ReadFile(tree_ / "maildirsize"), before + "-52 -1\n52 1\n");
}

TEST_F(MaildirHolding, WhatCannotBeCountedIsNotDeleted) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  fs::create_directory(tree_ / "maildirsize");
  EXPECT_EQ(ErrorOf([&] { Remove("1.host"); }).Description(),
            "The message was not deleted: the mailbox is limited, and its count \"maildirsize\" cannot be written "
            "(Is a directory).");
  EXPECT_EQ(InTree(), std::set<std::string>{"cur/1.host:2,S"});
}

TEST_F(MaildirHolding, ACountThatWasNotDeletedAfterAllIsTakenBack) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  WriteFile(tree_ / "maildirsize", "1000000S\n");
  fs::create_directories(folder_.Path() / ".kalvo");
  WriteFile(folder_.Path() / ".kalvo" / "held", "no folder");
  const std::string size = std::to_string(kText.size());
  EXPECT_NE(ErrorOf([&] { Remove("1.host"); }).Description(), "");
  EXPECT_EQ(ReadFile(tree_ / "maildirsize"), "1000000S\n-" + size + " -1\n" + size + " 1\n");
}

TEST_F(MaildirHolding, TheFolderIsClosedToOthers) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  Remove("1.host");
  for (const fs::path& path : {folder_.Path() / ".kalvo" / "held", InHolding(".mail").at(0).parent_path()}) {
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
  }
}

TEST_F(MaildirHolding, WhatCannotBeHeldIsNotDeleted) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  fs::create_directories(folder_.Path() / ".kalvo");
  WriteFile(folder_.Path() / ".kalvo" / "held", "no folder");
  EXPECT_EQ(ErrorOf([&] { Remove("1.host"); }).Description(),
            "The message was not deleted: the mail store's holding folder cannot take it (Not a directory).");
  EXPECT_EQ(InTree(), std::set<std::string>{"cur/1.host:2,S"});
}

TEST_F(MaildirHolding, ADiskThatIsFullDeletesNothing) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  const auto store = Store();
  const pid_t process = fork();
  if (process == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit none{100, 100};  // bytes of a file: less than a record
    setrlimit(RLIMIT_FSIZE, &none);
    const std::string failure = ErrorOf([&] {
                                  store->Remove(Ken(*store), "INBOX", "1.host", {"K\\k", 1000});
                                }).Description();
    _exit(failure.starts_with("The message was not deleted: the mail store's holding folder cannot take it") ? 0 : 1);
  }
  int status = 0;
  waitpid(process, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(InTree(), std::set<std::string>{"cur/1.host:2,S"});
  EXPECT_EQ(InHolding(".record").size() + InHolding(".new").size() + InHolding(".mail").size(), 0u);
}

TEST_F(MaildirHolding, NeitherALinkNorAFolderIsTakenForTheHoldingFolder) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  TemporaryFolder outside;
  fs::create_directories(folder_.Path() / ".kalvo");
  fs::create_directory_symlink(outside.Path(), folder_.Path() / ".kalvo" / "held");
  EXPECT_NE(ErrorOf([&] { Remove("1.host"); }).Description(), "");
  EXPECT_TRUE(fs::is_empty(outside.Path()));
  EXPECT_EQ(InTree(), std::set<std::string>{"cur/1.host:2,S"});
}

TEST_F(MaildirHolding, AMessageOfTheSameNameIsNeverReplaced) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  const std::string id = Remove("1.host");
  for (const char* other : {"1.host:2,S", "1.host:2,", "1.host"}) {
    Deliver(tree_, other, "Subject: other\n\n", kReceived);
    EXPECT_EQ(ErrorOf([&] { Restore(id); }).Description(),
              "The message was not restored: the folder has a message of its name.");
    ASSERT_EQ(InTree().size(), 1u);
    EXPECT_EQ(ReadFile(tree_ / *InTree().begin()), "Subject: other\n\n");
    EXPECT_EQ(Held().size(), 1u);
    fs::remove(tree_ / *InTree().begin());
  }
  Restore(id);
  EXPECT_EQ(InTree(), std::set<std::string>{"cur/1.host:2,S"});
}

TEST_F(MaildirHolding, ADamagedRecordHidesItsMessageUntilItsTimeIsOver) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  const std::string id = Remove("1.host");
  for (const std::string record : {"", "held=1", "held=1 id=00112233445566778899aabbccddeeff end=1"}) {
    WriteFile(InHolding(".record").at(0), record);
    EXPECT_EQ(Held().size(), 0u);
    EXPECT_EQ(ErrorOf([&] { Restore(id); }).Description(), "The deleted message is not held any more.");
    EXPECT_EQ(Store()->Sweep(std::time(nullptr) - 3600), 0) << "it came here just now";
    EXPECT_EQ(InHolding(".mail").size(), 1u);
  }
  EXPECT_EQ(Store()->Sweep(std::time(nullptr) + 1), 1);
  EXPECT_EQ(InHolding(".mail").size() + InHolding(".record").size(), 0u);
}

TEST_F(MaildirHolding, ARecordNeverLeadsOutOfItsFolder) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  const std::string id = Remove("1.host");
  auto held = Held().at(0);
  for (const std::string name : {"cur/../../evil", "cur/", "cur/a/b", "x", ""}) {
    held.name = name;
    WriteFile(InHolding(".record").at(0), mail::WriteHeldRecord(held));
    EXPECT_NE(ErrorOf([&] { Restore(id); }).Description(), "") << name;
    EXPECT_EQ(InHolding(".mail").size(), 1u) << name;
  }
  EXPECT_EQ(InTree().size(), 0u);
}

TEST_F(MaildirHolding, ADeleteKilledAtAnyMomentLeavesTheMessageInOnePlace) {
  const int kills = KillAtEveryMoment(
      Calls::All,
      [&] {
        fs::remove_all(folder_.Path() / ".kalvo");
        fs::remove_all(tree_);
        MakeMaildir(tree_);
        Deliver(tree_, "1.host,S=52:2,S", kText, kReceived);
        opened_ = Store();
      },
      [&] {
        opened_->Remove(Ken(*opened_), "INBOX", "1.host,S=52", {"K\\k", 1000});
      },
      [&] {
        const auto held = Held();
        ASSERT_EQ(InTree().size() + held.size(), 1u);
        ASSERT_EQ(InHolding(".mail").size(), held.size());
        if (held.empty()) return;
        Restore(held[0].id);
        ASSERT_EQ(InTree(), std::set<std::string>{"cur/1.host,S=52:2,S"});
        ASSERT_EQ(ReadFile(tree_ / "cur/1.host,S=52:2,S"), kText);
      });
  EXPECT_GT(kills, 20);
}

TEST_F(MaildirHolding, ARestoreKilledAtAnyMomentLeavesTheMessageInOnePlace) {
  std::string id;
  const int kills = KillAtEveryMoment(
      Calls::All,
      [&] {
        fs::remove_all(folder_.Path() / ".kalvo");
        fs::remove_all(tree_);
        MakeMaildir(tree_);
        Deliver(tree_, "1.host:2,S", kText, kReceived);
        id = Remove("1.host");
        opened_ = Store();
      },
      [&] { opened_->Restore(Ken(*opened_), id, std::nullopt); },
      [&] {
        ASSERT_EQ(InTree().size() + Held().size(), 1u);
        ASSERT_EQ(InHolding(".mail").size(), Held().size());
      });
  EXPECT_GT(kills, 20);
}

TEST_F(MaildirHolding, WhatKilledProcessesLeaveBehindIsSweptLater) {
  Deliver(tree_, "1.host:2,S", kText, kReceived);
  Remove("1.host");
  const fs::path record = InHolding(".record").at(0);
  const fs::path alone = record.parent_path() / ("00112233445566778899aabbccddeeff.record");
  const fs::path torn = record.parent_path() / ("00112233445566778899aabbccddeefe.record.new");
  for (const fs::path& left : {alone, torn}) WriteFile(left, ReadFile(record));
  Store()->Sweep(0);
  EXPECT_TRUE(fs::exists(alone)) << "its message may be on its way";
  for (const fs::path& left : {alone, torn}) {
    fs::last_write_time(left, fs::file_time_type::clock::now() - std::chrono::hours(2));
  }
  EXPECT_EQ(Store()->Sweep(0), 0);
  EXPECT_FALSE(fs::exists(alone));
  EXPECT_FALSE(fs::exists(torn));
  EXPECT_EQ(Held().size(), 1u);
}

TEST_F(MaildirHolding, OfManyWhoRestoreOneSucceeds) {
  constexpr int kProcesses = 6, kMessages = 20;
  std::vector<std::string> ids;
  for (int i = 0; i < kMessages; ++i) {
    Deliver(tree_, std::to_string(i) + ".host:2,S", kText, kReceived);
    ids.push_back(Remove(std::to_string(i) + ".host"));
  }
  std::vector<pid_t> processes;
  for (int i = 0; i < kProcesses; ++i) {
    const pid_t process = fork();
    if (process == 0) {
      int restored = 0;
      for (const std::string& id : ids) restored += ErrorOf([&] { Restore(id); }).Description().empty() ? 1 : 0;
      _exit(restored);
    }
    processes.push_back(process);
  }
  int restored = 0;
  for (const pid_t process : processes) {
    int status = 0;
    waitpid(process, &status, 0);
    restored += WEXITSTATUS(status);
  }
  EXPECT_EQ(restored, kMessages);
  EXPECT_EQ(InTree().size(), static_cast<std::size_t>(kMessages));
  EXPECT_EQ(Held().size(), 0u);
}

}  // namespace

}  // namespace kalvo::test
