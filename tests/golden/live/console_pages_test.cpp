// The console's pages of mailboxes and public folders, and the delete that their forms ask for.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "golden/live/sample_site.h"
#include "kalvo/platform/live_mailbox.h"
#include "source_folder.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kConsole = fs::path(KALVO_SOURCE_DIR) / "console";
const std::string kMailbox = "Resources/MailboxSummary.asp", kPublic = "Resources/PublicFolderSummary.asp",
                  kProcess = "Configuration/Process.asp";
const std::string kAlice = "Server=SEA-EX01&Mailbox=alice%40kalvo.example";
const std::vector<std::string> kUser = {"KalvoDrillDownAuth"};
const std::vector<std::string> kAdministrator = {"KalvoAdministrator", "KalvoDrillDownAuth"};

class ConsoleMail : public testing::Test {
 protected:
  std::string Page(const std::string& page, const std::string& query, const std::string& logon,
                   const std::vector<std::string>& rights = {}) {
    return site_->Run(kConsole, page, query, logon, rights).body;
  }

  // The answer to the delete form of a message and to the question that follows; the question's page where it does
  // not ask.
  SampleSite::Answer Delete(const std::string& mailbox, const std::string& message, const std::string& flags,
                            const std::string& logon, const std::vector<std::string>& rights,
                            const std::string& next = "../Resources/MailboxSummary.asp?Server=SEA%2DEX01") {
    const std::string query = "ProcessType=DeleteMessage&ServerName=SEA-EX01&MailboxName=" + Encoded(mailbox) +
                              "&FolderId=&MessageId=" + message + "&Flags=" + flags + "&Continue=" + Encoded(next) +
                              "&Delete=Delete";
    const SampleSite::Answer question = site_->Run(kConsole, kProcess, query, logon, rights);
    const std::string field = "name=\"Token\" value=\"";
    const std::size_t token = question.body.find(field);
    if (token == std::string::npos) return question;
    const std::size_t start = token + field.size(), end = question.body.find('"', start);
    return site_->Run(kConsole, kProcess, query, logon, rights, "Token=" + question.body.substr(start, end - start));
  }

  static std::string LocationOf(const SampleSite::Answer& answer) {
    for (const auto& [name, text] : answer.head.headers) {
      if (name == "Location") return text;
    }
    return "";
  }

  std::string Message(const std::string& mailbox, const std::string& folder, std::int32_t flags) {
    const auto live = site_->Live();
    live->GotoContainer("SEA-EX01", mailbox, folder, 0, flags);
    return FirstBy(*live, "Size");
  }

  std::map<std::string, std::string> Messages() const {
    std::map<std::string, std::string> messages;
    for (const auto& entry : fs::recursive_directory_iterator(site_->Mail())) {
      const auto parent = entry.path().parent_path().filename();
      if (entry.is_regular_file() && (parent == "cur" || parent == "new")) {
        messages[entry.path().string()] = ReadFile(entry.path());
      }
    }
    return messages;
  }

  // One for all: each test counts from what it finds.
  static void SetUpTestSuite() { site_ = new SampleSite; }
  static void TearDownTestSuite() { delete site_; }

  static inline SampleSite* site_ = nullptr;
};

bool Has(const std::string& html, const std::string& text) { return html.find(text) != std::string::npos; }

std::ptrdiff_t Count(const std::string& html, const std::string& text) {
  std::ptrdiff_t count = 0;
  for (std::size_t at = html.find(text); at != std::string::npos; at = html.find(text, at + 1)) ++count;
  return count;
}

TEST_F(ConsoleMail, AUserPagesThroughTheOwnInbox) {
  const std::string html = Page(kMailbox, kAlice + "&Container=Inbox&PageSize=&PageSize=50", "kalvo\\ALICE");
  EXPECT_EQ(Count(html, "ConfirmDeleteMessage()"), 50);
  EXPECT_TRUE(Has(html, "../Scripts/confirm.js"));
  EXPECT_FALSE(Has(html, "Error Generating Table")) << html;
  const std::string rest =
      Page(kMailbox, kAlice + "&Container=Inbox&First=1&PageSize=50&First=51&PageSize=50", "KALVO\\alice");
  EXPECT_EQ(Count(rest, "ConfirmDeleteMessage()"), 25);
}

TEST_F(ConsoleMail, TheFirstSortIsTheFoldersTheSecondTheMessages) {
  const std::string html =
      Page(kMailbox, kAlice + "&Sort=Name&SortOrder=DESC&Sort=Size&SortOrder=ASC&Debug=Table", "KALVO\\alice");
  const std::size_t folders = html.find("Sort Information: \"Name\" \"DESC\""),
                    messages = html.find("Sort Information: \"Size\" \"ASC\"");
  ASSERT_NE(folders, std::string::npos);
  ASSERT_NE(messages, std::string::npos);
  EXPECT_LT(folders, messages);
}

