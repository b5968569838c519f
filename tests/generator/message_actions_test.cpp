#include <gtest/gtest.h>

#include <limits>

#include "fakes/page_fixture.h"
#include "kalvo/table_generator.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;
using Steps = std::vector<std::string>;

struct MessageFixture : PageFixture {
  explicit MessageFixture(std::string_view query = "", std::string_view form = "") : PageFixture(query, form) {
    generator->OnStartPage(*page);
    MayDrillDown();
  }

  std::string Show(bool mailboxMessage = true) {
    generator->DisplayMessageInformation("EXCH01", "Ken", "\\Inbox", "m1", mailboxMessage);
    return Taken();
  }
  bool Delete() { return generator->DeleteMessage(errorString); }

  std::shared_ptr<KalvoforExchangeTableGenerator> generator =
      std::make_shared<KalvoforExchangeTableGenerator>(platform);
  std::string errorString = "before";
};

std::string Heading(const std::string& heading) { return "<tr><th align=\"left\">" + heading + "</th><td>&nbsp;</td>"; }

std::string Details(const std::string& subject, const std::string& sender, const std::string& form,
                    const std::string& size, const std::string& created, const std::string& modified) {
  return "<table border=\"0\">\r\n" + Heading("Subject") + "<td colspan=\"4\">" + subject + "</td></tr>\r\n" +
         Heading("Sender") + "<td>" + sender + "</td><td>&nbsp;</td><td>&nbsp;</td><td rowspan=\"4\" valign=\"top\">" +
         form + "</td></tr>\r\n" + Heading("Size") + "<td>" + size + "</td></tr>\r\n" + Heading("Creation Date") +
         "<td>" + created + "</td></tr>\r\n" + Heading("Modification Date") + "<td>" + modified +
         "</td></tr>\r\n</table>\r\n";
}

TEST(MessageInformation, ShowsAMailboxMessageWithItsDeleteForm) {
  MessageFixture page("ContainerId=c1");
  page.live->subject = "<Hello> & bye"s;
  page.live->sender = "\"Ann\""s;
  EXPECT_EQ(page.Show(),
            Details("&lt;Hello&gt; &amp; bye", "&quot;Ann&quot;",
                    page.display->DeleteMessageForm("EXCH01", "Ken", "c1", "m1", 0,
                                                    "../Resources/MailboxSummary.asp?Server=EXCH01&Mailbox=Ken&"
                                                    "Container=%5CInbox&ContainerId=c1"),
                    "1.50KB", "1/2/1999", "1/3/1999 12:00:00 PM"));
  EXPECT_EQ(page.live->steps.SeenByThePage()[0], "GotoMsgAttachment(EXCH01, Ken, m1, 0)");
}

TEST(MessageInformation, ShowsAPublicFolderMessage) {
  MessageFixture page("PublicFolderId=p1&ContainerId=c1");
  EXPECT_EQ(page.Show(false),
            Details("Hello", "Ann",
                    page.display->DeleteMessageForm("EXCH01", "Ken", "p1", "m1", 4,
                                                    "../Resources/PublicFolderSummary.asp?Server=EXCH01&Mailbox=Ken&"
                                                    "PublicFolderId=p1"),
                    "1.50KB", "1/2/1999", "1/3/1999 12:00:00 PM"));
  EXPECT_EQ(page.live->steps.SeenByThePage()[0], "GotoMsgAttachment(EXCH01, Ken, m1, 4)");
}

TEST(MessageInformation, TheFolderMayComeWithAForm) {
  MessageFixture page("", "ContainerId=c2");
  EXPECT_NE(page.Show().find("name=\"FolderId\" value=\"c2\""), std::string::npos);
}

TEST(MessageInformation, WhatCannotBeReadIsEmpty) {
  MessageFixture page;
  for (const char* step :
       {"MessageSubject", "MessageSender", "MessageSize", "MessageCreationDate", "MessageModificationDate"}) {
    page.live->steps.Fail(step);
  }
  const std::string html = page.Show();
  EXPECT_NE(html.find("<td colspan=\"4\"></td>"), std::string::npos);
  EXPECT_NE(html.find(Heading("Size") + "<td>0.00KB</td>"), std::string::npos);
  EXPECT_NE(html.find(Heading("Creation Date") + "<td></td>"), std::string::npos);
  EXPECT_NE(html.find(Heading("Modification Date") + "<td></td>"), std::string::npos);
}

