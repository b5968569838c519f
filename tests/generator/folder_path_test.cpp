#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/table_generator.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;
using Steps = std::vector<std::string>;

std::string Report(const std::string& text, const std::string& number = "80004005",
                   const std::string& description = "Refused.") {
  return "<p>Error Generating Table: &nbsp;" + text + "<br>Error number: 0x" + number +
         "; &nbsp; Description: " + description + "</p>\r\n";
}

// The path of a live listing on a page; the user may drill down, and names mean the address "ken@x".
struct PathFixture : PageFixture {
  explicit PathFixture(std::string_view query = "") : PageFixture(query) {
    generator->OnStartPage(*page);
    MayDrillDown();
    live->candidates->items = {{{"Address", "ken@x"s}}};
  }

  bool Show(KalvoTableConstants table = TABLE_MAPI_FOLDERS, std::string_view container = "",
            std::string_view folderId = "") {
    return generator->DisplayFolderPath("EXCH01", mailbox, container, folderId, table);
  }

  std::shared_ptr<KalvoforExchangeTableGenerator> generator =
      std::make_shared<KalvoforExchangeTableGenerator>(platform);
  std::string mailbox = "Ken";
};

constexpr char kMailboxCell[] =
    "<td>Mailbox:</td><td><a target=\"_top\" href=\"MailboxSummary.asp?Server=EXCH01&Mailbox=ken%40x\">ken@x</a></td>";

TEST(FolderPath, AMailboxIsALink) {
  PathFixture page;
  EXPECT_TRUE(page.Show());
  EXPECT_EQ(page.Text(), "<table border=\"0\"><tr>"s + kMailboxCell + "</tr></table>");
  EXPECT_EQ(page.mailbox, "ken@x") << "the caller goes on with the address";
}

TEST(FolderPath, WithoutAMailboxThereIsNone) {
  PathFixture page;
  page.mailbox = "";
  EXPECT_TRUE(page.Show(TABLE_MAPI_FOLDERS, "Inbox", "f1"));
  EXPECT_EQ(page.Text(), "");
  EXPECT_TRUE(page.live->steps.done.empty());
}

TEST(FolderPath, AMissingBrowsingObjectIsReported) {
  PathFixture page;
  page.page->session->objects.clear();
  EXPECT_FALSE(page.Show());
  EXPECT_EQ(page.Text(), Report("Get the live container object.", "1A8", "Object required"));
}

TEST(FolderPath, EachFolderOfAPathIsALink) {
  const struct {
    const char* why;
    const char* container;
    std::vector<std::pair<const char*, const char*>> links;  // the encoded path and what is shown
  } kCases[] = {
      {"one folder", "Inbox", {{"Inbox", "Inbox"}}},
      {"a folder below it", "Inbox\\Projects", {{"Inbox", "Inbox"}, {"Inbox%5CProjects", "Projects"}}},
      {"a leading backslash is no folder", "\\Inbox\\Projects", {{"Inbox", "Inbox"}, {"Inbox%5CProjects", "Projects"}}},
      {"nor is a doubled or a trailing one", "Inbox\\\\P&L\\", {{"Inbox", "Inbox"}, {"Inbox%5CP%26L", "P&amp;L"}}},
      {"backslashes alone", "\\\\", {}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    PathFixture page;
    std::string links;
    for (const auto& [path, shown] : c.links) {
      links += "<td>\\</td><td><a target=\"_top\" href=\"MailboxSummary.asp?Server=EXCH01&Mailbox=ken%40x&Container="s +
               path + "\">" + shown + "</a></td>";
    }
    EXPECT_TRUE(page.Show(TABLE_MAPI_FOLDERS, c.container, "f1"));
    EXPECT_EQ(page.Text(), "<table border=\"0\"><tr>"s + kMailboxCell + "<td>Path:</td>" + links + "</tr></table>");
    EXPECT_EQ(page.live->steps.Count("GotoContainer"), 0u) << "a path needs no look";
  }
}

TEST(FolderPath, AFolderByItsIdentifierIsShownByItsPath) {
  PathFixture page;
  page.live->containerName = "\\In<box";
  EXPECT_TRUE(page.Show(TABLE_MAPI_FOLDERS, "", "f1"));
  EXPECT_EQ(page.Text(),
            "<table border=\"0\"><tr>"s + kMailboxCell + "<td>Folder:</td><td>\\In&lt;box</td></tr></table>");
  const auto& done = page.live->steps.SeenByThePage();
  EXPECT_EQ(Steps(done.end() - 3, done.end()), (Steps{"GotoContainer(EXCH01, ken@x, , 0, 1)",
                                                      "GotoContainerById(EXCH01, f1, 1)", "CurrentContainerName()"}));
}

TEST(FolderPath, AFolderThatCannotBeOpenedLeavesThePathOpen) {
  const struct {
    const char *step, *text;
  } kCases[] = {{"GotoContainer", "GotoContainer: Mailbox folder by identifier."},
                {"GotoContainerById", "Open mailbox folder by identifier."}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.step);
    PathFixture page;
    page.live->steps.Fail(c.step);
    EXPECT_FALSE(page.Show(TABLE_MAPI_FOLDERS, "", "f1"));
    EXPECT_EQ(page.Text(), "<table border=\"0\"><tr>"s + kMailboxCell + Report(c.text));
  }
}

