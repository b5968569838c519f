#include "host/web/run_folder.h"

#include <gtest/gtest.h>

#include "host/parts/setting_error.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

namespace fs = std::filesystem;

TEST(RunFolder, IsMadeForItsUserAlone) {
  const TemporaryFolder folder;
  const RunFolder run(folder.Path() / "a" / "run");
  const auto others = fs::perms::group_all | fs::perms::others_all;
  EXPECT_EQ(fs::status(run.Path()).permissions() & others, fs::perms::none);
}

TEST(RunFolder, IsHeldByOneServerAtATime) {
  const TemporaryFolder folder;
  {
    const RunFolder run(folder.Path() / "run");
    EXPECT_THROW(RunFolder(folder.Path() / "run"), host::SettingError);
  }
  EXPECT_NO_THROW(RunFolder(folder.Path() / "run"));
}

TEST(RunFolder, IsNoFileAndNoLink) {
  const TemporaryFolder folder;
  WriteFile(folder.Path() / "file", "");
  EXPECT_THROW(RunFolder(folder.Path() / "file"), host::SettingError);
  fs::create_directory(folder.Path() / "real");
  fs::create_directory_symlink(folder.Path() / "real", folder.Path() / "link");
  EXPECT_THROW(RunFolder(folder.Path() / "link"), host::SettingError);
}

TEST(RunFolder, LeavesRoomForTheNameOfASocket) {
  const TemporaryFolder folder;
  EXPECT_THROW(RunFolder(folder.Path() / std::string(100, 'x')), host::SettingError);
}

TEST(RunFolder, FilesAreWrittenAsAWhole) {
  const TemporaryFolder folder;
  web::WriteFile(folder.Path() / "file", "old and long");
  web::WriteFile(folder.Path() / "file", "new");
  EXPECT_EQ(ReadFile(folder.Path() / "file"), "new");
  EXPECT_THROW(web::WriteFile(folder.Path() / "missing" / "file", ""), host::SettingError);
}

}  // namespace
}  // namespace kalvo::test
