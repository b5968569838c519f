#include "kalvo/context.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

// What the request's query string leaves for the links of table 1.
std::string Kept(std::string_view query) {
  PageFixture page(query);
  page.context->IncrementTableIndex();
  const std::string url = page.context->TableURL("", "", "", "");
  return url.substr(url.find('?') + 1, url.rfind("Sort=&SortOrder=&First=&PageSize=") - url.find('?') - 1);
}

TEST(Context, TakesTheHostObjectsInTheirOrder) {
  const auto page = std::make_shared<FakePage>();
  Context().OnStartPage(*page);
  EXPECT_EQ(page->steps.SeenByThePage(),
            (std::vector<std::string>{"Response()", "Request()", "Session()", "Server()"}));
}

TEST(Context, AFailingHostFailsTheStart) {
  const auto page = std::make_shared<FakePage>();
  page->steps.Fail("Session", 7);
  EXPECT_EQ(ErrorOf([&] { Context().OnStartPage(*page); }).Number(), 7);
}

TEST(Context, StartingAPageWritesNothing) {
  PageFixture page("Debug=All&x=1");
  EXPECT_EQ(page.Text(), "");
}

TEST(Context, KeepsEveryParameterThatIsNotATablesOwn) {
  const struct {
    const char* why;
    const char *query, *kept;
  } kCases[] = {
      {"no query string", "", ""},
      {"a value is encoded again, its key is not", "Table=7&Sort=Size&x=a b", "Table=7&x=a+b&"},
      {"the four parameters whatever their case", "sort=A&SORTORDER=d&fIRST=1&pagesize=2", ""},
      {"letters beyond ASCII have a case as well", "\u00C4=1&\u00E4=2", "\u00C4=1&\u00C4=2&"},
      {"a long s is no s", "\u017Fort=1", "\u017Fort=1&"},
      {"names that only begin alike are kept", "Sort1=a&SortField=b&Firsts=c", "Sort1=a&SortField=b&Firsts=c&"},
      {"values are grouped by key", "a=1&b=2&a=3", "a=1&a=3&b=2&"},
      {"a key is spelled as it first came", "aB=1&Ab=2", "aB=1&aB=2&"},
      {"an empty value", "x=", "x=&"},
      {"a key without a value", "x", "x=&"},
      {"characters of a URL in values", "x=a%26b%3Dc", "x=a%26b%3Dc&"},
      {"a key goes through as it is", "a%20b=1", "a b=1&"},
      {"the debug switch is an ordinary parameter", "Debug=SQL", "Debug=SQL&"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Kept(c.query), c.kept);
  }
}

TEST(Context, APairWhoseValueCannotBeEncodedIsLeftOutWhole) {
  class RefusingServer : public FakeServer {
   public:
    void URLEncode(std::string& out, std::string_view text) override {
      if (text == "bad") throw Error(70, "Refused.");
      FakeServer::URLEncode(out, text);
    }
  };
  PageFixture page("a=1&b=bad&c=3");
  page.page->server = std::make_shared<RefusingServer>();
  EXPECT_EQ(ErrorOf([&] { page.Start(); }).Number(), 70);
  EXPECT_EQ(page.context->TableURL("", "", "", ""), "/KalvoforExchange/Tasks/Page.asp?a=1");
}

TEST(Context, NumbersItsTablesFromOne) {
  PageFixture page;
  EXPECT_EQ(page.context->TableIndex(), 0);
  EXPECT_EQ(page.context->IncrementTableIndex(), 1);
  EXPECT_EQ(page.context->IncrementTableIndex(), 2);
  EXPECT_EQ(page.context->TableIndex(), 2);
}

TEST(Context, MoreTablesThan16BitsCountOverflow) {
  PageFixture page;
  for (int i = 0; i < 32767; ++i) page.context->IncrementTableIndex();
  EXPECT_EQ(ErrorOf([&] { page.context->IncrementTableIndex(); }).Number(), 6);
  EXPECT_EQ(page.context->TableIndex(), 32767);
}