TEST(MessageInformation, SizesAreShownInKilobytes) {
  const struct {
    const char* why;
    Value size;
    const char* shown;
  } kCases[] = {
      {"nothing", std::int32_t{0}, "0.00KB"},
      {"just under a kilobyte", std::int32_t{1023}, "1.00KB"},
      {"a kilobyte", std::int32_t{1024}, "1.00KB"},
      {"just over a kilobyte", std::int32_t{1025}, "1.00KB"},
      {"half a kilobyte", std::int32_t{512}, "0.50KB"},
      {"1023 kilobytes", std::int32_t{1047552}, "1,023.00KB"},
      {"a megabyte", std::int32_t{1048576}, "1,024.00KB"},
      {"more than 32 bits", std::int64_t{4294967296}, "4,194,304.00KB"},
      {"numeric text", "2048"s, "2.00KB"},
      {"no text", ""s, "0.00KB"},
      {"text that is no number", "abc"s, "0.00KB"},
      {"a number without end", std::numeric_limits<double>::infinity(), "0.00KB"},
      {"empty", Empty{}, "0.00KB"},
      {"null", Null{}, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    MessageFixture page;
    page.live->size = c.size;
    EXPECT_NE(page.Show().find(Heading("Size") + "<td>" + c.shown + "</td></tr>"), std::string::npos);
  }
}

TEST(MessageInformation, AMessageThatCannotBeOpenedIsReportedAndNothingElseWritten) {
  MessageFixture page;
  page.live->steps.Fail("GotoMsgAttachment");
  EXPECT_EQ(page.Show(),
            "<p>Error Generating Table: &nbsp;GotoMsgAttachment: Load message information.<br>Error number: "
            "0x80004005; &nbsp; Description: Refused.</p>\r\n");
}

TEST(MessageInformation, AMissingBrowsingObjectIsReportedAndNothingElseWritten) {
  MessageFixture page;
  page.page->session->objects.clear();
  EXPECT_EQ(page.Show(),
            "<p>Error Generating Table: &nbsp;Get the live container object.<br>Error number: 0x1A8; &nbsp; "
            "Description: Object required</p>\r\n");
}

// ---- who may see ----------------------------------------------------------------------------------------

TEST(UserPermissions, AreTheOwnersAndTheAdministrators) {
  const struct {
    const char* why;
    const char *server, *user;
    bool administrator, permitted;
  } kCases[] = {
      {"the owner", "EXCH01", "domain\\KEN", false, true},
      {"another user", "EXCH01", "DOMAIN\\bob", false, false},
      {"an administrator", "EXCH01", "DOMAIN\\bob", true, true},
      {"no server", "", "DOMAIN\\ken", true, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    MessageFixture page;
    page.page->request->variables["LOGON_USER"] = c.user;
    if (c.administrator) page.Administrator();
    EXPECT_EQ(page.generator->CheckUserPermissions(c.server, "Ken"), c.permitted);
    EXPECT_EQ(page.Text(), "");
  }
}

TEST(UserPermissions, WithoutAServerTheSessionIsNotTouched) {
  MessageFixture page;
  page.page->session->objects.clear();
  EXPECT_FALSE(page.generator->CheckUserPermissions("", "Ken"));
  EXPECT_EQ(page.Text(), "");
  EXPECT_FALSE(page.generator->CheckUserPermissions("EXCH01", "Ken"));
  EXPECT_NE(page.Text().find("Get the live container object."), std::string::npos);
}

TEST(UserPermissions, ASessionThatDoesNotTellMakesNoAdministrator) {
  MessageFixture page;
  page.page->request->variables["LOGON_USER"] = "DOMAIN\\bob";
  page.page->session->values["KalvoAdministrator"] = std::make_shared<FakeSession>();
  EXPECT_FALSE(page.generator->CheckUserPermissions("EXCH01", "Ken"));
}

TEST(UserPermissions, TheRightToDrillDownIsNotOne) {
  MessageFixture page;
  page.live->owner = "DOMAIN\\bob";
  EXPECT_FALSE(page.generator->CheckUserPermissions("EXCH01", "Ken"));
}

// ---- deletion -------------------------------------------------------------------------------------------

constexpr char kQuery[] = "ServerName=EXCH01&MailboxName=Ken&FolderId=f1&MessageId=m1&Flags=";

TEST(DeleteMessage, RemovesTheMessageThatTheFormNames) {
  const struct {
    const char* flags;
    const char* step;
  } kCases[] = {
      {"0", "RemoveMessage(EXCH01, Ken, f1, m1, 0)"},    {"4", "RemoveMessage(EXCH01, Ken, f1, m1, 4)"},
      {"none", "RemoveMessage(EXCH01, Ken, f1, m1, 0)"}, {"", "RemoveMessage(EXCH01, Ken, f1, m1, 0)"},
      {"2.5", "RemoveMessage(EXCH01, Ken, f1, m1, 2)"},  {"-1", "RemoveMessage(EXCH01, Ken, f1, m1, -1)"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.flags);
    MessageFixture page(std::string(kQuery) + c.flags);
    EXPECT_TRUE(page.Delete());
    EXPECT_EQ(page.live->steps.SeenByThePage(), Steps{c.step});
    EXPECT_EQ(page.errorString, "Delete Message") << "left at its last step";
    EXPECT_EQ(page.Text(), "");
  }
}

TEST(DeleteMessage, AfterThePageThereIsNothingToRead) {
  MessageFixture page(std::string(kQuery) + "0");
  page.generator->OnEndPage();
  EXPECT_EQ(ErrorOf([&] { page.Delete(); }).Number(), 91);
}

TEST(DeleteMessage, ReadsTheQueryStringAlone) {
  MessageFixture page("", kQuery);
  EXPECT_TRUE(page.Delete());
  EXPECT_EQ(page.live->steps.SeenByThePage(), Steps{"RemoveMessage(, , , , 0)"});
}

TEST(DeleteMessage, IsRefusedWithoutTheRightToDrillDown) {
  MessageFixture page(kQuery);
  page.page->session->values.clear();
  page.Administrator();
  page.live->owner = "DOMAIN\\bob";
  EXPECT_FALSE(page.Delete());
  EXPECT_EQ(page.errorString, "Delete message not allowed");
  EXPECT_EQ(page.live->steps.Count("RemoveMessage"), 0u);
}

TEST(DeleteMessage, AnOwnerMayDelete) {
  MessageFixture page(kQuery);
  page.page->session->values.clear();
  EXPECT_TRUE(page.Delete());
}

TEST(DeleteMessage, AFailingStepIsRaisedAndNamed) {
  MessageFixture page(kQuery);
  page.live->steps.Fail("RemoveMessage", 77);
  EXPECT_EQ(ErrorOf([&] { page.Delete(); }).Number(), 77);
  EXPECT_EQ(page.errorString, "Delete Message");
  page.page->session->objects.clear();
  EXPECT_EQ(ErrorOf([&] { page.Delete(); }).Number(), 424);
  EXPECT_EQ(page.errorString, "Get the live container object.");
  EXPECT_EQ(page.Text(), "");
}

TEST(DeleteMessage, FlagsBeyond16BitsAreRaised) {
  MessageFixture page(kQuery + "32768"s);
  EXPECT_EQ(ErrorOf([&] { page.Delete(); }).Number(), 6);
  EXPECT_EQ(page.errorString, "Unknown Error");
  EXPECT_TRUE(page.live->steps.done.empty());
}

TEST(DeleteMessage, AnEarlierErrorDoesNotSpoilIt) {
  MessageFixture page(kQuery);
  LeaveError(Overflow());
  EXPECT_TRUE(page.Delete());
}

TEST(DeleteMessage, AnUnknownOwnerMakesAnAnonymousDeleteDoubtful) {
  MessageFixture page(kQuery);
  page.page->session->values.clear();
  page.page->request->variables["LOGON_USER"] = "";
  page.live->steps.Fail("MailboxOwner");
  EXPECT_FALSE(page.Delete()) << "the error of the question is still pending";
  EXPECT_EQ(page.live->steps.Count("RemoveMessage"), 1u);
}

}  // namespace
}  // namespace kalvo::test
