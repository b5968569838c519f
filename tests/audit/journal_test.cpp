#include "host/audit/journal.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "host/audit/audit_error.h"
#include "host/audit/log_files.h"
#include "host/audit/verification.h"
#include "host/parts/setting_error.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace audit;

namespace fs = std::filesystem;

class Journals : public testing::Test {
 protected:
  Record Write(const Journal& journal, const std::string& text = "x") const {
    return journal.Append(Event::SignedIn, {"KALVO\\alice", "127.0.0.1"}, {{"text", text}});
  }
  std::string Content() const { return ReadFile(CurrentFile(log_)); }

  TemporaryFolder folder_;
  fs::path log_ = folder_.Path() / "below" / "audit";
};

TEST_F(Journals, EachLineCarriesTheHashOfTheOneBefore) {
  const Journal journal(log_);
  const Record first = Write(journal), second = Write(journal);
  EXPECT_EQ(first.number, 1);
  EXPECT_EQ(first.previous, kNoHash);
  EXPECT_EQ(second.number, 2);
  EXPECT_EQ(second.previous, first.hash);
  EXPECT_EQ(Content(), LineOf(first) + "\n" + LineOf(second) + "\n");
  EXPECT_EQ(Write(Journal(log_)).previous, second.hash);
}

TEST_F(Journals, TheFolderIsPrivate) {
  const Journal journal(log_);
  Write(journal);
  struct stat folder {
  }, file{};
  ASSERT_EQ(stat(log_.c_str(), &folder), 0);
  ASSERT_EQ(stat(CurrentFile(log_).c_str(), &file), 0);
  EXPECT_EQ(folder.st_mode & 0777, 0700u);
  EXPECT_EQ(file.st_mode & 0777, 0600u);
}

TEST_F(Journals, AFolderThatCannotBeMadeIsAWrongSetting) {
  WriteFile(folder_.Path() / "file", "");
  EXPECT_THROW(Journal(folder_.Path() / "file" / "audit"), host::SettingError);
}

TEST_F(Journals, AFolderThatOthersMayEnterIsLeftAsItIs) {
  fs::create_directories(log_);
  fs::permissions(log_, fs::perms(0755));
  EXPECT_THROW(Journal{log_}, host::SettingError);
  EXPECT_EQ(fs::status(log_).permissions(), fs::perms(0755));
  fs::permissions(log_, fs::perms(0700));
  EXPECT_EQ(Write(Journal(log_)).number, 1);
}

TEST_F(Journals, ManyProcessesWriteOneChain) {
  const Journal journal(log_, 4000);
  constexpr int kProcesses = 4, kLines = 25;
  for (int i = 0; i < kProcesses; ++i) {
    if (fork() != 0) continue;
    int failed = 0;
    for (int line = 0; line < kLines; ++line) {
      try {
        Write(journal);
      } catch (const std::exception&) {
        failed = 1;
      }
    }
    _exit(failed);
  }
  for (int i = 0; i < kProcesses; ++i) {
    int status = -1;
    wait(&status);
    EXPECT_EQ(status, 0);
  }
  const Verification found = Verify(log_);
  EXPECT_TRUE(found.whole) << testing::PrintToString(found.broken);
  EXPECT_EQ(found.noted, std::vector<std::string>());
  EXPECT_GT(LogFiles(log_).size(), 3u);
  // Beside the lines of the processes, one at the head of each file but the first.
  EXPECT_EQ(found.lines, kProcesses * kLines + static_cast<std::int64_t>(LogFiles(log_).size()) - 1);
}

TEST_F(Journals, AFullFileIsPutAsideAndTheChainGoesOn) {
  const Journal journal(log_, 1);
  const Record first = Write(journal), third = Write(journal);
  EXPECT_EQ(third.number, 3);
  EXPECT_EQ(LogFiles(log_), (std::vector<fs::path>{log_ / "audit-000000000001.jsonl", log_ / "audit.jsonl"}));
  const auto second = ReadLine(Content().substr(0, Content().find('\n')));
  ASSERT_TRUE(second);
  EXPECT_EQ(second->event, Event::LogContinued);
  EXPECT_EQ(second->Detail("after"), "audit-000000000001.jsonl");
  EXPECT_EQ(second->previous, first.hash);
  EXPECT_EQ(third.previous, second->hash);
  EXPECT_TRUE(Verify(log_).whole);
}

// What a writer leaves that is killed while it puts a file aside.
TEST_F(Journals, TheChainGoesOnWhereANewFileWasNotBegun) {
  const Journal journal(log_);
  const Record first = Write(journal);
  fs::rename(CurrentFile(log_), FullFile(log_, 1));
  EXPECT_EQ(Write(journal).number, 3);
  EXPECT_TRUE(Verify(log_).whole);
  fs::rename(CurrentFile(log_), FullFile(log_, 2));
  WriteFile(CurrentFile(log_), "");
  EXPECT_EQ(Write(journal).number, 5);
  EXPECT_TRUE(Verify(log_).whole);
}

