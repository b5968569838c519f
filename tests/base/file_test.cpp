#include "base/file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace base;

namespace fs = std::filesystem;

bool IsOpen(int handle) { return fcntl(handle, F_GETFD) >= 0; }

class Files : public ::testing::Test {
 protected:
  fs::path Named(const char* name) const { return folder_.Path() / name; }

  const TemporaryFolder folder_;
};

TEST_F(Files, AreClosedWhenTheirOwnerGoes) {
  int handle = -1;
  {
    const File file = Open(Named("a"), O_CREAT | O_RDWR);
    ASSERT_TRUE(file);
    handle = file.Handle();
    EXPECT_TRUE(IsOpen(handle));
  }
  EXPECT_FALSE(IsOpen(handle));
}

TEST_F(Files, HaveOneOwnerAtATime) {
  File first = Open(Named("a"), O_CREAT | O_RDWR);
  const int handle = first.Handle();
  File second = std::move(first);
  EXPECT_EQ(second.Handle(), handle);
  File third = Open(Named("b"), O_CREAT | O_RDWR);
  const int gone = third.Handle();
  third = std::move(second);
  EXPECT_EQ(third.Handle(), handle);
  EXPECT_FALSE(IsOpen(gone)) << "what it had before is closed";
  third.Close();
  EXPECT_FALSE(third);
  EXPECT_FALSE(IsOpen(handle));
}

TEST_F(Files, CanBeGivenAwayOpen) {
  File file = Open(Named("a"), O_CREAT | O_RDWR);
  const File other(file.Release());
  EXPECT_FALSE(file);
  EXPECT_TRUE(IsOpen(other.Handle()));
}

TEST_F(Files, AreTheOwnersAloneAndNotInherited) {
  const File file = Open(Named("a"), O_CREAT | O_RDWR);
  EXPECT_EQ(StatusOf(file).st_mode & 07777u, 0600u);
  EXPECT_EQ(fcntl(file.Handle(), F_GETFD), FD_CLOEXEC);
}

TEST_F(Files, SayWhyTheyCannotBeOpened) {
  EXPECT_FALSE(Open(Named("missing"), O_RDONLY));
  EXPECT_EQ(errno, ENOENT);
}

TEST_F(Files, AreReadWholeOrNotAtAll) {
  WriteFile(Named("five"), "12345");
  const File file = Open(Named("five"), O_RDONLY);
  EXPECT_EQ(ReadAll(file, 5), "12345");
  EXPECT_EQ(ReadAll(file, 4), std::nullopt);
  EXPECT_EQ(errno, EFBIG);
  EXPECT_EQ(ReadAll(File(), 5), std::nullopt);
}

TEST_F(Files, AreReadFromAPlaceOn) {
  WriteFile(Named("five"), "12345");
  const File file = Open(Named("five"), O_RDONLY);
  const struct {
    const char* why;
    std::size_t limit, from;
    std::string_view piece;
  } kCases[] = {{"the beginning", 2, 0, "12"},
                {"to the end", 9, 3, "45"},
                {"at the end", 9, 5, ""},
                {"behind the end", 9, 7, ""}};
  for (const auto& c : kCases) EXPECT_EQ(ReadPiece(file, c.limit, c.from), c.piece) << c.why;
}

TEST_F(Files, AreReadByTheirPath) {
  WriteFile(Named("five"), "12345");
  EXPECT_EQ(base::ReadFile(Named("five")), "12345");
  EXPECT_EQ(base::ReadFile(Named("five"), 4), std::nullopt);
  EXPECT_EQ(base::ReadFile(Named("missing")), std::nullopt);
  EXPECT_EQ(base::ReadFile(folder_.Path()), std::nullopt) << "a folder is none";
  ASSERT_EQ(mkfifo(Named("pipe").c_str(), 0600), 0);
  EXPECT_EQ(base::ReadFile(Named("pipe")), std::nullopt) << "and nobody waits for a pipe";
}

TEST_F(Files, AreWrittenWhole) {
  const File file = Open(Named("a"), O_CREAT | O_WRONLY);
  EXPECT_TRUE(WriteAll(file, "one "));
  EXPECT_TRUE(WriteAll(file, "two"));
  EXPECT_TRUE(WriteAll(file, ""));
  EXPECT_EQ(ReadFile(Named("a")), "one two");
  const File full = Open("/dev/full", O_WRONLY);
  EXPECT_FALSE(WriteAll(full, "text"));
  EXPECT_EQ(errno, ENOSPC);
}

TEST_F(Files, AreStillThereUntilSomebodyReplacesThem) {
  const File file = Open(Named("a"), O_CREAT | O_RDWR);
  EXPECT_TRUE(IsStillThere(file, Named("a")));
  fs::create_symlink(Named("a"), Named("link"));
  EXPECT_FALSE(IsStillThere(file, Named("link"))) << "a link is another thing";
  WriteFile(Named("b"), "");
  fs::rename(Named("b"), Named("a"));
  EXPECT_FALSE(IsStillThere(file, Named("a")));
  fs::remove(Named("a"));
  EXPECT_FALSE(IsStillThere(file, Named("a")));
}

TEST_F(Files, HaveTheirFolderOnTheDisk) {
  EXPECT_TRUE(SyncFolder(folder_.Path()));
  EXPECT_FALSE(SyncFolder(Named("missing")));
}

}  // namespace
}  // namespace kalvo::test
