#include <gtest/gtest.h>

#include "column_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

TEST(ColumnData, ACellHasTheColumnsLayout) {
  ColumnFixture page;
  page.row.fields = {{"Value", "x"}};
  page.column.rows = 2;
  page.column.columns = 3;
  page.column.align = "right";
  page.column.noWrap = true;
  EXPECT_EQ(page.Data(), "<td rowspan=\"2\" colspan=\"3\" nowrap align=\"right\">x</td>");
  page.column.rows = 1;
  page.column.columns = 0;
  page.column.align = "";
  page.column.noWrap = false;
  EXPECT_EQ(page.Data(), "<td>x</td>");
}

TEST(ColumnData, AValueIsShownByItsFormat) {
  const struct {
    const char* why;
    KalvoTableFormatType format;
    const char *value, *shown;
  } kCases[] = {
      {"text is encoded", FORMATTYPE_NOFORMATING, "<a & b>", "&lt;a &amp; b&gt;"},
      {"no text", FORMATTYPE_NOFORMATING, "", "&nbsp;"},
      {"the first format is text", FORMATTYPE_FIRSTFORMAT, "<", "&lt;"},
      {"a checkbox format is text here", FORMATTYPE_CHECKBOX, "<", "&lt;"},
      {"so is an identifier", FORMATTYPE_GUID, "<", "&lt;"},
      {"so is a quota type", FORMATTYPE_QUOTATYPE, "<", "&lt;"},
      {"so is a quota checkbox", FORMATTYPE_QVCHECKBOX, "<", "&lt;"},
      {"so is a format that there is not", static_cast<KalvoTableFormatType>(18), "<", "&lt;"},
      {"a scaled number", FORMATTYPE_NUMERICVALUE, "1536", "1.50KB"},
      {"a negative scaled number", FORMATTYPE_NUMERICVALUE, "-2048", "(2.00)KB"},
      {"no scaled number", FORMATTYPE_NUMERICVALUE, "", "&nbsp;"},
      {"a number", FORMATTYPE_NUMBER, "1234.5", "1,235"},
      {"no number", FORMATTYPE_NUMBER, "", "&nbsp;"},
      {"a date", FORMATTYPE_DATETIME, "1999-01-02 15:04:05", "1/2/1999 3:04:05 PM"},
      {"a date of 1950", FORMATTYPE_DATETIME, "12/31/1950", "&nbsp;"},
      {"what is no date", FORMATTYPE_DATETIME, "soon", "&nbsp;"},
      {"no date", FORMATTYPE_DATETIME, "", "&nbsp;"},
      {"a serial", FORMATTYPE_DATETIMEFLOAT, "36162.5", "1/2/1999 12:00:00 PM"},
      {"an old serial", FORMATTYPE_DATETIMEFLOAT, "2", "1/1/1900"},
      {"no serial", FORMATTYPE_DATETIMEFLOAT, "", "&nbsp;"},
      {"what is no serial", FORMATTYPE_DATETIMEFLOAT, "soon", "&nbsp;"},
      {"hours, minutes and seconds", FORMATTYPE_TIME, "3725", "1hr&nbsp;02min&nbsp;5sec"},
      {"under a minute", FORMATTYPE_TIME, "59", "0hr&nbsp;00min&nbsp;59sec"},
      {"two hours", FORMATTYPE_TIME, "7325", "2hr&nbsp;02min&nbsp;5sec"},
      {"ten minutes", FORMATTYPE_TIME, "600", "0hr&nbsp;10min&nbsp;0sec"},
      {"just under two hours", FORMATTYPE_TIME, "7199", "1hr&nbsp;59min&nbsp;59sec"},
      {"a hundred hours", FORMATTYPE_TIME, "360000", "100hr&nbsp;00min&nbsp;0sec"},
      {"half seconds round to even", FORMATTYPE_TIME, "2.5", "0hr&nbsp;00min&nbsp;2sec"},
      {"no time", FORMATTYPE_TIME, "", "&nbsp;"},
      {"a managed server", FORMATTYPE_SERVERSTATE, "2", "Managed"},
      {"a server state that rounds to managed", FORMATTYPE_SERVERSTATE, "2.4", "Managed"},
      {"an unmanaged server", FORMATTYPE_SERVERSTATE, "1", "Unmanaged"},
      {"an unknown state", FORMATTYPE_SERVERSTATE, "3", "Unmanaged"},
      {"a success", FORMATTYPE_STATUS, "2", "Succeeded"},
      {"a success as a double", FORMATTYPE_STATUS, "2.0", "Succeeded"},
      {"not quite a success", FORMATTYPE_STATUS, "2.4", "Failed"},
      {"a failure", FORMATTYPE_STATUS, "0", "Failed"},
      {"the directory", FORMATTYPE_BACKUPTYPE, "2", "Dir Store"},
      {"the information store", FORMATTYPE_BACKUPTYPE, "1", "Info Store"},
      {"any other type", FORMATTYPE_BACKUPTYPE, "7", "Info Store"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.formatType = c.format;
    page.column.dataScale = 1024;
    page.column.units = "KB";
    page.row.fields = {{"Value", c.value}};
    EXPECT_EQ(page.Content(), c.shown);
    EXPECT_EQ(page.Read(), "Value");
  }
}

TEST(ColumnData, AValueThatTheFormatCannotReadFails) {
  const struct {
    const char* why;
    KalvoTableFormatType format;
    const char* value;
    std::int32_t error;
  } kCases[] = {
      {"a word as a number", FORMATTYPE_NUMBER, "many", 13},
      {"a word as a scaled number", FORMATTYPE_NUMERICVALUE, "many", 13},
      {"a scale of 0", FORMATTYPE_NUMERICVALUE, "1", 11},
      {"a word as a time", FORMATTYPE_TIME, "long", 13},
      {"a time beyond 32 bits", FORMATTYPE_TIME, "1e10", 6},
      {"no server state", FORMATTYPE_SERVERSTATE, "", 13},
      {"a server state beyond 16 bits", FORMATTYPE_SERVERSTATE, "40000", 6},
      {"no status", FORMATTYPE_STATUS, "", 13},
      {"a word as a backup type", FORMATTYPE_BACKUPTYPE, "full", 13},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.formatType = c.format;
    page.row.fields = {{"Value", c.value}};
    EXPECT_EQ(ErrorOf([&] { page.Data(); }).Number(), c.error);
  }
}

TEST(ColumnData, AFailingRowFailsTheCell) {
  ColumnFixture page;
  page.row.steps.Fail("GetField", 7);
  EXPECT_EQ(ErrorOf([&] { page.Data(); }).Number(), 7);
}

TEST(ColumnData, ABackupIsMissingOrItsServerWasNeverScanned) {
  const struct {
    const char* why;
    const char *value, *scanned, *shown;
  } kCases[] = {
      {"never scanned", "", "", "Never Scanned"},
      {"never scanned beats a backup", "1/2/1999", "", "Never Scanned"},
      {"no backup", "", "1/2/1999", "No Successful Backup"},
      {"a backup of long ago", "1/2/1950", "1/2/1999", "No Successful Backup"},
      {"a backup", "1/2/1999", "1/2/1999", "1/2/1999"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.formatType = FORMATTYPE_BackupDateTime;
    page.row.fields = {{"Value", c.value}, {"LastQuickScan", c.scanned}};
    EXPECT_EQ(page.Content(), c.shown);
    EXPECT_EQ(page.Read(), "Value LastQuickScan");
  }
}

// ---- membership -----------------------------------------------------------------------------------------

constexpr char kIdentifier[] = "<input type=\"hidden\" name=\"Identifier\" value=\"7\">";
constexpr char kInGroup[] = "<input type=\"hidden\" name=\"InGroup\" value=\"1\">";

TEST(ColumnData, MembershipIsAFormFragment) {
  const struct {
    const char* why;
    const char *notInGroup, *defaultGroup;
    std::string shown;
  } kCases[] = {
      {"no member", "TRUE", "0", std::string(kIdentifier) + "<input type=\"checkbox\" name=\"Include\" value=\"1\">"},
      {"a member", "FALSE", "0",
       std::string(kInGroup) + kIdentifier + "<input type=\"checkbox\" name=\"Include\" value=\"1\" Checked>"},
      {"a member of the default group cannot leave it", "FALSE", "1",
       std::string(kInGroup) + kIdentifier +
           "<img border=\"0\" src=\"../Images/Controls/Check.gif\" width=\"16\" height=\"16\">"},
      {"but can join it", "TRUE", "1",
       std::string(kIdentifier) + "<input type=\"checkbox\" name=\"Include\" value=\"1\">"},
      {"lower case is no member", "false", "1",
       std::string(kIdentifier) + "<input type=\"checkbox\" name=\"Include\" value=\"1\">"},
      {"a default group that is no number", "FALSE", "yes",
       std::string(kInGroup) + kIdentifier + "<input type=\"checkbox\" name=\"Include\" value=\"1\" Checked>"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.formatType = FORMATTYPE_MEMBERSHIPCHECKBOX;
    page.row.fields = {{"Value", c.notInGroup}, {"DefaultGroup", c.defaultGroup}, {"Identifier", "7"}};
    EXPECT_EQ(page.Content(), c.shown);
    EXPECT_EQ(page.Read(), "GroupName Value DefaultGroup Identifier");
  }
}

// ---- pictures -------------------------------------------------------------------------------------------

TEST(ColumnData, APictureIsChosenByTheColumn) {
  const auto picture = [](const char* name) {
    return std::string("<img border=\"0\" src=\"../Images/") + name + ".gif\" width=\"16\" height=\"16\">";
  };
  const std::string attached = picture("Message") + picture("Attachment");
  const std::string plain = picture("Message") + picture("BlankGraphSpacing");
  const struct {
    const char* why;
    KalvoTableColumnsConstants id;
    const char *field, *value;
    std::string shown;
  } kCases[] = {
      {"a ranked message's folder", COL_TOPN_MailboxFolder_ModifiedDateSort_Graphic, "", "", picture("Folder")},
      {"a folder", COL_MAPI_FOLDERGRAPHIC, "", "", picture("Folder")},
      {"a ranked message", COL_TOPN_MailboxMessage_Graphic, "18", "0", plain},
      {"a ranked message with an attachment", COL_TOPN_MailboxMessage_Graphic, "18", "1", attached},
      {"a ranked public folder message", COL_TOPN_PublicFolderMessage_Graphic, "18", "0", plain},
      {"anything but 0 is an attachment", COL_TOPN_PublicFolderMessage_Graphic, "18", "", attached},
      {"a message", COL_MAPI_MESSAGEGRAPHIC, "HasAttachment", "0", plain},
      {"False is an attachment, too", COL_MAPI_MESSAGEGRAPHIC, "HasAttachment", "False", attached},
      {"a public folder message", COL_MAPI_PUBLICFOLDERMESSAGEGRAPHIC, "HasAttachment", "1", attached},
      {"any other column", COL_SERVER_COMPUTER, "", "", "&nbsp;"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.id = c.id;
    page.column.formatType = FORMATTYPE_IMAGE;
    page.row.fields = {{c.field, c.value}};
    EXPECT_EQ(page.Content(), c.shown);
    EXPECT_EQ(page.Read(), c.field);
  }
}

TEST(ColumnData, AReplacedPictureIsShown) {
  ColumnFixture page;
  page.column.id = COL_MAPI_FOLDERGRAPHIC;
  page.column.formatType = FORMATTYPE_IMAGE;
  page.display->SetFolderGraphicID(Image("mine.gif", 1, 2));
  EXPECT_EQ(page.Content(), "<img border=\"0\" src=\"mine.gif\" width=\"1\" height=\"2\">");
}

TEST(ColumnData, ADeleteFormKnowsItsMessageAndWhereToGoOn) {
  ColumnFixture page("ContainerId=c%261&Container=%5CInbox&PublicFolderId=p1");
  page.context->SetName("EXCH01");
  page.context->SetMailbox("Ken & Co");
  page.column.formatType = FORMATTYPE_IMAGE;
  page.row.fields = {{"ExchangeId", "m1"}};
  page.column.id = COL_MAPI_DeleteMailboxMessage;
  EXPECT_EQ(page.Content(),
            page.display->DeleteMessageForm("EXCH01", "Ken & Co", "c&1", "m1", 0,
                                            "../Resources/MailboxSummary.asp?Server=EXCH01&Mailbox=Ken+%26+Co&"
                                            "Container=%5CInbox&ContainerId=c%261"));
  EXPECT_EQ(page.Read(), "ExchangeId");
  page.column.id = COL_MAPI_DeletePublicFolderMessage;
  EXPECT_EQ(page.Content(),
            page.display->DeleteMessageForm("EXCH01", "Ken & Co", "p1", "m1", 4,
                                            "../Resources/PublicFolderSummary.asp?Server=EXCH01&Mailbox=Ken+%26+Co&"
                                            "PublicFolderId=p1"));
}

// ---- a row that turns back ------------------------------------------------------------------------------

// Answers every question in the same buffer, and counts its answers.
class OneBuffer : public FakeRowSource {
 public:
  std::string_view GetField(std::string_view name) override {
    answer_ = "answer " + std::to_string(++answers_) + " to ";
    answer_ += name;
    return answer_;
  }

 private:
  std::string answer_;
  int answers_ = 0;
};

TEST(ColumnData, AValueIsItsFirstAnswer) {
  ColumnFixture page;
  page.column.databaseField = "15";
  page.column.hyperLinkType = HYPERLINK_PUBLICFOLDER;
  OneBuffer row;
  EXPECT_EQ(KalvoColumn(page.column).ConstructHTMLData(*page.context, *page.display, row),
            "<td><a href=\"../Resources/PublicFolderSummary.asp?Server=answer+2+to+15&amp;Mailbox=answer+1+to+15&amp;"
            "PublicFolderId=answer+3+to+3&amp;Sort=&amp;Sort=ModifiedDate&amp;SortOrder=&amp;SortOrder=ASC\" "
            "target=\"_top\">answer 1 to 15</a></td>");
}

TEST(ColumnData, InitialisedAnewWhileItsCellIsMadeAColumnGoesOnAsItIsThen) {
  ColumnFixture page;
  page.column.align = "right";
  page.row.fields = {{"Value", "1536"}};
  const auto column = std::make_shared<KalvoColumn>(page.column);
  page.row.steps.When("GetField", [&] {
    column->Initialize(COL_CURRENTALERTS_ALERT, "", "", HYPERLINK_SERVER, "", "", column_KeepTotal, false,
                       FORMATTYPE_NUMERICVALUE, 1024, "KB", 1, 2, "center", false, "");
  });
  EXPECT_EQ(column->ConstructHTMLData(*page.context, *page.display, page.row),
            "<td colspan=\"2\" align=\"center\">1536</td>")
      << "the value and where it leads were chosen before";
}

TEST(ColumnData, ALinkIsMadeBeforeItsCell) {
  ColumnFixture page;
  page.column.hyperLinkType = HYPERLINK_SERVERGROUP;
  page.column.align = "right";
  page.row.fields = {{"Value", "v"}};
  page.page->server->steps.done.clear();
  page.Data();
  EXPECT_EQ(page.page->server->steps.SeenByThePage(),
            (std::vector<std::string>{"HTMLEncode(v)", "URLEncode(v)",
                                      "HTMLEncode(../Resources/SingleServerGroupReports.asp?GroupName=v)",
                                      "HTMLEncode(_top)", "HTMLEncode(right)"}));
}

TEST(ColumnData, AShownDateClearsThePendingErrorAndASerialLeavesItsOwn) {
  const struct {
    const char* why;
    KalvoTableFormatType format;
    const char* value;
    std::int32_t pending;
  } kCases[] = {
      {"text shows no date", FORMATTYPE_NOFORMATING, "x", 6},
      {"a date", FORMATTYPE_DATETIME, "1/2/1999", 0},
      {"what is no date", FORMATTYPE_DATETIME, "never", 0},
      {"no date", FORMATTYPE_DATETIME, "", 6},
      {"a backup's date", FORMATTYPE_BackupDateTime, "1/2/1999", 0},
      {"no backup", FORMATTYPE_BackupDateTime, "", 6},
      {"a serial", FORMATTYPE_DATETIMEFLOAT, "36162.5", 0},
      {"what is no serial", FORMATTYPE_DATETIMEFLOAT, "never", 13},
      {"no serial", FORMATTYPE_DATETIMEFLOAT, "", 6},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.formatType = c.format;
    page.row.fields = {{"Value", c.value}, {"LastQuickScan", "x"}};
    LeaveError(Overflow());
    page.Data();
    EXPECT_EQ(CurrentError().number, c.pending);
  }
}

// A script that serves as the row may change the scope that a form is made of.
TEST(ColumnData, ADeleteFormHasTheScopeFromBeforeItsMessageWasRead) {
  ColumnFixture page("ContainerId=c1");
  page.column.id = COL_MAPI_DeleteMailboxMessage;
  page.column.formatType = FORMATTYPE_IMAGE;
  page.context->SetName("a server whose name is too long for a buffer of its own");
  page.context->SetMailbox("Ken");
  page.row.fields = {{"ExchangeId", "m1"}};
  page.row.steps.When("GetField", [&] {
    page.context->SetName("another server, whose name is also too long for a buffer of its own");
    page.context->SetMailbox("Bob");
  });
  const std::string cell = page.Data();
  EXPECT_NE(cell.find("name=\"ServerName\" value=\"a server whose name is too long for a buffer of its own\""),
            std::string::npos);
  EXPECT_NE(cell.find("name=\"MailboxName\" value=\"Ken\""), std::string::npos);
}

}  // namespace
}  // namespace kalvo::test
