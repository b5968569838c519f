#include "kalvo/mapi_data_src.h"

#include <gtest/gtest.h>

#include "datasrc/mapi_fixture.h"

namespace kalvo::test {
namespace {

// ---- what is opened -------------------------------------------------------------------------------------

TEST(MapiDataSrc, OpensAndListsWhatItsTableShows) {
  const struct {
    const char* why;
    KalvoTableConstants table;
    const char* query;
    std::int32_t count;
    Texts steps;
  } kCases[] = {
      {"messages of a folder by its path",
       TABLE_MAPI_MESSAGES,
       "",
       2,
       {"MailboxOwner(EXCH01, Ken)", "GotoContainer(EXCH01, Ken, \\Inbox, 0, 1)", "Messages()", "MessageCount()"}},
      {"folders of a folder by its path",
       TABLE_MAPI_FOLDERS,
       "",
       1,
       {"MailboxOwner(EXCH01, Ken)", "GotoContainer(EXCH01, Ken, \\Inbox, 0, 1)", "Folders()", "FolderCount()"}},
      {"messages of a folder by its identifier",
       TABLE_MAPI_MESSAGES,
       "ContainerId=c1",
       2,
       {"MailboxOwner(EXCH01, Ken)", "GotoContainer(EXCH01, Ken, , 0, 1)", "GotoContainerById(EXCH01, c1, 1)",
        "Messages()", "MessageCount()"}},
      {"an empty identifier is none",
       TABLE_MAPI_MESSAGES,
       "ContainerId=",
       2,
       {"MailboxOwner(EXCH01, Ken)", "GotoContainer(EXCH01, Ken, \\Inbox, 0, 1)", "Messages()", "MessageCount()"}},
      {"messages of a public folder by its path",
       TABLE_MAPI_PUBLICFOLDER_MESSAGES,
       "ContainerId=c1",
       2,
       {"GotoContainer(EXCH01, Kalvo EXCH01, Ken, 0, 5)", "Messages()", "MessageCount()"}},
      {"folders of a public folder by its identifier",
       TABLE_MAPI_PUBLICFOLDER_FOLDERS,
       "PublicFolderId=p1",
       1,
       {"GotoContainer(EXCH01, Kalvo EXCH01, , 0, 4)", "GotoContainerById(EXCH01, p1, 4)", "Folders()",
        "FolderCount()"}},
      {"attachments of a message",
       TABLE_MAPI_ATTACHMENTS,
       "MessageId=m1",
       3,
       {"GotoMsgAttachment(EXCH01, Ken, m1, 0)", "Attachments()", "Count()"}},
      {"attachments of a public folder's message",
       TABLE_MAPI_PUBLICFOLDER_ATTACHMENTS,
       "MessageId=m1",
       3,
       {"GotoMsgAttachment(EXCH01, Ken, m1, 4)", "Attachments()", "Count()"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page(c.table, c.query);
    page.Administrator();
    page.MayDrillDown();
    EXPECT_EQ(page.source->OpenDS(), 0);
    EXPECT_EQ(page.live->steps.SeenByThePage(), c.steps);
    EXPECT_EQ(page.source->RecordCount(), c.count);
    EXPECT_EQ(page.Text(), "");
  }
}

TEST(MapiDataSrc, AnEmptyMessageIdIsOneAllTheSame) {
  SourceFixture page(TABLE_MAPI_ATTACHMENTS, "MessageId=");
  page.MayDrillDown();
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.live->steps.SeenByThePage()[0], "GotoMsgAttachment(EXCH01, Ken, , 0)");
}

TEST(MapiDataSrc, ATableOfTheOtherKindGoesOnAsTheMailboxesOwn) {
  SourceFixture messages(TABLE_MAPI_MESSAGES, "MessageId=m1");
  messages.MayDrillDown();
  EXPECT_EQ(messages.source->OpenDS(), 0);
  EXPECT_EQ(messages.Text(), Message("Invalid table identifier for MAPI table."));
  EXPECT_EQ(messages.live->steps.SeenByThePage()[1], "Attachments()");

  SourceFixture publicFolders(TABLE_MAPI_PUBLICFOLDER_MESSAGES, "MessageId=m1");
  publicFolders.MayDrillDown();
  EXPECT_EQ(publicFolders.source->OpenDS(), 0);
  EXPECT_EQ(publicFolders.live->steps.SeenByThePage()[0], "GotoMsgAttachment(EXCH01, Ken, m1, 0)")
      << "a mailbox message";

  SourceFixture attachments(TABLE_MAPI_ATTACHMENTS);
  EXPECT_EQ(attachments.source->OpenDS(), 0);
  EXPECT_EQ(attachments.Text(), Message("Invalid table identifier for MAPI table."));
  EXPECT_EQ(attachments.live->steps.SeenByThePage()[2], "Messages()");
}

TEST(MapiDataSrc, WithoutAServerOrAMailboxItFailsWithoutAWord) {
  const struct {
    const char* why;
    KalvoTableConstants table;
    const char *server, *mailbox;
    std::int16_t status;
  } kCases[] = {
      {"no server", TABLE_MAPI_MESSAGES, "", "Ken", -1},
      {"no mailbox", TABLE_MAPI_FOLDERS, "EXCH01", "", -1},
      {"no server of public folders", TABLE_MAPI_PUBLICFOLDER_FOLDERS, "", "Path", -1},
      {"public folders need no mailbox", TABLE_MAPI_PUBLICFOLDER_FOLDERS, "EXCH01", "", 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page(c.table);
    page.Administrator();
    page.context->SetName(c.server);
    page.context->SetMailbox(c.mailbox);
    EXPECT_EQ(page.source->OpenDS(), c.status);
    EXPECT_EQ(page.Text(), "");
  }
}

// ---- who may --------------------------------------------------------------------------------------------

TEST(MapiDataSrc, AMailboxIsItsOwnersAndTheAdministrators) {
  const struct {
    const char* why;
    KalvoTableConstants table;
    const char* user;
    bool administrator;
    bool opened;
  } kCases[] = {
      {"the owner", TABLE_MAPI_MESSAGES, "domain\\KEN", false, true},
      {"another user", TABLE_MAPI_MESSAGES, "DOMAIN\\bob", false, false},
      {"an administrator", TABLE_MAPI_MESSAGES, "DOMAIN\\bob", true, true},
      {"public folders are not the owner's", TABLE_MAPI_PUBLICFOLDER_MESSAGES, "DOMAIN\\ken", false, false},
      {"but the administrators'", TABLE_MAPI_PUBLICFOLDER_MESSAGES, "DOMAIN\\bob", true, true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page(c.table);
    page.page->request->variables["LOGON_USER"] = c.user;
    if (c.administrator) page.Administrator();
    EXPECT_EQ(page.source->OpenDS(), c.opened ? 0 : -1);
    EXPECT_EQ(page.Text(), c.opened ? "" : Message(kRefusedFolder));
  }
}

TEST(MapiDataSrc, TheRightToDrillDownOpensNoFolder) {
  SourceFixture page(TABLE_MAPI_FOLDERS);
  page.page->request->variables["LOGON_USER"] = "DOMAIN\\bob";
  page.MayDrillDown();
  EXPECT_EQ(page.source->OpenDS(), -1);
}

TEST(MapiDataSrc, AMessageNeedsTheRightToDrillDown) {
  SourceFixture other(TABLE_MAPI_ATTACHMENTS, "MessageId=m1");
  other.page->request->variables["LOGON_USER"] = "DOMAIN\\bob";
  other.Administrator();
  EXPECT_EQ(other.source->OpenDS(), -1);
  EXPECT_EQ(other.Text(), Message("Mailbox does not exist, or you are not the owner."));

  SourceFixture owner(TABLE_MAPI_ATTACHMENTS, "MessageId=m1");
  EXPECT_EQ(owner.source->OpenDS(), -1) << "the owner may list, but not open a message";
  EXPECT_EQ(owner.Text(), Report("Drill down not allowed.", "0", ""));
}

TEST(MapiDataSrc, ARefusalIsTraced) {
  SourceFixture mailbox(TABLE_MAPI_FOLDERS, "Debug=Table");
  mailbox.page->request->variables["LOGON_USER"] = "DOMAIN\\Bob";
  mailbox.source->OpenDS();
  EXPECT_EQ(mailbox.Text(), "<p>User: DOMAIN\\Bob<br>Owner: DOMAIN\\ken<br>KalvoAdministrator: False</p>\r\n" +
                                Report(kRefusedFolder, "0", ""));
  SourceFixture publicFolders(TABLE_MAPI_PUBLICFOLDER_FOLDERS, "Debug=Table");
  publicFolders.source->OpenDS();
  EXPECT_EQ(publicFolders.Text(), "<p>KalvoAdministrator: False</p>\r\n" + Report(kRefusedFolder, "0", ""));
}

TEST(MapiDataSrc, AnUnknownOwnerDoesNotSpoilTheAdministratorsOpen) {
  SourceFixture page(TABLE_MAPI_MESSAGES, "ContainerId=c1");
  page.Administrator();
  page.live->steps.Fail("MailboxOwner");
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.Text(), "");
}

// ---- failing steps --------------------------------------------------------------------------------------

TEST(MapiDataSrc, AFailingStepIsReported) {
  const struct {
    const char* why;
    KalvoTableConstants table;
    const char *query, *step, *text;
  } kCases[] = {
      {"a folder by path", TABLE_MAPI_MESSAGES, "", "GotoContainer", "GotoContainer: Open mailbox container."},
      {"the mailbox of a folder by identifier", TABLE_MAPI_MESSAGES, "ContainerId=c", "GotoContainer",
       "GotoContainer: Open mailbox folder by identifier."},
      {"a folder by identifier", TABLE_MAPI_MESSAGES, "ContainerId=c", "GotoContainerById",
       "Open mailbox folder by identifier."},
      {"a public folder by path", TABLE_MAPI_PUBLICFOLDER_FOLDERS, "", "GotoContainer",
       "GotoContainer: Loading public folder."},
      {"the product's mailbox", TABLE_MAPI_PUBLICFOLDER_FOLDERS, "PublicFolderId=p", "GotoContainer",
       "GotoContainer: Open well-known mailbox."},
      {"a public folder by identifier", TABLE_MAPI_PUBLICFOLDER_FOLDERS, "PublicFolderId=p", "GotoContainerById",
       "Open public folder by identifier."},
      {"messages", TABLE_MAPI_MESSAGES, "", "Messages", "Getting messages or folders."},
      {"their count", TABLE_MAPI_MESSAGES, "", "MessageCount", "Getting messages or folders."},
      {"folders", TABLE_MAPI_FOLDERS, "", "Folders", "Getting messages or folders."},
      {"their count", TABLE_MAPI_FOLDERS, "", "FolderCount", "Getting messages or folders."},
      {"a message", TABLE_MAPI_ATTACHMENTS, "MessageId=m", "GotoMsgAttachment", "GotoMsgAttachment: Open message."},
      {"clearing the sort", TABLE_MAPI_MESSAGES, "Sort=Name", "ClearSortFields", "Clear sort fields."},
      {"adding to the sort", TABLE_MAPI_MESSAGES, "Sort=Name", "AddSortField", "Add sort field."},
      {"sorting", TABLE_MAPI_MESSAGES, "Sort=Name", "Sort", "Sort results."},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page(c.table, c.query);
    page.Administrator();
    page.MayDrillDown();
    page.live->steps.Fail(c.step);
    EXPECT_EQ(page.source->OpenDS(), -1);
    EXPECT_EQ(page.Text(), Report(c.text));
  }
}

TEST(MapiDataSrc, OnlyAPublicFolderByPathIsSoftlyMissed) {
  const struct {
    KalvoTableConstants table;
    const char* query;
    bool soft;
  } kCases[] = {
      {TABLE_MAPI_PUBLICFOLDER_FOLDERS, "", true},
      {TABLE_MAPI_PUBLICFOLDER_FOLDERS, "PublicFolderId=p", false},
      {TABLE_MAPI_FOLDERS, "", false},
  };
  for (const auto& c : kCases) {
    SourceFixture page(c.table, c.query);
    page.Administrator();
    page.live->steps.Fail("GotoContainer", codes::kNoSuchFolder);
    EXPECT_EQ(page.source->OpenDS(), -1);
    EXPECT_EQ(page.Text() == Message("No such Folder"), c.soft);
  }
}

TEST(MapiDataSrc, AMissingBrowsingObjectIsReported) {
  for (const char* query : {"", "MessageId=m"}) {
    SourceFixture page(*query ? TABLE_MAPI_ATTACHMENTS : TABLE_MAPI_MESSAGES, query);
    page.page->session->objects.clear();
    EXPECT_EQ(page.source->OpenDS(), -1);
    EXPECT_EQ(page.Text(), Report("Get the live container object.", "1A8", "Object required"));
  }
}

// ---- what is asked for once -----------------------------------------------------------------------------

TEST(MapiDataSrc, TheScopeIsTakenBeforeAnybodyIsAsked) {
  const struct {
    const char* why;
    KalvoTableConstants table;
    const char* query;
    const char* step;  // that changes the page's scope
    Texts positions;
  } kCases[] = {
      {"a mailbox folder by its path",
       TABLE_MAPI_FOLDERS,
       "",
       "MailboxOwner",
       {"GotoContainer(EXCH01, Ken, \\Inbox, 0, 1)"}},
      {"a mailbox folder by its id",
       TABLE_MAPI_MESSAGES,
       "ContainerId=C",
       "GotoContainer",
       {"GotoContainer(EXCH01, Ken, , 0, 1)", "GotoContainerById(EXCH01, C, 1)"}},
      {"a public folder by its id",
       TABLE_MAPI_PUBLICFOLDER_FOLDERS,
       "PublicFolderId=P",
       "GotoContainer",
       {"GotoContainer(EXCH01, Kalvo EXCH01, , 0, 4)", "GotoContainerById(EXCH01, P, 4)"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page(c.table, c.query);
    page.Administrator();
    page.live->steps.When(c.step, [&] {
      page.context->SetName("OTHER");
      page.context->SetMailbox("Bob");
      page.context->SetContainer("Out");
    });
    EXPECT_EQ(page.source->OpenDS(), 0);
    Texts positions;
    for (const std::string& step : page.live->steps.SeenByThePage()) {
      if (step.starts_with("Goto")) positions.push_back(step);
    }
    EXPECT_EQ(positions, c.positions);
  }
}

}  // namespace
}  // namespace kalvo::test
