#include "adapters/mail/shown_text.h"

#include <gtest/gtest.h>

#include "kalvo/platform/conversion.h"

namespace kalvo::test {

using namespace mail;

namespace {

TEST(MailText, IsCleanedForShowing) {
  const struct {
    const char* why;
    std::string raw, clean;
  } cases[] = {
      {"plain", "Hello", "Hello"},
      {"nothing", "", ""},
      {"blanks around it", "  a  b ", "a  b"},
      {"line ends are one blank", "a\r\n\tb", "a b"},
      {"only controls", "\r\n\t", ""},
      {"markup stays", "<b> & \"x\"", "<b> & \"x\""},
      {"a lone byte", "caf\xE9", "caf\xEF\xBF\xBD"},
      {"an overlong form", "\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"a surrogate", "\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
      {"a character cut off", "a\xE2\x82", "a\xEF\xBF\xBD"},
      {"four bytes", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"},
      {"a mark that turns the direction",
       "a\xE2\x80\xAE"
       "b",
       "a b"},
      {"a zero byte", std::string("a\0b", 3), "a b"},
      {"500 characters fit", std::string(500, 'x'), std::string(500, 'x')},
      {"501 do not", std::string(501, 'x'), std::string(500, 'x') + "\xE2\x80\xA6"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(CleanText(c.raw), c.clean);
  }
}

TEST(MailText, PathsAreNamesBetweenBackslashes) {
  EXPECT_EQ(ParsePath(""), FolderPath());
  EXPECT_EQ(ParsePath("\\\\"), FolderPath());
  EXPECT_EQ(ParsePath("\\Inbox\\\\Projects\\"), (FolderPath{"Inbox", "Projects"}));
  EXPECT_EQ(ParsePath("a/b"), FolderPath{"a/b"});
  EXPECT_EQ(PathText({"Inbox", "Projects"}), "Inbox\\Projects");
}

TEST(MailText, FolderNamesAreEncodedForStores) {
  const struct {
    const char *name, *encoded;
  } cases[] = {
      {"Inbox", "Inbox"},
      {"A & B", "A &- B"},
      {"Entw\xC3\xBCrfe", "Entw&APw-rfe"},
      {"\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E", "&ZeVnLIqe-"},
      {"\xF0\x9F\x98\x80", "&2D3eAA-"},
      {"a/b", "a&AC8-b"},
      {"v1.2", "v1&AC4-2"},
      {"\xC3\xBC&\xC3\xBC", "&APw-&-&APw-"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.encoded);
    EXPECT_EQ(ToModifiedUtf7(c.name), c.encoded);
    EXPECT_EQ(FromModifiedUtf7(c.encoded), c.name);
  }
}

TEST(MailText, ANameThatIsNoEncodingIsReadAsItStands) {
  for (const char* name : {"&", "&abc", "&A-", "&APw", "a&?-b", "Entw\xC3\xBCrfe", "&2D0-", "&3gA-", "&APx-"}) {
    EXPECT_EQ(FromModifiedUtf7(name), name);
  }
}

TEST(MailText, AttachmentsAreTold) {
  EXPECT_FALSE(IsAttachment("text", "", false));
  EXPECT_FALSE(IsAttachment("TEXT", "inline", false));
  EXPECT_TRUE(IsAttachment("text", "Attachment", false));
  EXPECT_TRUE(IsAttachment("text", "", true));
  EXPECT_TRUE(IsAttachment("image", "inline", false));
  EXPECT_TRUE(IsAttachment("message", "", false));
  EXPECT_EQ(AttachmentName("C:\\dir\\a.doc", "x", "y"), "a.doc");
  EXPECT_EQ(AttachmentName("../../etc/passwd", "x", "y"), "passwd");
  EXPECT_EQ(AttachmentName("", "image", "png"), "image/png");
}

TEST(MailText, SendersAreNameAndAddress) {
  EXPECT_EQ(SenderText("Bob", "b@x"), "Bob <b@x>");
  EXPECT_EQ(SenderText("", "b@x"), "b@x");
  EXPECT_EQ(SenderText("b@x", "b@x"), "b@x");
  EXPECT_EQ(SenderText("Bob", ""), "Bob");
}

TEST(MailText, DatesOutOfRangeAreNone) {
  setenv("TZ", "UTC", 1);
  tzset();
  EXPECT_EQ(DateValue(915278400), Value(Date{36162.5}));
  EXPECT_TRUE(IsEmpty(DateValue(std::nullopt)));
  EXPECT_TRUE(IsEmpty(DateValue(std::int64_t{1} << 60)));
  EXPECT_TRUE(IsEmpty(DateValue(-(std::int64_t{1} << 60))));
}

}  // namespace

}  // namespace kalvo::test
