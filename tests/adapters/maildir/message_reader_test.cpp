// What a message says of itself, and how its file is read and replaced.
#include "adapters/maildir/message_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "adapters/maildir/files.h"
#include "adapters/maildir/maildir_fixture.h"

namespace kalvo::tests {

namespace {

namespace fs = std::filesystem;

class MaildirFiles : public ::testing::Test {
 protected:
  maildir::MessageContent ReadText(std::string_view text) {
    WriteFile(folder_.Path() / "message", text);
    return maildir::ReadMessage(maildir::OpenFile(top_, "message"), maildir::Read::Attachments);
  }

  TemporaryFolder folder_;
  maildir::File top_{open(folder_.Path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
};

TEST_F(MaildirFiles, AMessageInsideAMessageIsOneAttachmentOfItsSize) {
  const std::string inner = "Subject: Inner\nFrom: a@kalvo.example\n\nA body of one line.\n";
  const auto content = ReadText(
      "Subject: Outer\nMIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n"
      "--b\nContent-Type: text/plain\n\nSee below.\n"
      "--b\nContent-Type: message/rfc822\nContent-Disposition: attachment; filename=\"inner.eml\"\n\n" +
      inner + "\n--b--\n");
  EXPECT_EQ(content.subject, "Outer");
  ASSERT_EQ(content.attachments.size(), 1u);
  EXPECT_EQ(content.attachments[0].name, "inner.eml");
  EXPECT_EQ(content.attachments[0].size, static_cast<std::int64_t>(inner.size()));
}

TEST_F(MaildirFiles, AFileThatACrashLeftIsTakenOverAfterAMinute) {
  const auto left = [&](int secondsAgo) {
    WriteFile(folder_.Path() / "name.new", "half");
    fs::last_write_time(folder_.Path() / "name.new",
                        fs::file_time_type::clock::now() - std::chrono::seconds(secondsAgo));
  };
  left(40);
  EXPECT_FALSE(maildir::ReplaceFile(top_, "name", "text")) << "another process may still be at it";
  EXPECT_EQ(ReadFile(folder_.Path() / "name.new"), "half");
  left(62);
  EXPECT_TRUE(maildir::ReplaceFile(top_, "name", "text"));
  EXPECT_EQ(ReadFile(folder_.Path() / "name"), "text");
  EXPECT_FALSE(fs::exists(folder_.Path() / "name.new"));
}

TEST_F(MaildirFiles, WhatIsWrittenIsTheOwnersAlone) {
  const mode_t before = umask(0);
  EXPECT_TRUE(maildir::ReplaceFile(top_, "name", "text"));
  umask(before);
  EXPECT_EQ(fs::status(folder_.Path() / "name").permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(MaildirFiles, AFileIsReadWholeOrNotAtAll) {
  WriteFile(folder_.Path() / "five", "12345");
  const auto file = maildir::OpenFile(top_, "five");
  EXPECT_EQ(maildir::ReadAll(file, 5), "12345");
  EXPECT_EQ(maildir::ReadAll(file, 4), std::nullopt);
}

TEST_F(MaildirFiles, AStepIsOneNameBelow) {
  for (const char* step : {"a", "...", ".a", "a b"}) EXPECT_TRUE(maildir::IsStep(step)) << step;
  for (const std::string_view no : std::vector<std::string_view>{"", ".", "..", "a/b", "/", {"a\0b", 3}}) {
    EXPECT_FALSE(maildir::IsStep(no)) << no;
  }
}

TEST_F(MaildirFiles, AReplaceThatFailsLeavesNothingBehind) {
  fs::create_directories(folder_.Path() / "taken" / "below");
  EXPECT_FALSE(maildir::ReplaceFile(top_, "taken", "text"));
  EXPECT_FALSE(fs::exists(folder_.Path() / "taken.new"));
  EXPECT_TRUE(maildir::ReplaceFile(top_, "free", "text"));
  EXPECT_EQ(ReadFile(folder_.Path() / "free"), "text");
}

}  // namespace

}  // namespace kalvo::tests
