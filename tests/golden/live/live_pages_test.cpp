// The live tables, the folder path and the details of a message over the sample's mail store.
#include <gtest/gtest.h>

#include "golden/live/sample_site.h"
#include "kalvo/platform/live_mailbox.h"
#include "source_folder.h"
#include "support/golden.h"

namespace kalvo::test {
namespace {

namespace fs = std::filesystem;

const fs::path kFolder = fs::path(KALVO_SOURCE_DIR) / "tests/golden/live";
const std::string kAlice = "Server=SEA-EX01&Mailbox=alice%40kalvo.example";

class LivePages : public testing::Test {
 protected:
  static void SetUpTestSuite() { site_ = new SampleSite; }
  static void TearDownTestSuite() { delete site_; }

  static void ExpectPage(const std::string& name, const std::string& page, const std::string& query,
                         const std::string& logon, const std::vector<std::string>& rights = {}) {
    ExpectGolden("live/" + name + ".html", site_->Run(kFolder, page, query, logon, rights).body);
  }

  static std::string LargestMessage() {
    const auto live = site_->Live();
    live->GotoContainer("SEA-EX01", "alice@kalvo.example", "Inbox", 0, live::kByPath);
    return FirstBy(*live, "Size");
  }

  static inline SampleSite* site_ = nullptr;
};

const std::vector<std::string> kUser = {"KalvoDrillDownAuth"};
const std::vector<std::string> kAdministrator = {"KalvoAdministrator", "KalvoDrillDownAuth"};
const std::string kPaged = "&Sort=&SortOrder=&First=1&PageSize=20&Sort=Size&SortOrder=DESC&First=11&PageSize=10";

TEST_F(LivePages, AMailboxHasFolders) { ExpectPage("mailbox", "mailbox.asp", kAlice, "KALVO\\alice"); }

TEST_F(LivePages, AFolderHasPagesOfMessages) {
  ExpectPage("inbox", "mailbox.asp", kAlice + "&Container=Inbox" + kPaged, "KALVO\\alice");
}

TEST_F(LivePages, APathHasALinkForEachStep) {
  ExpectPage("path", "mailbox.asp", kAlice + "&Container=%5CProjects%5CAurora", "KALVO\\alice");
}

TEST_F(LivePages, AMessageHasDetailsAndAttachments) {
  ExpectPage("message", "message.asp", kAlice + "&Container=Inbox&MessageId=" + Encoded(LargestMessage()),
             "KALVO\\alice", kUser);
}

TEST_F(LivePages, PublicFoldersAreAnAdministrators) {
  const std::string sales = "Server=SEA-EX01&Mailbox=Sales%5COrders";
  ExpectPage("public", "public.asp", sales, "KALVO\\admin", kAdministrator);
  ExpectPage("public_refused", "public.asp", sales, "KALVO\\alice", kUser);
  const auto live = site_->Live();
  live->GotoContainer("SEA-EX01", "Kalvo SEA-EX01", "Sales\\Orders", 0, live::kByPath | live::kPublicFolders);
  ExpectPage("public_message", "public_message.asp", sales + "&MessageId=" + Encoded(FirstBy(*live, "Size")),
             "KALVO\\admin", kAdministrator);
}

TEST_F(LivePages, NamesThatMeanNoOneMailboxAreExplained) {
  ExpectPage("ambiguous", "mailbox.asp", "Server=SEA-EX01&Mailbox=A", "KALVO\\admin", kAdministrator);
  ExpectPage("none", "mailbox.asp", "Server=SEA-EX01&Mailbox=Nobody", "KALVO\\admin", kAdministrator);
  ExpectPage("elsewhere", "mailbox.asp", "Server=SEA-EX02&Mailbox=Alice+Archer", "KALVO\\admin", kAdministrator);
  ExpectPage("refused", "mailbox.asp", kAlice, "KALVO\\someone");
}

TEST_F(LivePages, WhatIsGoneOrMadeUpIsToldOf) {
  ExpectPage("no_folder", "mailbox.asp", kAlice + "&Container=Nowhere", "KALVO\\alice");
  ExpectPage("no_folder_id", "mailbox.asp", kAlice + "&ContainerId=madeup", "KALVO\\alice");
  ExpectPage("no_message", "message.asp", kAlice + "&MessageId=madeup", "KALVO\\alice", kUser);
  ExpectPage("no_public_folder", "public.asp", "Server=SEA-EX01&Mailbox=Nowhere", "KALVO\\admin", kAdministrator);
}

}  // namespace
}  // namespace kalvo::test