TEST(FolderPath, OnlyTheFolderListingOfAMailboxResolvesItsName) {
  for (const auto table : {TABLE_MAPI_MESSAGES, TABLE_MAPI_ATTACHMENTS, TABLE_CURRENTALERTS}) {
    PathFixture page;
    page.page->session->values.clear();
    EXPECT_TRUE(page.Show(table));
    EXPECT_EQ(page.mailbox, "Ken");
    EXPECT_TRUE(page.live->steps.done.empty());
  }
}

// ---- who the mailbox is ---------------------------------------------------------------------------------

TEST(FolderPath, ANameIsResolvedAnewOnTheFirstVisit) {
  PathFixture first;
  first.Show();
  EXPECT_EQ(first.live->steps.SeenByThePage(), (Steps{"ResetNameResolution()", "ResolveNameToAddress(EXCH01, Ken)",
                                                      "MailboxHomeServer(EXCH01, Ken)", "Field(Address)"}));
  PathFixture later("PageSize=0");
  later.Show();
  EXPECT_EQ(later.live->steps.Count("ResetNameResolution"), 0u);
}

TEST(FolderPath, ANameIsHandedOnAsItWasTyped) {
  PathFixture page;
  page.mailbox = "=Ken";
  page.Show();
  EXPECT_EQ(page.live->steps.SeenByThePage()[1], "ResolveNameToAddress(EXCH01, =Ken)");
}

TEST(FolderPath, WithoutPermissionNothingIsResolved) {
  PathFixture page;
  page.page->session->values.clear();
  page.Administrator();
  page.live->owner = "DOMAIN\\bob";
  EXPECT_FALSE(page.Show());
  EXPECT_EQ(page.Text(),
            "<p><STRONG>You do not have adequate permission to view this mailbox's information. See the Kalvo Exchange "
            "Edition Web Security Help topic for information about mailbox access.</STRONG>");
  EXPECT_EQ(page.live->steps.SeenByThePage(), Steps{"MailboxOwner(EXCH01, Ken)"});
}

TEST(FolderPath, AMailboxElsewhereDoesNotExist) {
  PathFixture page;
  page.live->homeServer = "EXCH02";
  EXPECT_FALSE(page.Show());
  EXPECT_EQ(page.Text(), "<p>Specified mailbox does not exist");
  EXPECT_EQ(page.mailbox, "Ken");
  page.Taken();
  page.live->homeServer = "exch01";
  EXPECT_TRUE(page.Show()) << "servers are compared without regard to case";
}

TEST(FolderPath, ANameThatIsNotResolvedIsExplained) {
  const struct {
    const char* why;
    std::int32_t code;
    std::string text;
  } kCases[] = {
      {"no such mailbox", codes::kNoSuchMailbox, "<p>Specified mailbox does not exist"},
      {"an old server", codes::kOldAgent,
       "<p>You have attempted to scan a server with an earlier version of Kalvo Exchange Edition. In order to "
       "successfully scan this agent, you must upgrade it to the current version."},
      {"anything else", codes::kFailed, Report("ResolveNameToAddress")},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    PathFixture page;
    page.live->steps.Fail("ResolveNameToAddress", c.code);
    EXPECT_FALSE(page.Show());
    EXPECT_EQ(page.Text(), c.text);
    EXPECT_EQ(page.mailbox, "Ken");
  }
}

TEST(FolderPath, AnAmbiguousNameIsExplainedWithTheMailboxesItMayMean) {
  PathFixture page;
  page.live->steps.Fail("ResolveNameToAddress", codes::kAmbiguousName);
  EXPECT_FALSE(page.Show());
  EXPECT_EQ(
      page.Text(),
      "<p>Mailbox name is ambiguous. <br><br> Enter an = sign in front of the mailbox name you want to drill down "
      "into to help resolve the ambiguity.  For example, =Ken will drill down into the Ken mailbox specifically, "
      "if your Exchange Server also has KenH and KenL mailboxes.</p>\r\n"
      "<p>The following mailboxes were found during the last scan of this server.</p>\r\n"
      "\r\n<a name=\"1chart\"></a>\r\n<p><em>There are no items in this report.</em></p>\r\n");
  EXPECT_NE(page.database.sql.find("s.ComputerName = 'EXCH01' and m.MbName like 'Ken%'"), std::string::npos);
}

