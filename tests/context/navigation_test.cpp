#include <gtest/gtest.h>

#include "fakes/page_fixture.h"

namespace kalvo::test {
namespace {

constexpr char kUpgrade[] =
    "<p>You have attempted to scan an Kalvo Exchange Edition agent with an earlier version. In order to successfully "
    "scan this agent, you must upgrade it to the current version.";

std::string Report(const char* text, const char* number, const char* description) {
  return std::string("<p>Error Generating Table: &nbsp;") + text + "<br>Error number: " + number +
         "; &nbsp; Description: " + description + "</p>\r\n";
}

class Navigation : public testing::Test {
 protected:
  bool GoToContainer(bool workaround = false) {
    return page_.context->EncapsulateGotoContainerFailure(*page_.live, "S", "M", "C", 0, 1, "Open it.", workaround);
  }
  bool GoToMessage(const char* id = "I", bool mailboxMessage = true) {
    return page_.context->EncapsulateGotoMsgAttachmentFailure(*page_.live, "S", "M", id, mailboxMessage, "Open it.");
  }

  PageFixture page_;
  Steps& steps_ = page_.live->steps;
};

using ContainerNavigation = Navigation;

TEST_F(ContainerNavigation, IsMadeOnEveryCall) {
  EXPECT_FALSE(GoToContainer());
  EXPECT_FALSE(GoToContainer());
  EXPECT_EQ(steps_.SeenByThePage(),
            (std::vector<std::string>{"GotoContainer(S, M, C, 0, 1)", "GotoContainer(S, M, C, 0, 1)"}));
  EXPECT_EQ(page_.Text(), "");
}

TEST_F(ContainerNavigation, FailuresAreReportedByTheirCode) {
  const struct {
    const char* why;
    std::int32_t code;
    bool workaround;
    std::string text;
  } kCases[] = {
      {"an old agent", codes::kOldAgent, false, kUpgrade},
      {"an old agent with the workaround", codes::kOldAgent, true, kUpgrade},
      {"an agent without message reports is nothing special here", codes::kNoMessageReports, false,
       Report("GotoContainer: Open it.", "0x80004003", "gone")},
      {"no such folder", codes::kNoSuchFolder, false, Report("GotoContainer: Open it.", "0xE1C1002F", "gone")},
      {"no such folder with the workaround", codes::kNoSuchFolder, true,
       "<p>Error Generating Table: &nbsp;No such Folder</p>\r\n"},
      {"anything else with the workaround", codes::kFailed, true,
       Report("GotoContainer: Open it.", "0x80004005", "gone")},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    steps_.Fail("GotoContainer", c.code, "gone");
    EXPECT_TRUE(GoToContainer(c.workaround));
    EXPECT_EQ(page_.Taken(), c.text);
    EXPECT_EQ(CurrentError().number, c.code) << "the error stays pending";
  }
}

TEST_F(ContainerNavigation, BeginsWithAClearErrorState) {
  LeaveError(Overflow());
  EXPECT_FALSE(GoToContainer());
  EXPECT_EQ(page_.Text(), "");
}

TEST_F(ContainerNavigation, NeverRaises) {
  steps_.Fail("GotoContainer");
  page_.page->response->refused = "<p>";
  EXPECT_TRUE(GoToContainer());
  page_.context->OnEndPage();
  EXPECT_TRUE(GoToContainer());
}

TEST_F(ContainerNavigation, IsTraced) {
  page_.page->request = std::make_shared<FakeRequest>("Debug=Table");
  page_.Start();
  GoToContainer();
  GoToContainer();
  EXPECT_EQ(page_.Text(), "<p>Calling to GotoContainer.</p>\r\n<p>Calling to GotoContainer.</p>\r\n");
}

class MessageNavigation : public Navigation {
 protected:
  MessageNavigation() { page_.MayDrillDown(); }
};

TEST_F(MessageNavigation, IsRefusedWithoutTheRightToDrillDown) {
  page_.page->session->values["KalvoDrillDownAuth"] = std::string("yes");
  page_.Administrator();
  EXPECT_TRUE(GoToMessage());
  EXPECT_EQ(page_.Text(), Report("Drill down not allowed.", "0x0", ""));
  EXPECT_TRUE(steps_.done.empty());
}

TEST_F(MessageNavigation, ARefusalLeavesTheLastNavigationAlone) {
  GoToMessage();
  page_.page->session->values.clear();
  GoToMessage("J");
  page_.MayDrillDown();
  GoToMessage();
  EXPECT_EQ(steps_.Count("GotoMsgAttachment"), 1u) << "still on the first message";
}

TEST_F(MessageNavigation, IsMadeOnceForTheSameMessage) {
  EXPECT_FALSE(GoToMessage());
  EXPECT_FALSE(GoToMessage());
  EXPECT_EQ(steps_.SeenByThePage(), (std::vector<std::string>{"GotoMsgAttachment(S, M, I, 0)"}));
}

TEST_F(MessageNavigation, IsMadeAgainWhenAnythingDiffers) {
  GoToMessage("I");
  GoToMessage("i");
  GoToMessage("i", false);
  page_.context->EncapsulateGotoMsgAttachmentFailure(*page_.live, "s", "M", "i", false, "Open it.");
  page_.context->EncapsulateGotoMsgAttachmentFailure(*page_.live, "s", "m", "i", false, "Open it.");
  EXPECT_EQ(steps_.SeenByThePage(),
            (std::vector<std::string>{"GotoMsgAttachment(S, M, I, 0)", "GotoMsgAttachment(S, M, i, 0)",
                                      "GotoMsgAttachment(S, M, i, 4)", "GotoMsgAttachment(s, M, i, 4)",
                                      "GotoMsgAttachment(s, m, i, 4)"}));
}

TEST_F(MessageNavigation, IsMadeAgainAfterAContainerOrAPageStart) {
  GoToMessage();
  GoToContainer();
  GoToMessage();
  EXPECT_EQ(steps_.Count("GotoMsgAttachment"), 2u);
  page_.Start();
  GoToMessage();
  EXPECT_EQ(steps_.Count("GotoMsgAttachment"), 3u);
}

TEST_F(MessageNavigation, ASkippedCallAnswersTheOldResultWithoutText) {
  steps_.Fail("GotoMsgAttachment", codes::kFailed, "gone");
  EXPECT_TRUE(GoToMessage());
  EXPECT_EQ(page_.Taken(), Report("GotoMsgAttachment: Open it.", "0x80004005", "gone"));
  EXPECT_TRUE(GoToMessage());
  EXPECT_EQ(page_.Taken(), "");
  EXPECT_EQ(steps_.Count("GotoMsgAttachment"), 1u);
}

TEST_F(MessageNavigation, AnOldAgentGetsTheUpgradeMessage) {
  steps_.Fail("GotoMsgAttachment", codes::kOldAgent);
  EXPECT_TRUE(GoToMessage());
  EXPECT_EQ(page_.Text(), kUpgrade);
}

TEST_F(MessageNavigation, AnAgentWithoutMessageReportsKeepsTheEarlierResult) {
  constexpr char kMailbox[] = "<p>Kalvo Exchange Edition 1.1 agents don't support mailbox message reports.";
  constexpr char kPublicFolder[] = "<p>Kalvo Exchange Edition 1.1 agents don't support public folder message reports.";
  steps_.Fail("GotoMsgAttachment", codes::kNoMessageReports, "1.1");
  EXPECT_TRUE(GoToMessage("I", true));
  EXPECT_EQ(page_.Taken(), kMailbox + Report("GotoMsgAttachment: Open it.", "0x80004003", "1.1"));
  EXPECT_TRUE(GoToMessage("J", false));
  EXPECT_EQ(page_.Taken(), kPublicFolder) << "an earlier failure leaves the details out";
}

TEST_F(MessageNavigation, IsTraced) {
  page_.page->request = std::make_shared<FakeRequest>("Debug=Table");
  page_.Start();
  GoToMessage();
  GoToMessage();
  EXPECT_EQ(page_.Text(),
            "<p>Calling to GotoMsgAttachment.</p>\r\n"
            "<p>Skipping call to GotoMsgAttachment:  No parameter change.</p>\r\n");
}

TEST_F(MessageNavigation, NeverRaises) {
  steps_.Fail("GotoMsgAttachment");
  page_.page->response->refused = "<p>";
  EXPECT_TRUE(GoToMessage());
  page_.context->OnEndPage();
  EXPECT_TRUE(GoToMessage("J"));
}

}  // namespace
}  // namespace kalvo::test
