#include "host/audit/verification.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "host/audit/journal.h"
#include "host/audit/log_files.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace audit;

class Verifying : public testing::Test {
 protected:
  Verifying() {
    for (const char* user : {"anna", "berta", "carla", "dora"}) {
      hashes_.push_back(journal_.Append(Event::SignedIn, {user, "127.0.0.1"}, {}).hash);
    }
  }

  std::vector<std::string> Lines() const {
    std::vector<std::string> lines;
    const std::string content = ReadFile(CurrentFile(folder_.Path()));
    for (std::size_t from = 0, to; (to = content.find('\n', from)) != std::string::npos; from = to + 1) {
      lines.push_back(content.substr(from, to - from));
    }
    return lines;
  }
  void Put(const std::vector<std::string>& lines) const {
    std::string content;
    for (const std::string& line : lines) content += line + "\n";
    WriteFile(CurrentFile(folder_.Path()), content);
  }

  TemporaryFolder folder_;
  Journal journal_{folder_.Path()};
  std::vector<std::string> hashes_;
};

TEST_F(Verifying, AnUntouchedLogIsWhole) {
  const Verification found = Verify(folder_.Path(), hashes_[1]);
  EXPECT_TRUE(found.whole);
  EXPECT_EQ(found.lines, 4);
  EXPECT_EQ(found.lastNumber, 4);
  EXPECT_EQ(found.lastHash, hashes_[3]);
  EXPECT_TRUE(found.containsHash);
  EXPECT_FALSE(Verify(folder_.Path(), std::string(64, '1')).containsHash);
}

TEST_F(Verifying, WhatWasDoneToALogIsFound) {
  const auto lines = Lines();
  std::string changed = lines[1];
  changed.replace(changed.find("berta"), 5, "clara");
  Record forged = *ReadLine(lines[1]);
  forged.visitor.user = "clara";
  const struct {
    const char* why;
    std::vector<std::string> lines;
    std::string finding;
  } kCases[] = {
      {"a changed line", {lines[0], changed, lines[2], lines[3]}, "audit.jsonl:2: this is no line of the audit log"},
      {"a changed line with a hash that fits",
       {lines[0], LineOf(forged), lines[2], lines[3]},
       "audit.jsonl:3: line 3 does not carry the hash of the line before"},
      {"a line taken out", {lines[0], lines[2], lines[3]}, "audit.jsonl:2: line 3 follows line 1"},
      {"two lines changed about", {lines[0], lines[2], lines[1], lines[3]}, "audit.jsonl:2: line 3 follows line 1"},
      {"a line doubled", {lines[0], lines[0], lines[1], lines[2]}, "audit.jsonl:2: line 1 follows line 1"},
      {"a line put in", {lines[0], "hello", lines[1]}, "audit.jsonl:2: this is no line of the audit log"},
      {"a blank line", {lines[0], "", lines[1]}, "audit.jsonl:2: this is no line of the audit log"},
      {"a changed last line", {lines[0], changed}, "audit.jsonl:2: this is no line of the audit log"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    Put(c.lines);
    const Verification found = Verify(folder_.Path());
    EXPECT_FALSE(found.whole);
    ASSERT_FALSE(found.broken.empty());
    std::string all;
    for (const std::string& text : found.broken) all += text + "\n";
    EXPECT_NE(all.find(c.finding), std::string::npos) << all;
  }
}

TEST_F(Verifying, AChangedLastLineStaysABreakWhenTheLogGoesOn) {
  auto lines = Lines();
  lines[3].replace(lines[3].find("dora"), 4, "rosa");
  Put(lines);
  journal_.Append(Event::SignedIn, {"emma", ""}, {});
  const Verification found = Verify(folder_.Path());
  EXPECT_FALSE(found.whole);
  EXPECT_EQ(found.broken, (std::vector<std::string>{"audit.jsonl:4: a whole line was changed; line 4 notes it"}));
}

TEST_F(Verifying, LinesMissingAtTheEndAreShownByAHashThatWasKept) {
  auto lines = Lines();
  lines.pop_back();
  Put(lines);
  EXPECT_TRUE(Verify(folder_.Path(), hashes_[2]).containsHash);
  EXPECT_FALSE(Verify(folder_.Path(), hashes_[3]).containsHash);
}

TEST_F(Verifying, OlderFilesMayBeGone) {
  auto lines = Lines();
  lines.erase(lines.begin(), lines.begin() + 2);
  Put(lines);
  const Verification found = Verify(folder_.Path());
  EXPECT_TRUE(found.whole);
  EXPECT_EQ(found.noted,
            (std::vector<std::string>{"audit.jsonl:1: the log begins with line 3; older files are not here"}));
}

TEST_F(Verifying, AnIntentWithoutOutcomeIsNoted) {
  for (int i = 0; i < 2; ++i) journal_.Append(Event::DeleteIntended, {"anna", ""}, {{"message", "m"}});
  journal_.Append(Event::Deleted, {"anna", ""}, {{"intent", "6"}});
  const Verification found = Verify(folder_.Path());
  EXPECT_TRUE(found.whole);
  EXPECT_EQ(found.noted,
            (std::vector<std::string>{"line 5: delete-intended has no outcome; the server was stopped in between"}));
}

// The pipe stands where the oldest file is: whoever reads the log has listed its files when it is opened.
TEST_F(Verifying, AFileThatIsPutAsideMeanwhileIsNotMissing) {
  const std::filesystem::path pipe = FullFile(folder_.Path(), 0);
  std::filesystem::rename(CurrentFile(folder_.Path()), FullFile(folder_.Path(), 1));
  journal_.Append(Event::SignedIn, {"emma", ""}, {});
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  const pid_t process = fork();
  if (process == 0) {
    const int first = open(pipe.c_str(), O_WRONLY);
    Journal(folder_.Path(), 1).Append(Event::SignedIn, {"frida", ""}, {});
    close(first);
    for (;;) close(open(pipe.c_str(), O_WRONLY));
  }
  const Verification found = Verify(folder_.Path());
  kill(process, SIGKILL);
  waitpid(process, nullptr, 0);
  EXPECT_TRUE(found.whole) << testing::PrintToString(found.broken);
  EXPECT_EQ(found.lines, 8);
}

TEST_F(Verifying, AnEmptyFolderIsAWholeLogOfNoLines) {
  const TemporaryFolder empty;
  EXPECT_TRUE(Verify(empty.Path()).whole);
  EXPECT_EQ(Verify(empty.Path()).lines, 0);
}

}  // namespace
}  // namespace kalvo::test
