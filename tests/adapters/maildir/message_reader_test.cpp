// What a message says of itself, and how its file is read and replaced.
#include "adapters/maildir/message_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "adapters/maildir/files.h"
#include "adapters/maildir/maildir_fixture.h"
#include "support/temporary_folder.h"

namespace kalvo::test {

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

TEST_F(MaildirFiles, SubjectAndSenderAreWhatPeopleRead) {
  const struct {
    const char* why;
    std::string head, subject, sender;
  } cases[] = {
      {"words that are padded",
       "Subject: =?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cyBNw7xuY2hlbg==?=\n"
       "From: =?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cw==?= <x@y>\n",
       "Gr\xC3\xBC\xC3\x9F"
       "e aus M\xC3\xBCnchen",
       "Gr\xC3\xBC\xC3\x9F"
       "e aus <x@y>"},
      {"runs of blanks", "Subject: Now    Available\nFrom: \"A   B\" <x@y>\n", "Now Available", "A B <x@y>"},
      {"a local user", "From: root (Cron Daemon)\n", "", "Cron Daemon <root>"},
      {"a name alone", "From: \"Somebody\" <>\n", "", "Somebody"},
      {"nothing but an empty address", "From: <>\n", "", ""},
      {"a group", "From: Team: ann@x, bob@x;\n", "", "ann@x"},
      {"a group of nobody", "From: undisclosed-recipients:;\n", "", "undisclosed-recipients"},
      {"a blank line first", "   \nSubject: a\nFrom: x@y\n", "a", "x@y"},
      {"empty lines first", "\n\r\nSubject: a\nFrom: x@y\n", "a", "x@y"},
      {"a blank first", " Subject: a\nFrom: x@y\n", "a", "x@y"},
      {"a line that is no field first", "HELO there\nSubject: a\nFrom: x@y\n", "a", "x@y"},
      {"a line of a mailbox file first", "From x@y Tue May 28 12:24:23 1996\nSubject: a\nFrom: x@y\n", "a", "x@y"},
      {"a mark of the encoding first", "\xEF\xBB\xBFSubject: a\nFrom: x@y\n", "a", "x@y"},
      {"raw bytes in the message's charset",
       "Subject: \xC1\nFrom: \xC1 <x@y>\nContent-Type: text/plain; charset=koi8-r\n", "\xD0\xB0", "\xD0\xB0 <x@y>"},
      {"raw bytes in the charset of its first text",
       "Subject: \xC1\nContent-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: image/png\n\n\n--b\n"
       "Content-Type: text/html; charset=koi8-r\n\n\n--b--\n",
       "\xD0\xB0", ""},
      {"raw bytes in none", "Subject: caf\xE9\n", "caf\xC3\xA9", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const auto content = ReadText(c.head + "\nBody.\n");
    EXPECT_EQ(content.subject, c.subject);
    EXPECT_EQ(content.sender, c.sender);
  }
}

TEST_F(MaildirFiles, SizesOfLargeAttachmentsAreWhole) {
  const auto content = ReadText("Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: application/pdf\n\n" +
                                std::string(75'000'000, 'x') + "\n--b\nContent-Type: image/png\n\nxyz\n--b--\n");
  ASSERT_EQ(content.attachments.size(), 2u);
  EXPECT_EQ(content.attachments[0].size, 75'000'000);
  EXPECT_EQ(content.attachments[1].size, 3);
}

TEST_F(MaildirFiles, MorePartsThanAreReadAreTold) {
  std::string text = "Content-Type: multipart/mixed; boundary=b\n\n";
  for (int i = 0; i < 12'000; ++i) text += "--b\nContent-Type: image/png\n\nx\n";
  const auto content = ReadText(text);
  ASSERT_EQ(content.attachments.size(), 10'000u);
  EXPECT_EQ(content.attachments.back().name, "(the rest of this message is not read)");
}

// "Subject: packed", an empty line and "x", as gzip packs it.
constexpr std::string_view kPacked(
    "\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03\x0b\x2e\x4d\xca\x4a\x4d\x2e\xb1\x52\x28\x48\x4c\xce\x4e\x4d\xe1\xe2\xaa"
    "\xe0\x02\x00\x1d\x14\x71\xd8\x13\x00\x00\x00",
    39);

TEST_F(MaildirFiles, PackedMessagesAreReadOrNamed) {
  EXPECT_EQ(ReadText(kPacked).subject, "packed");
  EXPECT_EQ(ReadText(kPacked.substr(0, 10)).subject, "(this message cannot be read)");
  for (const char* begins : {"\x28\xB5\x2F\xFD", "BZh91AY&SY",
                             "\xFD"
                             "7zXZ",
                             "Dovecot-LZ4\r*"}) {
    EXPECT_EQ(ReadText(std::string(begins) + " and more").subject, "(this message is compressed and cannot be read)");
  }
}

TEST_F(MaildirFiles, DatesHaveZonesInAnyCase) {
  for (const char* date : {"Tue, 28 May 1996 12:24:23 cst", "Tue, 28 May 1996 12:24:23 CST",
                           "Tue, 28 May 1996 12:24:23 -600", "28 may 1996 18:24:23 gmt"}) {
    EXPECT_EQ(ReadText("Date: " + std::string(date) + "\n\n").sent, 833307863) << date;
  }
}

TEST_F(MaildirFiles, AttachmentsHaveTheNamesThatOthersShow) {
  const struct {
    const char* why;
    std::string head, name;  // "": it is none
  } cases[] = {
      {"a type without subtype is text", "Content-Type: text\n", ""},
      {"so is a type that makes no sense", "Content-Type: image\n", ""},
      {"without a type it is plain text", "Content-Disposition: attachment\n", "text/plain"},
      {"an unknown type by its name", "Content-Type: APPLICATION/X-BE2\n", "application/x-be2"},
      {"an attached message by the name of its type", "Content-Type: message/rfc822; name=\"Forwarded.eml\"\n",
       "Forwarded.eml"},
      {"a name in raw bytes", "Content-Disposition: attachment; filename=\"Fr\xF6sche.txt\"\n", "Fr\xC3\xB6sche.txt"},
      {"a name in raw bytes of the message's charset", "Content-Type: text/plain; charset=koi8-r; name=\"\xC1.txt\"\n",
       "\xD0\xB0.txt"},
      {"a name in several words",
       "Content-Type: image/png; name=\"=?utf-8?B?R3LDvMOfZQ==?=\n =?utf-8?B?IGF1cy5wbmc=?=\"\n",
       "Gr\xC3\xBC\xC3\x9F"
       "e aus.png"},
      {"a name in pieces", "Content-Type: image/png; name*0=\"a b\"; name*1=\" c.png\"\n", "a b c.png"},
      {"a name with its charset", "Content-Disposition: inline; filename*=utf-8''caf%C3%A9.txt\n", "caf\xC3\xA9.txt"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const auto content = ReadText(c.head + "\nBody.\n");
    EXPECT_EQ(content.hasAttachment, !c.name.empty());
    EXPECT_EQ(content.attachments.empty() ? "" : content.attachments[0].name, c.name);
  }
}

TEST_F(MaildirFiles, AStepIsOneNameBelow) {
  for (const char* step : {"a", "...", ".a", "a b"}) EXPECT_TRUE(maildir::IsStep(step)) << step;
  for (const std::string_view no : std::vector<std::string_view>{"", ".", "..", "a/b", "/", {"a\0b", 3}}) {
    EXPECT_FALSE(maildir::IsStep(no)) << no;
  }
}

}  // namespace

}  // namespace kalvo::test
