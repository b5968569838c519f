// What a message says of itself, and how its file is read and replaced.
#include "adapters/maildir/message_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>

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

TEST_F(MaildirFiles, AReplaceThatFailsLeavesNothingBehind) {
  fs::create_directories(folder_.Path() / "taken" / "below");
  EXPECT_FALSE(maildir::ReplaceFile(top_, "taken", "text"));
  EXPECT_FALSE(fs::exists(folder_.Path() / "taken.new"));
  EXPECT_TRUE(maildir::ReplaceFile(top_, "free", "text"));
  EXPECT_EQ(ReadFile(folder_.Path() / "free"), "text");
}

}  // namespace

}  // namespace kalvo::tests