TEST_F(ConsoleMail, AMessageShowsItsDetailsAndAttachmentsAlone) {
  const std::string id = Message("alice@kalvo.example", "Inbox", live::kByPath);
  const std::string html = Page(kMailbox, kAlice + "&Container=Inbox&MessageId=" + id, "KALVO\\alice", kUser);
  EXPECT_TRUE(Has(html, "<th align=\"left\">Subject</th>"));
  EXPECT_TRUE(Has(html, "File Name"));
  EXPECT_FALSE(Has(html, "Folder Name"));
  EXPECT_EQ(Count(html, "ConfirmDeleteMessage()"), 1);
}

TEST_F(ConsoleMail, AnothersMailboxIsRefusedAndAnAdministratorGetsIn) {
  EXPECT_TRUE(Has(Page(kMailbox, kAlice, "KALVO\\bob"), "You do not have adequate permission"));
  EXPECT_FALSE(Has(Page(kMailbox, kAlice, "KALVO\\bob"), "Sent Items"));
  EXPECT_TRUE(Has(Page(kMailbox, kAlice, "KALVO\\admin", kAdministrator), "Sent Items"));
}

TEST_F(ConsoleMail, PublicFoldersAreForAdministratorsOnly) {
  EXPECT_TRUE(Has(Page(kPublic, "Server=SEA-EX01&Mailbox=", "KALVO\\admin", kAdministrator), ">Sales</a>"));
  EXPECT_FALSE(Has(Page(kPublic, "Server=SEA-EX01&Mailbox=", "KALVO\\alice", kUser), "Sales"));
}

TEST_F(ConsoleMail, ADeleteTakesOneMessageAndGoesBack) {
  const std::string id = Message("alice@kalvo.example", "Inbox", live::kByPath);
  const auto before = Messages();
  const auto answer = Delete("alice@kalvo.example", id, "0", "KALVO\\alice", {});
  EXPECT_EQ(answer.head.status, 302);
  EXPECT_EQ(LocationOf(answer), "../Resources/MailboxSummary.asp?Server=SEA%2DEX01");
  const auto after = Messages();
  EXPECT_EQ(after.size() + 1, before.size());
  EXPECT_TRUE(std::includes(before.begin(), before.end(), after.begin(), after.end()));

  const auto again = Delete("alice@kalvo.example", id, "0", "KALVO\\alice", {});
  EXPECT_TRUE(Has(again.body, "Delete Message: The message does not exist any more.")) << again.body;
  EXPECT_EQ(Messages(), after);
}

TEST_F(ConsoleMail, ADeleteThatIsNotAllowedChangesNothing) {
  const std::string own = Message("alice@kalvo.example", "Inbox", live::kByPath);
  const std::string shared = Message("Kalvo SEA-EX01", "Sales\\Orders", live::kByPath | live::kPublicFolders);
  const auto before = Messages();
  EXPECT_TRUE(Has(Delete("alice@kalvo.example", own, "0", "KALVO\\bob", {}).body, "Delete message not allowed"));
  EXPECT_TRUE(
      Has(Delete("alice@kalvo.example", shared, "4", "KALVO\\alice", kUser).body, "Delete message not allowed"));
  EXPECT_TRUE(Has(Delete("alice@kalvo.example", shared, "0", "KALVO\\alice", kUser).body, "Delete Message: "));
  EXPECT_TRUE(Has(Delete("alice@kalvo.example", "madeup", "0", "KALVO\\alice", kUser).body, "Delete Message: "));
  EXPECT_EQ(Messages(), before);
  EXPECT_EQ(Delete("Sales\\Orders", shared, "4", "KALVO\\admin", kAdministrator).head.status, 302);
  EXPECT_EQ(Messages().size() + 1, before.size());
}

TEST_F(ConsoleMail, TheWayBackLeadsToPagesOfThisConsoleOnly) {
  for (const char* next :
       {"https://evil.example/", "//evil.example/x.asp", "../../x.asp", "/x.asp", "javascript:alert(1)",
        "../Resources/MailboxSummary.asp?a b", "../Resources/x.asp#y", "..\\Resources\\x.asp", ""}) {
    SCOPED_TRACE(next);
    const std::string id = Message("alice@kalvo.example", "Archive", live::kByPath);
    EXPECT_EQ(LocationOf(Delete("alice@kalvo.example", id, "0", "KALVO\\alice", {}, next)), "../Default.asp");
  }
}

}  // namespace
}  // namespace kalvo::test
