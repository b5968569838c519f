#include <gtest/gtest.h>

#include "column_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using Fields = std::map<std::string, std::string, std::less<>>;

constexpr char kSorted[] = "&Sort=&Sort=ModifiedDate&SortOrder=&SortOrder=ASC";

TEST(ColumnLink, LeadsWhereItsTypeSays) {
  const std::string sorted = kSorted;
  const struct {
    const char* why;
    KalvoTableHyperlinkType type;
    std::string link;
    const char* read;
  } kCases[] = {
      {"none", HYPERLINK_NONE, "", "Value"},
      {"unknown", static_cast<KalvoTableHyperlinkType>(22), "", "Value"},
      {"below all", static_cast<KalvoTableHyperlinkType>(-1), "", "Value"},
      {"a server group", HYPERLINK_SERVERGROUP, "../Resources/SingleServerGroupReports.asp?GroupName=a+%26+b", "Value"},
      {"a mailbox group", HYPERLINK_MAILBOXGROUP, "../Resources/SingleMailboxGroupReports.asp?GroupName=a+%26+b",
       "Value"},
      {"a server group's settings", HYPERLINK_SERVERGROUPCONFIG,
       "../Configuration/ConfigureServerGroup.asp?GroupName=a+%26+b", "Value"},
      {"a mailbox group's settings", HYPERLINK_MAILBOXGROUPCONFIG,
       "../Configuration/ConfigureMailboxGroup.asp?GroupName=a+%26+b", "Value"},
      {"a server", HYPERLINK_SERVER, "../Resources/SingleServerReports.asp?Server=a+%26+b", "Value Missing"},
      {"a public folder by its rank", HYPERLINK_PUBLICFOLDER,
       "../Resources/PublicFolderSummary.asp?Server=f15&Mailbox=a+%26+b&PublicFolderId=f3" + sorted, "Value 15 3"},
      {"one disabled user", HYPERLINK_DISABLEDSINGLEUSER, "../Tasks/DisabledSingleUser.asp?Name=a+%26+b", "Value"},
      {"a server's capacity", HYPERLINK_CAPACITYPLANNINGSERVER, "../Tasks/CapacityPlanning.asp?Server=a+%26+b",
       "Value"},
      {"a managed server", HYPERLINK_SERVER_MANAGED, "../Resources/SingleServerReports.asp?Server=a+%26+b",
       "Value ServerState Missing"},
      {"an alert's server", HYPERLINK_ALERT_SERVER_MANAGED, "../Resources/SingleServerReports.asp?Server=a+%26+b",
       "Value AlertTypeCode Missing"},
      {"an alert's mailbox", HYPERLINK_ALERT_MAILBOX, "../Resources/MailboxSummary.asp?Server=A2&Mailbox=AR",
       "Value Attrib2 AlertedResource"},
      {"a charged mailbox", HYPERLINK_CHARGEBACK_MAILBOX, "../Resources/MailboxSummary.asp?Server=CN&Mailbox=DN",
       "Value ComputerName MbDistName"},
      {"a folder", HYPERLINK_MAPI_FOLDERNAME,
       "../Resources/MailboxSummary.asp?Server=EXCH01&Mailbox=Ken&ContainerId=x1", "Value ExchangeId"},
      {"a public folder", HYPERLINK_MAPI_PUBLICFOLDERNAME,
       "../Resources/PublicFolderSummary.asp?Server=EXCH01&Mailbox=Ken%5Ca+%26+b&PublicFolderId=x1",
       "Value ExchangeId"},
      {"a message", HYPERLINK_MAPI_MESSAGE,
       "../Resources/MailboxSummary.asp?Server=EXCH01&Mailbox=Ken&Container=c&ContainerId=&MessageId=x1",
       "Value ExchangeId"},
      {"a public folder's message", HYPERLINK_MAPI_PUBLICFOLDERMESSAGE,
       "../Resources/PublicFolderSummary.asp?Server=EXCH01&Mailbox=Ken&PublicFolderId=p%2C+q&MessageId=x1",
       "Value ExchangeId"},
      {"a ranked mailbox", HYPERLINK_TOPN_MAILBOX, "../Resources/MailboxSummary.asp?Server=f15&Mailbox=f16",
       "Value 15 16"},
      {"a ranked server", HYPERLINK_TOPN_SERVER, "../Resources/SingleServerReports.asp?Server=a+%26+b", "Value"},
      {"a ranked message's folder", HYPERLINK_TOPN_MailboxFolder_ModifiedDateSort,
       "../Resources/MailboxSummary.asp?Server=f15&Mailbox=f16&ContainerId=f12" + sorted, "Value 15 16 12"},
      {"a ranked message", HYPERLINK_TOPN_MailboxMessage,
       "../Resources/MailboxSummary.asp?Server=f15&Mailbox=f16&ContainerId=f12&MessageId=f11", "Value 15 16 12 11"},
      {"a ranked public folder message", HYPERLINK_TOPN_PublicFolderMessage,
       "../Resources/PublicFolderSummary.asp?Server=f15&Mailbox=f16&PublicFolderId=f3&MessageId=f11",
       "Value 15 16 3 11"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page("PublicFolderId=p&PublicFolderId=q", "Container=c");
    page.context->SetName("EXCH01");
    page.context->SetMailbox("Ken");
    page.column.hyperLinkType = c.type;
    page.row.fields = {{"Value", "a & b"}, {"15", "f15"},        {"16", "f16"},          {"12", "f12"},
                       {"11", "f11"},      {"3", "f3"},          {"Attrib2", "A2"},      {"AlertedResource", "AR"},
                       {"Attrib5", "A5"},  {"ExchangeId", "x1"}, {"ComputerName", "CN"}, {"MbDistName", "DN"}};
    EXPECT_EQ(page.Link(), c.link);
    EXPECT_EQ(page.Read(), c.read);
  }
}

TEST(ColumnLink, OpensInTheTopFrameAroundWhatTheCellShows) {
  ColumnFixture page;
  page.column.hyperLinkType = HYPERLINK_SERVERGROUP;
  page.column.align = "left";
  page.row.fields = {{"Value", "<A>"}};
  EXPECT_EQ(page.Data(),
            "<td align=\"left\"><a href=\"../Resources/SingleServerGroupReports.asp?GroupName=%3CA%3E\" "
            "target=\"_top\">&lt;A&gt;</a></td>");
}

TEST(ColumnLink, ABlankCellStillHasSomethingToClickOn) {
  for (const char* value : {"", "  ", " \t "}) {
    ColumnFixture page;
    page.column.hyperLinkType = HYPERLINK_SERVERGROUP;
    page.row.fields = {{"Value", value}};
    EXPECT_NE(page.Data().find("target=\"_top\">&nbsp;&nbsp;&nbsp;</a></td>"), std::string::npos);
    page.column.hyperLinkType = HYPERLINK_NONE;
    EXPECT_EQ(page.Data(), "<td>&nbsp;</td>");
  }
}

TEST(ColumnLink, AServerIsLinkedWhenItIsManaged) {
  const struct {
    const char* why;
    const char *value, *state;
    bool linked;
    const char* read;
  } kCases[] = {
      {"managed", "S1", "2", true, "Value ServerState Missing"},
      {"managed, as a double", "S1", "2.0", true, "Value ServerState Missing"},
      {"no state", "S1", "", true, "Value ServerState Missing"},
      {"another state", "S1", "1", false, "Value ServerState"},
      {"a state that is no number", "S1", "two", false, "Value ServerState"},
      {"no server", "", "2", false, "Value"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.hyperLinkType = HYPERLINK_SERVER_MANAGED;
    page.row.fields = {{"Value", c.value}, {"ServerState", c.state}, {"Missing", "1"}};
    EXPECT_EQ(!page.Link().empty(), c.linked);
    EXPECT_EQ(page.Read(), c.read);
    EXPECT_EQ(page.Data().find("bgcolor") != std::string::npos, c.linked) << "no colour without a link";
  }
}

TEST(ColumnLink, AnAlertsServerIsLinkedUnlessItIsNew) {
  const struct {
    const char* why;
    const char *value, *code;
    bool linked;
  } kCases[] = {
      {"any alert", "S1", "5001", true}, {"a new server", "S1", "5018", false},
      {"no code", "S1", "", true},       {"a code that is no number", "S1", "x", true},
      {"no server", "", "5001", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.hyperLinkType = HYPERLINK_ALERT_SERVER_MANAGED;
    page.row.fields = {{"Value", c.value}, {"AlertTypeCode", c.code}};
    EXPECT_EQ(!page.Link().empty(), c.linked);
  }
}

TEST(ColumnLink, AServerThatHasDisappearedIsGrey) {
  const struct {
    const char* why;
    KalvoTableHyperlinkType type;
    const char* missing;
    bool grey;
  } kCases[] = {
      {"a missing server", HYPERLINK_SERVER, "1", true},
      {"a missing managed server", HYPERLINK_SERVER_MANAGED, "1", true},
      {"an alert's missing server", HYPERLINK_ALERT_SERVER_MANAGED, "1", true},
      {"a server that is there", HYPERLINK_SERVER, "0", false},
      {"only the text 1 counts", HYPERLINK_SERVER, "1.0", false},
      {"nor True", HYPERLINK_SERVER, "True", false},
      {"a ranked server is never grey", HYPERLINK_TOPN_SERVER, "1", false},
      {"nor is a server's capacity", HYPERLINK_CAPACITYPLANNINGSERVER, "1", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.hyperLinkType = c.type;
    page.row.fields = {{"Value", "S1"}, {"Missing", c.missing}};
    EXPECT_EQ(page.Data().rfind("<td bgcolor=\"#CCCCCC\">", 0) == 0, c.grey);
  }
}

TEST(ColumnLink, AnAlertedResourceIsLinkedByItsKind) {
  const struct {
    const char* why;
    const char *kind, *code;
    std::string link;
    const char* read;
  } kCases[] = {
      {"a mailbox", "Mailbox", "", "../Resources/MailboxSummary.asp?Server=S1&Mailbox=R",
       "Value Attrib3 Attrib2 AlertedResource"},
      {"a mailbox group", "mailbox GROUP", "", "../Resources/SingleMailboxGroupReports.asp?GroupName=R",
       "Value Attrib3"},
      {"a public folder", "Public Folder", "",
       std::string("../Resources/PublicFolderSummary.asp?Server=S1&Mailbox=R&PublicFolderId=P1") + kSorted,
       "Value Attrib3 Attrib2 Attrib5"},
      {"a server group", "Server Group", "", "../Resources/SingleServerGroupReports.asp?GroupName=R", "Value Attrib3"},
      {"a server with its own alert", "SERVER", "5023", "../Resources/SingleServerReports.asp?Server=R",
       "Value Attrib3 AlertTypeCode Missing"},
      {"a server with another alert keeps the column's link", "Server", "5024",
       "../Tasks/DisabledSingleUser.asp?Name=R", "Value Attrib3 AlertTypeCode"},
      {"anything else does", "Store", "5023", "../Tasks/DisabledSingleUser.asp?Name=R", "Value Attrib3"},
      {"so does a kind with a blank", "Mailbox ", "", "../Tasks/DisabledSingleUser.asp?Name=R", "Value Attrib3"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.formatType = FORMATTYPE_ALERTEDRESOURCE;
    page.column.hyperLinkType = HYPERLINK_DISABLEDSINGLEUSER;
    page.row.fields = {{"Value", "R"},      {"AlertedResource", "R"}, {"Attrib2", "S1"},
                       {"Attrib3", c.kind}, {"Attrib5", "P1"},        {"AlertTypeCode", c.code}};
    EXPECT_EQ(page.Link(), c.link);
    EXPECT_EQ(page.Read(), c.read);
  }
}

TEST(ColumnLink, AnAlertedResourceIsEncoded) {
  ColumnFixture page;
  page.column.formatType = FORMATTYPE_ALERTEDRESOURCE;
  page.row.fields = {{"Value", "<b>"}};
  EXPECT_EQ(page.Data(), "<td>&lt;b&gt;</td>");
}

TEST(ColumnLink, APictureLinksWithoutAValue) {
  ColumnFixture page;
  page.column.formatType = FORMATTYPE_IMAGE;
  page.column.id = COL_MAPI_FOLDERGRAPHIC;
  page.column.hyperLinkType = HYPERLINK_SERVERGROUP;
  page.row.fields = {{"Value", "x"}};
  EXPECT_EQ(page.Link(), "../Resources/SingleServerGroupReports.asp?GroupName=");
  EXPECT_EQ(page.Read(), "");
}

TEST(ColumnLink, AFailingFieldFailsTheCell) {
  ColumnFixture page;
  page.column.hyperLinkType = HYPERLINK_TOPN_MAILBOX;
  page.row.steps.Fail("GetField", 7, "gone", 2);
  EXPECT_EQ(ErrorOf([&] { page.Data(); }).Number(), 7);
}

}  // namespace
}  // namespace kalvo::test
