#include "base/fresh_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>

#include "support/full_disk.h"
#include "support/killed_process.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace base;

namespace fs = std::filesystem;

class FreshFiles : public ::testing::Test {
 protected:
  fs::path Named(const char* name) const { return folder_.Path() / name; }

  void Leave(int secondsAgo) {
    WriteFile(Named("name.new"), "half");
    fs::last_write_time(Named("name.new"), fs::file_time_type::clock::now() - std::chrono::seconds(secondsAgo));
  }

  // The names in the folder.
  int Count() const {
    int count = 0;
    for ([[maybe_unused]] const auto& entry : fs::directory_iterator(folder_.Path())) ++count;
    return count;
  }

  const TemporaryFolder folder_;
  const File top_ = Open(folder_.Path(), O_RDONLY | O_DIRECTORY);
};

TEST_F(FreshFiles, TakeThePlaceOfAnother) {
  WriteFile(Named("name"), "old and long");
  EXPECT_TRUE(ReplaceFile(top_, "name", "new"));
  EXPECT_EQ(ReadFile(Named("name")), "new");
  EXPECT_TRUE(ReplaceFile(Named("name"), "newer", {Durable::Yes}));
  EXPECT_EQ(ReadFile(Named("name")), "newer");
  EXPECT_EQ(Count(), 1);
}

TEST_F(FreshFiles, OfACrashAreTakenOverInTheirTime) {
  const Writing patient{.abandonedAfter = 60};
  Leave(40);
  EXPECT_FALSE(ReplaceFile(top_, "name", "text", patient)) << "another process may still be at it";
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(ReadFile(Named("name.new")), "half");
  Leave(62);
  EXPECT_TRUE(ReplaceFile(top_, "name", "text", patient));
  EXPECT_EQ(ReadFile(Named("name")), "text");
  Leave(0);
  EXPECT_TRUE(ReplaceFile(top_, "name", "again")) << "nobody else can be writing";
  EXPECT_EQ(ReadFile(Named("name")), "again");
  EXPECT_EQ(Count(), 1);
}

TEST_F(FreshFiles, AreTheOwnersAloneUnlessToldOtherwise) {
  const mode_t before = umask(0);
  EXPECT_TRUE(ReplaceFile(Named("own"), "text"));
  EXPECT_TRUE(ReplaceFile(Named("shown"), "text", {.mode = 0644}));
  umask(before);
  EXPECT_EQ(StatusOf(Open(Named("own"), O_RDONLY)).st_mode & 07777u, 0600u);
  EXPECT_EQ(StatusOf(Open(Named("shown"), O_RDONLY)).st_mode & 07777u, 0644u);
}

TEST_F(FreshFiles, FollowNoLinkThatWaitsForThem) {
  WriteFile(Named("other"), "kept");
  fs::create_symlink("other", Named("name.new"));
  EXPECT_TRUE(ReplaceFile(top_, "name", "text"));
  EXPECT_EQ(ReadFile(Named("other")), "kept");
  EXPECT_EQ(ReadFile(Named("name")), "text");
}

TEST_F(FreshFiles, ThatCannotBeMadeChangeNothing) {
  fs::create_directories(Named("name.new") / "below");
  EXPECT_FALSE(ReplaceFile(top_, "name", "text"));
  EXPECT_FALSE(fs::exists(Named("name")));
  EXPECT_FALSE(ReplaceFile(Named("missing") / "name", "text"));
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(FreshFiles, ThatCannotTakeThePlaceLeaveNothingBehind) {
  fs::create_directories(Named("taken") / "below");
  EXPECT_FALSE(ReplaceFile(top_, "taken", "text"));
  EXPECT_EQ(errno, EISDIR);
  EXPECT_EQ(Count(), 1);
  { const FreshFile fresh(Named("given_up")); }
  EXPECT_EQ(Count(), 1);
}

TEST_F(FreshFiles, ThatCannotBeWrittenLeaveTheOldOne) {
  WriteFile(Named("name"), "old");
  {
    const FullDisk full(8);
    EXPECT_FALSE(ReplaceFile(Named("name"), "more than eight"));
    EXPECT_EQ(errno, EFBIG);
  }
  EXPECT_EQ(ReadFile(Named("name")), "old");
  EXPECT_EQ(Count(), 1);
}

TEST_F(FreshFiles, AreOldOrNewWheneverTheProcessIsKilled) {
  const int kills = KillAtEveryMoment(
      Calls::All, [&] { WriteFile(Named("name"), "old"); },
      [&] {
        if (!ReplaceFile(Named("name"), "new", {Durable::Yes})) throw 0;
      },
      [&] {
        const std::string found = ReadFile(Named("name"));
        ASSERT_TRUE(found == "old" || found == "new") << found;
      });
  EXPECT_GT(kills, 5);
}

TEST_F(FreshFiles, AreMadeOnceByWhoeverComesFirst) {
  EXPECT_TRUE(MakeOnce(top_, "key", "first"));
  EXPECT_TRUE(MakeOnce(top_, "key", "second")) << "it is there";
  EXPECT_EQ(ReadFile(Named("key")), "first");
  EXPECT_EQ(StatusOf(Open(Named("key"), O_RDONLY)).st_mode & 07777u, 0600u);
  EXPECT_EQ(Count(), 1);
  EXPECT_FALSE(MakeOnce(File(), "key", "text"));
}

}  // namespace
}  // namespace kalvo::test
