#include <gtest/gtest.h>

#include "host/parts/setting_error.h"
#include "host/web/settings.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

// Settings in a folder of their own, completed; what is wrong with them, and "" when nothing is.
std::string WrongWith(const TemporaryFolder& folder, const std::string& text, Settings* completed = nullptr) {
  WriteFile(folder.Path() / "kalvo.toml", text);
  try {
    Settings settings = ReadSettings(folder.Path() / "kalvo.toml");
    Complete(settings);
    if (completed) *completed = settings;
  } catch (const host::SettingError& error) {
    return error.what();
  }
  return "";
}

TEST(LoginSettings, NameAUsersFileThatIsThere) {
  const TemporaryFolder folder;
  EXPECT_NE(WrongWith(folder, "users = \"users\"").find("kalvo passwd"), std::string::npos);
  WriteFile(folder.Path() / "users", "");
  Settings settings;
  EXPECT_EQ(WrongWith(folder, "users = \"users\"\nrun = \"run\"", &settings), "");
  EXPECT_EQ(settings.users, folder.Path() / "users");
  EXPECT_EQ(settings.sessions, folder.Path() / "run/sessions");
  EXPECT_EQ(settings.sessionMinutes, 30);
}

TEST(LoginSettings, ExcludeAVisitorForAll) {
  const TemporaryFolder folder;
  WriteFile(folder.Path() / "users", "");
  for (const char* visitor : {"[visitor]\nlogon = 'A\\b'", "[visitor.session]\nKalvoAdministrator = \"Yes\""}) {
    EXPECT_NE(WrongWith(folder, std::string("users = \"users\"\n") + visitor).find("exclude each other"),
              std::string::npos);
  }
}

TEST(LoginSettings, HaveMinutesThatMakeSense) {
  const TemporaryFolder folder;
  for (const char* minutes : {"0", "1441", "\"30\"", "1.5"}) {
    EXPECT_NE(WrongWith(folder, std::string("session_minutes = ") + minutes).find("from 1 to 1440"), std::string::npos);
  }
  EXPECT_EQ(WrongWith(folder, "session_minutes = 5\nsessions = \"kept\""), "");
}

}  // namespace
}  // namespace kalvo::test