TEST_F(Journals, AnUnfinishedLineIsNotedAndTheChainGoesOn) {
  const Journal journal(log_);
  Write(journal);
  const std::string before = Content();
  Write(journal);
  const std::string whole = Content();
  for (std::size_t size = before.size() + 1; size + 1 < whole.size(); size += 7) {
    SCOPED_TRACE(size);
    WriteFile(CurrentFile(log_), whole.substr(0, size));
    const Verification open = Verify(log_);
    EXPECT_TRUE(open.whole);
    ASSERT_EQ(open.noted.size(), 1u);
    EXPECT_NE(open.noted[0].find("is unfinished"), std::string::npos) << open.noted[0];

    EXPECT_EQ(Write(journal).number, 3);
    const Verification noted = Verify(log_);
    EXPECT_TRUE(noted.whole) << testing::PrintToString(noted.broken);
    ASSERT_EQ(noted.noted.size(), 1u);
    EXPECT_NE(noted.noted[0].find("audit.jsonl:2: a line of " + std::to_string(size - before.size()) +
                                  " bytes was never finished; line 2 notes it"),
              std::string::npos)
        << noted.noted[0];
  }
}

TEST_F(Journals, ALineThatLacksItsEndAloneCounts) {
  const Journal journal(log_);
  Write(journal);
  WriteFile(CurrentFile(log_), Content().substr(0, Content().size() - 1));
  EXPECT_EQ(Verify(log_).lines, 1);
  EXPECT_EQ(Write(journal).number, 2);
  EXPECT_EQ(Verify(log_).lines, 2);
  EXPECT_TRUE(Verify(log_).whole);
}

TEST_F(Journals, AnUnfinishedLineAtTheEndOfAFullFileIsNotedInTheNext) {
  const Journal journal(log_, 600);
  Write(journal);
  WriteFile(CurrentFile(log_), Content() + std::string(600, 'x'));
  EXPECT_EQ(Write(journal).number, 4);
  const Verification found = Verify(log_);
  EXPECT_TRUE(found.whole) << testing::PrintToString(found.broken);
  EXPECT_EQ(found.noted, (std::vector<std::string>{
                             "audit-000000000001.jsonl:2: a line of 600 bytes was never finished; line 3 notes it"}));
}

// The limit on a file's size makes the last write a short one, as a full disk does.
TEST_F(Journals, AFullDiskIsAnErrorAndLeavesTheLogAsItWas) {
  const Journal journal(log_);
  Write(journal);
  const std::string before = Content();
  const pid_t process = fork();
  if (process == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{before.size() + 100, before.size() + 100};
    setrlimit(RLIMIT_FSIZE, &limit);
    try {
      Write(journal);
    } catch (const AuditError& error) {
      _exit(std::string_view(error.what()).find("cannot be written: File too large") != std::string_view::npos ? 0 : 2);
    }
    _exit(1);
  }
  int status = -1;
  waitpid(process, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Content(), before);
  EXPECT_EQ(Write(journal).number, 2);
  EXPECT_TRUE(Verify(log_).whole);
}

TEST_F(Journals, AWriterThatIsKilledLeavesALogThatGoesOn) {
  const Journal journal(log_, 20000);
  for (int round = 0; round < 20; ++round) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t process = fork();
    if (process == 0) {
      for (int i = 0;; ++i) {
        Write(journal, std::string(2000, 'y'));
        if (i >= round % 7 && write(ready[1], "x", 1) < 0) _exit(1);
      }
    }
    char byte;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    close(ready[0]), close(ready[1]);
    Write(journal);
    const Verification found = Verify(log_);
    EXPECT_TRUE(found.whole) << testing::PrintToString(found.broken);
  }
}

TEST_F(Journals, AFileThatIsNoLogIsNotWrittenTo) {
  const Journal journal(log_);
  const std::string foreign(2 * kLongestLine + 1, '\n');
  WriteFile(CurrentFile(log_), foreign);
  EXPECT_THROW(Write(journal), AuditError);
  EXPECT_EQ(Content(), foreign);
}

TEST_F(Journals, ALinkInTheFilesPlaceIsNotFollowed) {
  const Journal journal(log_);
  WriteFile(folder_.Path() / "target", "");
  fs::create_symlink(folder_.Path() / "target", CurrentFile(log_));
  EXPECT_THROW(Write(journal), AuditError);
  EXPECT_EQ(ReadFile(folder_.Path() / "target"), "");
}

}  // namespace
}  // namespace kalvo::test
