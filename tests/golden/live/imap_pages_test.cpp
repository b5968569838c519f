// The live tables through the program, with the sample's mail on an IMAP server.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "golden/live/sample_mail_server.h"
#include "source_folder.h"
#include "support/golden.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kPages = fs::path(KALVO_SOURCE_DIR) / "tests/golden/live";
const fs::path kConsole = fs::path(KALVO_SOURCE_DIR) / "console";
const std::string kAlice = "Server=SEA-EX01&Mailbox=alice%40kalvo.example";
const std::string kUser = "KalvoDrillDownAuth", kAdministrator = "KalvoAdministrator";

class ImapPages : public testing::Test {
 protected:
  static void SetUpTestSuite() { server_ = new SampleMailServer; }
  static void TearDownTestSuite() { delete server_; }

  static std::string Page(const std::string& page, const std::string& query, const std::string& logon = "KALVO\\alice",
                          const std::string& right = "") {
    return RunProgram(
        {page.ends_with("Process.asp") ? kConsole : kPages, page, server_->Address(), query, logon, right});
  }

  static void ExpectPage(const std::string& name, const std::string& html) {
    ExpectGolden("live/imap_" + name + ".html", WithoutIdentifiers(html));
  }

  // What the stores have in common: a server counts two bytes for the end of a line, our files have one.
  static std::string Shape(const std::string& html) {
    return std::regex_replace(WithoutIdentifiers(html), std::regex("[0-9]+\\.[0-9]{2}KB"), "...KB");
  }

  // The identifier in the first link to a message.
  static std::string FirstMessage(const std::string& html) {
    std::smatch found;
    if (!std::regex_search(html, found, std::regex("MessageId=([^&\"#]+)"))) return "";
    return found[1];
  }

  static inline SampleMailServer* server_ = nullptr;
};

// A page of ten in the middle of a folder, the largest messages first.
const std::string kLargest = "&Sort=&SortOrder=&First=1&PageSize=20&Sort=Size&SortOrder=DESC&First=11&PageSize=10";
const std::string kLargestFirst = "&Sort=&SortOrder=&Sort=Size&SortOrder=DESC";

TEST_F(ImapPages, AMailboxHasFolders) { ExpectPage("mailbox", Page("mailbox.asp", kAlice)); }

TEST_F(ImapPages, AFolderHasTheVeryPageThatTheMaildirStoreShows) {
  const std::string html = Page("mailbox.asp", kAlice + "&Container=Inbox" + kLargest);
  ExpectPage("inbox", html);
  EXPECT_EQ(Shape(html), Shape(GoldenText("live/inbox.html")));
}

TEST_F(ImapPages, AMessageThatAFolderLinksToHasDetailsAndAttachments) {
  const std::string inbox = Page("mailbox.asp", kAlice + "&Container=Inbox" + kLargestFirst);
  const std::string query = kAlice + "&Container=Inbox&MessageId=" + FirstMessage(inbox);
  const std::string html = Page("message.asp", query, "KALVO\\alice", kUser);
  ExpectPage("message", html);
  EXPECT_EQ(Shape(html), Shape(GoldenText("live/message.html")));
}

TEST_F(ImapPages, PublicFoldersAreAnAdministrators) {
  const std::string sales = "Server=SEA-EX01&Mailbox=Sales%5COrders";
  ExpectPage("public", Page("public.asp", sales, "KALVO\\admin", kAdministrator));
  ExpectPage("public_refused", Page("public.asp", sales, "KALVO\\alice", kUser));
}

TEST_F(ImapPages, WhatIsGoneOrMadeUpIsToldOf) {
  const auto expect = [&](const std::string& name, const std::string& html) {
    SCOPED_TRACE(name);
    EXPECT_EQ(html, GoldenText("live/" + name + ".html"));
  };
  expect("refused", Page("mailbox.asp", kAlice, "KALVO\\someone"));
  ExpectPage("no_folder", Page("mailbox.asp", kAlice + "&Container=Nowhere"));
  expect("no_message", Page("message.asp", kAlice + "&MessageId=madeup", "KALVO\\alice", kUser));
}

TEST_F(ImapPages, ADeleteTakesThatMessageAndNoOther) {
  const std::string archive = kAlice + "&Container=Archive";
  const std::string listed = Page("mailbox.asp", archive);
  const std::string message = FirstMessage(listed);
  ASSERT_NE(message, "") << listed;
  const auto before = server_->Server().AllMessages();
  const std::string form =
      "ServerName=SEA-EX01&MailboxName=alice%40kalvo.example&FolderId=&MessageId=" + message + "&Flags=0";

  const std::string asked = Page("Configuration/Process.asp", "ProcessType=DeleteMessage&" + form);
  EXPECT_NE(asked.find("<h1>Delete a Message?</h1>"), std::string::npos) << asked;
  EXPECT_EQ(server_->Server().AllMessages(), before) << "an address deletes nothing";

  EXPECT_EQ(Page("delete.asp", form), "deleted: true Delete Message\n");
  const auto after = server_->Server().AllMessages();
  EXPECT_EQ(after.size() + 1, before.size());
  EXPECT_TRUE(std::includes(before.begin(), before.end(), after.begin(), after.end()));
  EXPECT_EQ(Page("mailbox.asp", archive).find(message), std::string::npos);

  EXPECT_EQ(Page("delete.asp", form), "Delete Message: The message does not exist any more.\n");
  EXPECT_EQ(server_->Server().AllMessages(), after);
}

}  // namespace
}  // namespace kalvo::test
