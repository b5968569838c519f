#include "host/web/log.h"

#include <gtest/gtest.h>

#include <regex>

#include "host/parts/setting_error.h"
#include "support/temporary_folder.h"

namespace kalvo::web {
namespace {

using test::TemporaryFolder;

TEST(Log, WritesOneLineAnEvent) {
  const TemporaryFolder folder;
  const Log log((folder.Path() / "log").string());
  log.Write("first");
  log.Write("a\nforged line\x1b[31m");
  const std::regex kLines(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \[\d+\] first
\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \[\d+\] a\\x0Aforged line\\x1B\[31m
)");
  EXPECT_TRUE(std::regex_match(test::ReadFile(folder.Path() / "log"), kLines)) << test::ReadFile(folder.Path() / "log");
}

TEST(Log, IsOpenedAnewAfterItWasMovedAway) {
  const TemporaryFolder folder;
  Log log((folder.Path() / "log").string());
  log.Write("old");
  std::filesystem::rename(folder.Path() / "log", folder.Path() / "log.1");
  log.Reopen();
  log.Write("new");
  EXPECT_NE(test::ReadFile(folder.Path() / "log.1").find("old"), std::string::npos);
  EXPECT_NE(test::ReadFile(folder.Path() / "log").find("new"), std::string::npos);
  EXPECT_EQ(test::ReadFile(folder.Path() / "log").find("old"), std::string::npos);
}

TEST(Log, AFileThatCannotBeWrittenIsRefused) { EXPECT_THROW(Log("/nowhere/log"), host::SettingError); }

}  // namespace
}  // namespace kalvo::web
