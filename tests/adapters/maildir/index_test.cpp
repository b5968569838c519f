// The index beside the store: what it saves, and that nothing it may suffer shows in a listing.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "adapters/maildir/folder.h"
#include "adapters/maildir/folder_index.h"
#include "adapters/maildir/maildir_fixture.h"
#include "adapters/maildir/maildir_store.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "support/patience.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kDay = 86'400, kStart = 900'000'000;

std::string Numbered(int number) {
  return "From: a@kalvo.example\nSubject: Number " + std::to_string(number) + "\n\nBody.\n";
}

class MaildirIndex : public ::testing::Test {
 protected:
  void SetUp() override {
    LoadFixture(folder_.Path());
    inbox_ = folder_.Path() / "zoe";
    for (int i = 0; i < 20; ++i) Deliver(inbox_, "n" + std::to_string(i) + ".host:2,S", Numbered(i), kStart + i * kDay);
    Settle();
  }

  // Makes the lists look as if they had not changed for a while.
  void Settle() {
    for (const char* part : {"cur", "new"}) {
      fs::last_write_time(inbox_ / part, fs::file_time_type::clock::now() - std::chrono::seconds(10 + ++settled_));
    }
  }

  // A listing as another process takes it; what it took is in `work_`.
  std::vector<std::string> List(std::string_view field = "Name") {
    maildir::MaildirStore store(folder_.Path().string());
    const auto live = store.Open();
    live->GotoContainer("EX02", "Zoe Miller", "Inbox", 0, live::kByPath);
    const auto messages = live->Messages();
    std::vector<std::string> texts;
    for (std::int32_t i = 0; i < messages->Count(); ++i, messages->MoveNext()) {
      texts.push_back(ToText(messages->Field(field)));
    }
    work_ = store.Done();
    return texts;
  }

  std::vector<fs::path> Indexes() {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(folder_.Path() / ".kalvo" / "index")) files.push_back(entry.path());
    return files;
  }

  TemporaryFolder folder_;
  fs::path inbox_;
  maildir::Work work_;
  int settled_ = 0;
};

TEST_F(MaildirIndex, OnlyWhatIsNewIsRead) {
  EXPECT_EQ(List().size(), 20u);
  EXPECT_EQ(work_.messagesParsed, 20);
  EXPECT_EQ(List().size(), 20u);
  EXPECT_EQ(work_.messagesParsed, 0);

  Deliver(inbox_, "late.host", Numbered(99), kStart + 99 * kDay);
  EXPECT_EQ(List().front(), "Number 99");
  EXPECT_EQ(work_.messagesParsed, 1);

  fs::remove(inbox_ / "cur" / "n3.host:2,S");
  const auto names = List();
  EXPECT_EQ(names.size(), 20u);
  EXPECT_EQ(std::count(names.begin(), names.end(), "Number 3"), 0);
  EXPECT_EQ(work_.messagesParsed, 0);
}

TEST_F(MaildirIndex, AMovedOrFlaggedMessageStaysTheSame) {
  Deliver(inbox_, "fresh.host", Numbered(50), kStart + 50 * kDay);
  const auto before = List("ExchangeId");
  fs::rename(inbox_ / "new" / "fresh.host", inbox_ / "cur" / "fresh.host:2,");
  fs::rename(inbox_ / "cur" / "n5.host:2,S", inbox_ / "cur" / "n5.host:2,RST");
  EXPECT_EQ(List("ExchangeId"), before);
  EXPECT_EQ(work_.messagesParsed, 0);

  maildir::MaildirStore store(folder_.Path().string());
  const auto live = store.Open();
  live->GotoMsgAttachment("EX02", "zoe@kalvo.example", before.front(), 0);
  EXPECT_EQ(ToText(live->MessageSubject()), "Number 50");
}

TEST_F(MaildirIndex, AChangeInTheSameTickIsSeen) {
  for (int i = 100; i < 130; ++i) {
    Deliver(inbox_, "t" + std::to_string(i) + ".host", Numbered(i), kStart + i * kDay);
    ASSERT_EQ(List().size(), static_cast<std::size_t>(i - 79));
  }
}

