#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

TEST(Failure, IsReportedWhenAnErrorIsPending) {
  PageFixture page;
  EXPECT_FALSE(page.context->Failure("x"));
  EXPECT_EQ(page.Taken(), "");
  LeaveError(Error(codes::kSqlSyntax, "Syntax error"));
  EXPECT_TRUE(page.context->Failure("x"));
  EXPECT_EQ(page.Taken(),
            "<p>Error Generating Table: &nbsp;x<br>Error number: 0x80040E14; &nbsp; Description: Syntax error</p>\r\n");
  EXPECT_EQ(CurrentError().number, codes::kSqlSyntax) << "the error stays pending";
  EXPECT_TRUE(page.context->Failure("again"));
}

TEST(Failure, AMessageShowsDetailsWhenAskedTo) {
  PageFixture page;
  EXPECT_FALSE(page.context->FailureMessage("x"));
  EXPECT_EQ(page.Taken(), "<p>Error Generating Table: &nbsp;x</p>\r\n");
  LeaveError(SubscriptOutOfRange());
  EXPECT_FALSE(page.context->FailureMessage("<b>x</b>", false));
  EXPECT_EQ(page.Taken(), "<p>Error Generating Table: &nbsp;<b>x</b></p>\r\n") << "nothing is encoded";
  EXPECT_FALSE(page.context->FailureMessage("x", true));
  EXPECT_EQ(
      page.Taken(),
      "<p>Error Generating Table: &nbsp;x<br>Error number: 0x9; &nbsp; Description: Subscript out of range</p>\r\n");
}

TEST(Failure, NumbersAreUpperCaseHexadecimalWithoutLeadingZeros) {
  const struct {
    std::int32_t number;
    const char* shown;
  } kCases[] = {{9, "0x9"},
                {457, "0x1C9"},
                {codes::kFailed, "0x80004005"},
                {-1, "0xFFFFFFFF"},
                {codes::kNoSuchFolder, "0xE1C1002F"}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.shown);
    PageFixture page;
    LeaveError(Error(c.number, ""));
    page.context->Failure("x");
    EXPECT_EQ(page.Text(), std::string("<p>Error Generating Table: &nbsp;x<br>Error number: ") + c.shown +
                               "; &nbsp; Description: </p>\r\n");
  }
}

TEST(Failure, WithTableTracingEveryMessageShowsDetails) {
  PageFixture page("Debug=Table");
  page.context->FailureMessage("x");
  EXPECT_EQ(page.Text(), "<p>Error Generating Table: &nbsp;x<br>Error number: 0x0; &nbsp; Description: </p>\r\n");
}

TEST(Failure, AReportThatCannotBeWrittenFails) {
  PageFixture page;
  page.page->response->refused = "Error Generating";
  LeaveError(Overflow());
  EXPECT_EQ(ErrorOf([&] { page.context->Failure("x"); }).Number(), codes::kFailed);
}

TEST(Debug, IsSwitchedOnByTypeOrForAll) {
  const struct {
    const char* why;
    const char* query;
    bool sql, table;
  } kCases[] = {
      {"not at all", "", false, false},
      {"one type", "Debug=table", false, true},
      {"two types", "Debug=SQL&Debug=Table", true, true},
      {"all", "debug=all", true, true},
      {"true", "Debug=tRuE", true, true},
      {"an empty value", "Debug=", false, false},
      {"0", "Debug=0", false, false},
      {"1 means nothing", "Debug=1", false, false},
      {"a list is no type", "Debug=SQL,Table", false, false},
      {"only a part of the name", "Debug=Tab", false, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    PageFixture page(c.query);
    EXPECT_EQ(page.context->bDebug("sql"), c.sql);
    EXPECT_EQ(page.context->bDebug("Table"), c.table);
    EXPECT_EQ(page.context->bDebugTable(), c.table);
  }
}

TEST(Debug, TypesAreComparedInUpperCase) {
  PageFixture page("Debug=gr\u00F6\u00DFe&Debug=\u03C9");
  EXPECT_TRUE(page.context->bDebug("GR\u00D6\u00DFE"));
  EXPECT_TRUE(page.context->bDebug("\u03A9"));
  EXPECT_FALSE(page.context->bDebug("GROSSE"));
  EXPECT_TRUE(PageFixture("Debug=Cla\u017F\u017F").context->bDebug("CLASS")) << "the capital of a long s is S";
  EXPECT_TRUE(PageFixture("Debug=tr\u00FCE&Debug=trUE").context->bDebug("x"));
}

// What a page's own request is asked, and when, is seen by it.
TEST(Tracing, AsksARequestThatSeesItEachTimeAndAnyOtherOnce) {
  for (const bool sees : {true, false}) {
    PageFixture page("Debug=SQL");
    page.page->request->sees = sees;
    page.Start();
    page.page->request->steps.done.clear();
    EXPECT_TRUE(page.context->bDebug("SQL"));
    EXPECT_FALSE(page.context->bDebug("Time"));
    EXPECT_EQ(page.page->request->steps.done.empty(), !sees);
  }
}

TEST(Debug, IsReadFromTheQueryStringAlone) {
  PageFixture page("", "Debug=All");
  page.page->session->values["Debug"] = std::string("All");
  EXPECT_FALSE(page.context->bDebug("SQL"));
}

TEST(Debug, AMessageIsWrittenAsItIsAndSent) {
  PageFixture page("Debug=SQL");
  page.context->DebugOutput("SQL", "<p>a & b");
  EXPECT_EQ(page.Taken(), "<p>a & b");
  EXPECT_EQ(page.page->response->flushes, 1);
  page.context->DebugOutput("Time", "x");
  page.context->TableDebugOutput("x");
  EXPECT_EQ(page.Taken(), "");
  EXPECT_EQ(page.page->response->flushes, 1);
}

TEST(Debug, TableTracingIsDecidedWhenThePageStarts) {
  PageFixture page("Debug=Table");
  page.context->TableDebugOutput("<p>x</p>");
  EXPECT_EQ(page.Taken(), "<p>x</p>");
  EXPECT_EQ(page.page->response->flushes, 1);
  page.page->request = std::make_shared<FakeRequest>("Debug=SQL");
  EXPECT_TRUE(page.context->bDebugTable());
  page.Start();
  EXPECT_FALSE(page.context->bDebugTable());
}

TEST(Debug, AMessageThatNobodySeesIsNotMade) {
  PageFixture page;
  page.context->Trace("SQL", [](std::string&) { FAIL() << "made"; });
  page.context->TraceTable([](std::string&) { FAIL() << "made"; });
  EXPECT_EQ(page.Text(), "");
}

}  // namespace
}  // namespace kalvo::test
