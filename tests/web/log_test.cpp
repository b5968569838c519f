#include "host/web/log.h"

#include <gtest/gtest.h>

#include <regex>

#include "host/parts/setting_error.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace web;

TEST(Log, WritesOneLineAnEvent) {
  const TemporaryFolder folder;
  const Log log((folder.Path() / "log").string());
  log.Write("first");
  log.Write("a\nforged line\x1b[31m");
  const std::regex kLines(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \[\d+\] first
\d{4}-\d\d-\d\d \d\d:\d\d:\d\d \[\d+\] a\\x0Aforged line\\x1B\[31m
)");
  EXPECT_TRUE(std::regex_match(ReadFile(folder.Path() / "log"), kLines)) << ReadFile(folder.Path() / "log");
}

TEST(Log, ShowsWhatWouldHide) {
  const struct {
    const char* why;
    std::string text, written;
  } kCases[] = {
      {"C0 and DEL", std::string("a\0b\r\x7F", 5), "a\\x00b\\x0D\\x7F"},
      {"C1",
       "a\xC2\x85\xC2\x9B"
       "b",
       "a\\xC2\\x85\\xC2\\x9Bb"},
      {"line and paragraph separators", "\xE2\x80\xA8|\xE2\x80\xA9", "\\xE2\\x80\\xA8|\\xE2\\x80\\xA9"},
      {"text turned around", "\xE2\x80\xAEtxt\xE2\x81\xA6\xD8\x9C", "\\xE2\\x80\\xAEtxt\\xE2\\x81\\xA6\\xD8\\x9C"},
      {"tags of another plane", "x\xF3\xA0\x80\x81\xF3\xA0\x81\xBF", "x\\xF3\\xA0\\x80\\x81\\xF3\\xA0\\x81\\xBF"},
      {"what is no text",
       "a\x9B\xFF"
       "b\xC2",
       "a\xEF\xBF\xBD\xEF\xBF\xBD"
       "b\xEF\xBF\xBD"},
      {"what looks like an escape", "a\\x41", "a\\x5Cx41"},
      {"plain text of any language", "KALVO\\\xC3\xA4\xE2\x80\x94\xF0\x9F\x98\x80",
       "KALVO\\\xC3\xA4\xE2\x80\x94\xF0\x9F\x98\x80"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const TemporaryFolder folder;
    Log((folder.Path() / "log").string()).Write(c.text);
    const std::string line = ReadFile(folder.Path() / "log");
    EXPECT_EQ(line.substr(line.find("] ") + 2), c.written + "\n");
  }
}

TEST(Log, HasTextsFromOutsideCutShort) {
  EXPECT_EQ(InLog("alice"), "alice");
  EXPECT_EQ(InLog(std::string(200, 'a')), std::string(200, 'a'));
  EXPECT_EQ(InLog(std::string(900'000, 'a')), std::string(200, 'a') + "... (900000 bytes)");
  EXPECT_EQ(InLog(std::string(199, 'a') + "\xC3\xA4"), std::string(199, 'a') + "... (201 bytes)")
      << "no half character";
}

TEST(Log, IsOpenedAnewAfterItWasMovedAway) {
  const TemporaryFolder folder;
  Log log((folder.Path() / "log").string());
  log.Write("old");
  std::filesystem::rename(folder.Path() / "log", folder.Path() / "log.1");
  log.Reopen();
  log.Write("new");
  EXPECT_NE(ReadFile(folder.Path() / "log.1").find("old"), std::string::npos);
  EXPECT_NE(ReadFile(folder.Path() / "log").find("new"), std::string::npos);
  EXPECT_EQ(ReadFile(folder.Path() / "log").find("old"), std::string::npos);
}

TEST(Log, AFileThatCannotBeWrittenIsRefused) { EXPECT_THROW(Log("/nowhere/log"), host::SettingError); }

}  // namespace
}  // namespace kalvo::test