TEST(FolderPath, AnEarlierErrorIsNotTheResolutionsOwn) {
  PathFixture page;
  page.live->steps.Fail("ResetNameResolution");
  EXPECT_TRUE(page.Show());
  EXPECT_EQ(page.mailbox, "ken@x");
}

TEST(FolderPath, AnAddressThatCannotBeReadIsReported) {
  PathFixture page;
  page.live->steps.Fail("Field");
  EXPECT_FALSE(page.Show());
  EXPECT_EQ(page.Text(), Report("pLiveContainer.Mailbox"));
}

// ---- public folders -------------------------------------------------------------------------------------

TEST(FolderPath, APublicFolderIsShownByItsPath) {
  PathFixture page("PublicFolderId=p1&Server=EXCH02");
  page.live->containerName = "\\A&B";
  EXPECT_TRUE(page.Show(TABLE_MAPI_PUBLICFOLDER_FOLDERS));
  EXPECT_EQ(page.Text(), "<table border=\"0\"><tr><td>Folder:</td><td>\\A&amp;B</td></tr></table>");
  EXPECT_EQ(page.live->steps.SeenByThePage(), (Steps{"GotoContainer(EXCH02, Kalvo EXCH02, , 0, 4)",
                                                     "GotoContainerById(EXCH02, p1, 4)", "CurrentContainerName()"}));
}

TEST(FolderPath, WithoutAPublicFolderThereIsNoCell) {
  PathFixture page;
  EXPECT_TRUE(page.Show(TABLE_MAPI_PUBLICFOLDER_FOLDERS));
  EXPECT_EQ(page.Text(), "<table border=\"0\"><tr></tr></table>");
}

TEST(FolderPath, AFailedPublicFolderLeavesThePathOpen) {
  PathFixture page("PublicFolderId=p1&Server=EXCH02");
  page.live->steps.Fail("GotoContainerById");
  EXPECT_FALSE(page.Show(TABLE_MAPI_PUBLICFOLDER_FOLDERS));
  EXPECT_EQ(page.Text(), "<table border=\"0\"><tr>" + Report("Open Public folder by identifier."));
}

TEST(FolderPath, APublicFoldersPathIsToldFromNoneAndFromAFailure) {
  const struct {
    const char* why;
    const char *query, *failing, *answer;
    std::string text;
  } kCases[] = {
      {"none", "", "", "", ""},
      {"an empty identifier", "PublicFolderId=", "", "", ""},
      {"a path", "PublicFolderId=p1", "", "\\Inbox", ""},
      {"no mailbox of the product", "PublicFolderId=p1", "GotoContainer", "-1",
       Report("GotoContainer: Public folder by identifier.")},
      {"no such folder", "PublicFolderId=p1", "GotoContainerById", "-1", Report("Open Public folder by identifier.")},
      {"no path", "PublicFolderId=p1", "CurrentContainerName", "", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    PathFixture page(c.query);
    page.live->steps.Fail(c.failing);
    EXPECT_EQ(page.generator->PublicFolderDisplayPath(), c.answer);
    EXPECT_EQ(page.Text(), c.text);
  }
  PathFixture page("PublicFolderId=p1");
  page.page->session->objects.clear();
  EXPECT_EQ(page.generator->PublicFolderDisplayPath(), "-1");
}

TEST(FolderPath, OfAPublicFolderTheIdentifierComesBeforeTheContainer) {
  const struct {
    const char* why;
    const char *container, *folderId, *shown;
  } kCases[] = {
      {"neither", "", "", ""},
      {"an identifier", "", "f1", "<td>Folder:</td><td>\\Inbox</td>"},
      {"both", "A", "f1", "<td>Folder:</td><td>\\Inbox</td>"},
      {"a container", "A", "",
       "<td>Path:</td><td>\\</td><td><a target=\"_top\" "
       "href=\"MailboxSummary.asp?Server=EXCH01&Mailbox=Ken&Container=A\">"
       "A</a></td>"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    PathFixture page;
    EXPECT_TRUE(page.Show(TABLE_MAPI_PUBLICFOLDER_FOLDERS, c.container, c.folderId));
    EXPECT_EQ(page.Text(), std::string("<table border=\"0\"><tr>") + c.shown + "</tr></table>");
  }
}

}  // namespace
}  // namespace kalvo::test
