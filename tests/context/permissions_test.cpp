#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

TEST(Permissions, OnlyYesItselfGrants) {
  const struct {
    const char* why;
    Value value;
    bool granted;
  } kCases[] = {
      {"Yes", "Yes"s, true},
      {"another case", "yes"s, false},
      {"all capitals", "YES"s, false},
      {"True as a text", "True"s, false},
      {"a boolean", true, false},
      {"-1", std::int32_t{-1}, false},
      {"No", "No"s, false},
      {"never set", Empty{}, false},
      {"null", Null{}, false},
      {"with a blank", "Yes "s, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    PageFixture page;
    page.page->request->variables["LOGON_USER"] = "DOMAIN\\bob";
    page.page->session->values["KalvoAdministrator"] = c.value;
    EXPECT_EQ(page.context->KalvoAdministrator(), c.granted);
    EXPECT_FALSE(page.context->DrillDownPermission("S", "M"));
    page.page->session->values["KalvoDrillDownAuth"] = c.value;
    EXPECT_EQ(page.context->DrillDownPermission("S", "M"), c.granted);
  }
}

TEST(Permissions, TheRightToDrillDownAsksNobody) {
  PageFixture page;
  page.MayDrillDown();
  page.page->session->objects.clear();
  EXPECT_TRUE(page.context->DrillDownPermission("S", "M"));
  EXPECT_EQ(page.Text(), "");
  EXPECT_TRUE(page.live->steps.done.empty());
}

TEST(Permissions, AnOwnerMayDrillDownWhateverTheCaseOfTheName) {
  PageFixture page;
  page.page->request->variables["LOGON_USER"] = "DOMAIN\\Alice";
  page.live->owner = "domain\\alice";
  EXPECT_TRUE(page.context->DrillDownPermission("S", "M"));
  EXPECT_EQ(page.live->steps.SeenByThePage(), (std::vector<std::string>{"MailboxOwner(S, M)"}));
  page.page->request->variables["LOGON_USER"] = "DOM\\\u00C4RZTE";
  page.live->owner = "dom\\\u00E4rzte";
  EXPECT_TRUE(page.context->DrillDownPermission("S", "M"));
  page.live->owner = "dom\\arzte";
  EXPECT_FALSE(page.context->DrillDownPermission("S", "M"));
  page.page->request->variables["LOGON_USER"] = "domain\\bos\u017F";
  page.live->owner = "domain\\boss";
  EXPECT_FALSE(page.context->DrillDownPermission("S", "M")) << "a long s is no s";
  page.live->owner = "domain\\bob";
  EXPECT_FALSE(page.context->DrillDownPermission("S", "M"));
  EXPECT_EQ(page.Text(), "") << "a refusal is the caller's to tell";
}

TEST(Permissions, AnAdministratorIsNotAdmittedHere) {
  PageFixture page;
  page.Administrator();
  page.live->owner = "domain\\bob";
  EXPECT_FALSE(page.context->DrillDownPermission("S", "M"));
}

TEST(Permissions, AMissingBrowsingObjectIsReported) {
  const struct {
    const char* why;
    bool declared;
  } kCases[] = {{"not declared", false}, {"declared but nothing", true}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    PageFixture page;
    page.page->session->objects.clear();
    if (c.declared) page.page->session->objects["gLiveDriller"] = nullptr;
    EXPECT_FALSE(page.context->DrillDownPermission("S", "M"));
    EXPECT_EQ(page.Text(),
              "<p>Error Generating Table: &nbsp;Get the live container object.<br>Error number: 0x1A8; &nbsp; "
              "Description: Object required</p>\r\n");
  }
}

TEST(Permissions, AnUnknownOwnerMatchesOnlyAUserWhoDidNotLogOn) {
  PageFixture page;
  page.live->steps.Fail("MailboxOwner");
  EXPECT_FALSE(page.context->DrillDownPermission("S", "M"));
  page.page->request->variables["LOGON_USER"] = "";
  EXPECT_TRUE(page.context->DrillDownPermission("S", "M"));
  EXPECT_EQ(page.Text(), "");
}

TEST(Permissions, AskingNeverRaises) {
  PageFixture page;
  page.context->OnEndPage();
  EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(page.context->DrillDownPermission("S", "M")); }).Number(), 0);
}

TEST(Permissions, TheProductsMailboxIsNamedAfterItsServer) {
  Context context;
  EXPECT_EQ(context.KalvoCreatedMailboxName("EXCH01"), "Kalvo EXCH01");
  EXPECT_EQ(context.KalvoCreatedMailboxName(""), "Kalvo ");
}

}  // namespace
}  // namespace kalvo::test