TEST_F(MaildirIndex, ADamagedIndexIsMadeAnew) {
  const auto whole = List();
  ASSERT_EQ(Indexes().size(), 1u);
  const fs::path index = Indexes().front();
  const std::string good = ReadFile(index);
  const auto damaged = [&](const std::string& bytes) {
    WriteFile(index, bytes);
    EXPECT_EQ(List(), whole);
    EXPECT_EQ(work_.messagesParsed, 20);
  };
  for (std::size_t at = 0; at < good.size(); at += 37) {
    SCOPED_TRACE(at);
    std::string bytes = good;
    bytes[at] = static_cast<char>(bytes[at] ^ 0x10);
    damaged(bytes);
  }
  for (const std::size_t length : {std::size_t{0}, std::size_t{1}, std::size_t{40}, good.size() / 2, good.size() - 1}) {
    SCOPED_TRACE(length);
    damaged(good.substr(0, length));
  }
  damaged(good + "x");
  damaged(std::string(5000, '\xFF'));
  EXPECT_EQ(List(), whole);
  EXPECT_EQ(work_.messagesParsed, 0) << "the one made anew serves";
}

TEST_F(MaildirIndex, HasAsManyEntriesAsItSays) {
  maildir::IndexHead head;
  maildir::Entry entry;
  entry.unique = "1.host";
  for (const std::int32_t said : {0, 1, 2}) {
    head.count = said;
    const std::string bytes = maildir::WriteIndex("whose", head, {entry});
    EXPECT_EQ(maildir::ReadIndexEntries(bytes, "whose").has_value(), said == 1) << said;
  }
}

TEST_F(MaildirIndex, TheIndexOfAnotherFolderIsNotTaken) {
  List();
  const fs::path own = Indexes().front();
  const std::string bytes = ReadFile(own);
  maildir::MaildirStore store(folder_.Path().string());
  const auto live = store.Open();
  live->GotoContainer("EX01", "alice@kalvo.example", "Inbox", 0, live::kByPath);
  EXPECT_EQ(live->MessageCount(), 6);
  for (const fs::path& index : Indexes()) WriteFile(index, bytes);
  live->GotoContainer("EX01", "alice@kalvo.example", "Inbox", 0, live::kByPath);
  EXPECT_EQ(live->MessageCount(), 6);
}

TEST_F(MaildirIndex, AStoreWhereNothingCanBeKeptStillLists) {
  List();
  fs::remove_all(folder_.Path() / ".kalvo" / "index");
  WriteFile(folder_.Path() / ".kalvo" / "index", "no folder");
  EXPECT_EQ(List().size(), 20u);
  EXPECT_EQ(work_.messagesParsed, 20);
}

TEST_F(MaildirIndex, ListersAndWritersAtOnceNeverBreakIt) {
  std::vector<pid_t> listers;
  for (int child = 0; child < 3; ++child) {
    const pid_t pid = fork();
    if (pid == 0) {
      int wrong = 0;
      for (int i = 0; i < 40; ++i) {
        try {
          for (const std::string& name : List()) wrong += name.starts_with("Number ") ? 0 : 1;
        } catch (...) {
          ++wrong;
        }
      }
      _exit(wrong == 0 ? 0 : 1);
    }
    listers.push_back(pid);
  }
  for (int i = 0; i < 200; ++i) {
    Deliver(inbox_, "w" + std::to_string(i) + ".host", Numbered(i), kStart + i * kDay);
    if (i % 2) fs::remove(inbox_ / "new" / ("w" + std::to_string(i - 1) + ".host"));
    if (i % 10 == 3) kill(listers.back(), SIGKILL);  // once; later ones find it gone
  }
  for (const pid_t pid : listers) {
    int status = 0;
    waitpid(pid, &status, 0);
    if (pid != listers.back()) {
      EXPECT_EQ(status, 0);
    }
  }
  EXPECT_EQ(List().size(), 120u);
}

TEST_F(MaildirIndex, TheSecondListingOfThousandsOfMessagesReadsNone) {
  const int messages = Rounds(5000, 50'000);
  const fs::path text = folder_.Path() / "one";
  WriteFile(text, Numbered(7));
  for (int i = 0; i < messages; ++i) {
    // Names of one file cost no space; a file takes some 65 000 of them.
    fs::create_hard_link(text, inbox_ / "cur" / ("b" + std::to_string(i) + ".host:2,S"));
  }
  Settle();
  EXPECT_EQ(List().size(), static_cast<std::size_t>(messages) + 20);
  EXPECT_EQ(work_.messagesParsed, messages + 20);
  EXPECT_EQ(List().size(), static_cast<std::size_t>(messages) + 20);
  EXPECT_EQ(work_.messagesParsed, 0);
}

}  // namespace

}  // namespace kalvo::test