TEST(Context, AParameterRepeatedMoreOftenThan16BitsCountOverflows) {
  std::string query;
  for (int i = 0; i < 32767; ++i) query += "First=&";
  PageFixture page(query);
  const auto more = std::make_shared<FakePage>(query + "first=1");
  EXPECT_EQ(ErrorOf([&] { page.context->OnStartPage(*more); }).Number(), 6);
}

TEST(Context, AnotherStartBeginsThePageAnewButNotTheScope) {
  PageFixture page("Sort=A&x=1");
  page.context->SetName("EXCH01");
  page.context->IncrementTableIndex();
  page.Start();
  EXPECT_EQ(page.context->TableIndex(), 0);
  EXPECT_EQ(page.context->GetName(), "EXCH01");
  page.context->IncrementTableIndex();
  EXPECT_EQ(page.context->TableURL("B", "", "", ""),
            "/KalvoforExchange/Tasks/Page.asp?x=1&Sort=B&SortOrder=&First=&PageSize=");
}

TEST(Context, StartedAgainHasTheAddressOfItsNewPage) {
  for (const bool sees : {true, false}) {
    PageFixture page("a=1");
    page.page->request->sees = sees;
    page.Start();
    page.page->request = std::make_shared<FakeRequest>("b=2");
    page.page->request->sees = sees;
    page.Start();
    EXPECT_EQ(page.context->TableURL("", "", "", ""), "/KalvoforExchange/Tasks/Page.asp?b=2");
  }
}

TEST(Context, ScopeIsStoredAsItIs) {
  Context context;
  EXPECT_EQ(context.GetName(), "");
  EXPECT_EQ(context.GetTopN(), TOPN_UNDEFINED);
  context.SetName(" Name ");
  context.SetOrg("Org");
  context.SetSite("Site");
  context.SetMailbox("O'Neil");
  context.SetContainer("\\Inbox");
  context.SetTopN(static_cast<KalvoTableTopN>(99));
  EXPECT_EQ(context.GetName(), " Name ");
  EXPECT_EQ(context.GetOrg(), "Org");
  EXPECT_EQ(context.GetSite(), "Site");
  EXPECT_EQ(context.GetMailbox(), "O'Neil");
  EXPECT_EQ(context.GetContainer(), "\\Inbox");
  EXPECT_EQ(context.GetTopN(), 99);
  context.SetName("");
  EXPECT_EQ(context.GetName(), "");
}

TEST(Context, HandsOutTheHostsEncodersAndObjects) {
  PageFixture page;
  EXPECT_EQ(page.context->ServerHTMLEncode("<a&b>"), "&lt;a&amp;b&gt;");
  EXPECT_EQ(page.context->ServerURLEncode("a b"), "a+b");
  EXPECT_EQ(page.context->GetSession(), page.page->session);
  EXPECT_EQ(page.context->GetRequest(), page.page->request);
  EXPECT_EQ(page.context->szSortFieldParameterName(), "Sort");
  EXPECT_EQ(page.context->szSortOrderParameterName(), "SortOrder");
}

TEST(Context, NeedsAPageForEverythingOfTheHost) {
  PageFixture page("Sort=A");
  page.context->SetName("EXCH01");
  page.context->IncrementTableIndex();
  page.context->OnEndPage();
  Context& context = *page.context;
  EXPECT_EQ(ErrorOf([&] { context.GetSession(); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.GetRequest(); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.ServerHTMLEncode("x"); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.ServerURLEncode("x"); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.TableURL("", "", "", ""); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.TableSortFieldInformation(); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.FailureMessage("x"); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.DebugOutput("SQL", "x"); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.bDebug("SQL"); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { context.KalvoAdministrator(); }).Number(), 91);
  EXPECT_EQ(context.GetName(), "EXCH01");
  EXPECT_EQ(context.TableIndex(), 1);
}

TEST(Context, CountsNoTableBeforeItsFirst) {
  const Context context;
  EXPECT_EQ(context.TableIndex(), 0);
  EXPECT_FALSE(context.bDebugTable());
  EXPECT_EQ(context.GetTopN(), TOPN_UNDEFINED);
}

}  // namespace
}  // namespace kalvo::test
