#include "base/private_folder.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>

#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace base;

namespace fs = std::filesystem;

class PrivateFolders : public ::testing::Test {
 protected:
  fs::path Named(const char* name) const { return folder_.Path() / name; }

  const TemporaryFolder folder_;
};

TEST_F(PrivateFolders, AreMadeForTheirOwnerAloneWithTheFoldersAbove) {
  EXPECT_EQ(MakePrivateFolder(Named("a") / "b"), "");
  EXPECT_EQ(fs::status(Named("a") / "b").permissions(), fs::perms::owner_all);
  EXPECT_EQ(MakePrivateFolder(Named("a") / "b"), "") << "and used again";
  EXPECT_EQ(MakePrivateFolder(Named("c") / ""), "") << "named with a slash at its end";
  EXPECT_EQ(fs::status(Named("c")).permissions(), fs::perms::owner_all);
}

TEST_F(PrivateFolders, SayWhatIsWrong) {
  WriteFile(Named("file"), "");
  fs::create_directory(Named("shown"));
  fs::permissions(Named("shown"), fs::perms(0711));
  fs::create_directory_symlink(Named("made"), Named("link"));
  ASSERT_EQ(MakePrivateFolder(Named("made")), "");
  const std::string open = "others may look into it; a folder of its own is needed, and chmod 700";
  const struct {
    const char* why;
    const char* name;
    Privacy privacy;
    std::string wrong;
  } kCases[] = {
      {"a file in its place", "file", Privacy::Closed, "it is not a folder"},
      {"a file above it", "file/below", Privacy::Closed, "Not a directory"},
      {"others may pass through", "shown", Privacy::Closed, open},
      {"which is allowed", "shown", Privacy::Own, ""},
      {"a link to it", "link", Privacy::Closed, ""},
      {"which is refused", "link", Privacy::Own, "it is not a folder"},
  };
  for (const auto& c : kCases) EXPECT_EQ(MakePrivateFolder(Named(c.name), c.privacy), c.wrong) << c.why;
}

TEST_F(PrivateFolders, OfAnotherUserAreRootsToUseUnlessTheyHaveToBeItsOwn) {
  if (geteuid() != 0) {  // the other way round: what is root's is refused
    EXPECT_EQ(MakePrivateFolder("/root"), "it belongs to another user");
    return;
  }
  ASSERT_EQ(MakePrivateFolder(Named("theirs")), "");
  ASSERT_EQ(chown(Named("theirs").c_str(), 65534, 65534), 0);
  EXPECT_EQ(MakePrivateFolder(Named("theirs")), "");
  EXPECT_EQ(MakePrivateFolder(Named("theirs"), Privacy::Own), "it belongs to another user");
}

TEST_F(PrivateFolders, LoseTheFilesThatNobodyTouches) {
  for (const char* name : {"old", "young"}) WriteFile(Named(name), "");
  fs::create_directory(Named("folder"));
  const auto before = fs::file_time_type::clock::now() - std::chrono::hours(2);
  fs::last_write_time(Named("old"), before);
  fs::last_write_time(Named("folder"), before);
  RemoveOlderThan(folder_.Path(), 3600);
  EXPECT_FALSE(fs::exists(Named("old")));
  EXPECT_TRUE(fs::exists(Named("young")));
  EXPECT_TRUE(fs::exists(Named("folder")));
}

}  // namespace
}  // namespace kalvo::test
