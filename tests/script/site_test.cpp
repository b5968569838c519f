#include <fstream>

#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

class SiteTest : public PageTest {};

TEST_F(SiteTest, WritesTextCodeAndValuesInTheirOrder) {
  EXPECT_EQ(Run("<%@ Language=\"JavaScript\" %>\r\na<% for (var i = 0; i < 3; ++i) { %>b<%= i %><% } %>c\r\n"),
            "ab0b1b2c\r\n");
  EXPECT_EQ(Run("<% if (true) %>yes<% else %>no"), "yes");
  EXPECT_EQ(Run("<% var a = 1 %>x<%= a // one\n %>y<% // two %>z"), "x1yz");
  EXPECT_EQ(Run("<% function f() { %>in f<% } f(); f(); %>"), "in fin f");
}

TEST_F(SiteTest, KeepsTextAsItIs) {
  const std::string text = "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80 \"quoted\" \\ % > </script>\r\n\t\n";
  EXPECT_EQ(Run(text), text);
  EXPECT_EQ(Run("<%= '\xF0\x9F\x98\x80'.length %>"), "2");
}

TEST_F(SiteTest, RunsEachPageInAStateOfItsOwn) {
  EXPECT_EQ(Script("leaked = 1; Array.prototype.leaked = 2; Object.defineProperty(this, 'fixed', {value: 3});"), "");
  EXPECT_EQ(Script("Response.Write(typeof leaked + typeof [].leaked + typeof fixed);"), "undefinedundefinedundefined");
}

TEST_F(SiteTest, CompilesAPageAnewWhenAFileOfItHasChanged) {
  Put("x.inc", "one");
  EXPECT_EQ(Run("<!--#include file=\"x.inc\"-->"), "one");
  EXPECT_EQ(RunFile("page.asp"), "one");
  Put("x.inc", "three");
  EXPECT_EQ(RunFile("page.asp"), "three");
  std::filesystem::remove(folder.Path() / "x.inc");
  RunFile("page.asp");
  EXPECT_EQ(Failure(), "page.asp:1: there is no include \"x.inc\"");
  Put("x.inc", "back");
  EXPECT_EQ(RunFile("page.asp"), "back");
}

TEST_F(SiteTest, PreparesPagesAhead) {
  Put("good.asp", "x");
  Put("bad.asp", "<% x");
  EXPECT_FALSE(site.Prepare("good.asp"));
  ASSERT_TRUE(site.Prepare("bad.asp"));
  EXPECT_EQ(site.Prepare("/nosuch.asp")->kind, FailureKind::NotFound);
}

TEST_F(SiteTest, FollowsNoLinkOutOfTheRoot) {
  TemporaryFolder outside;
  WriteFile(outside.Path() / "secret.inc", "secret");
  std::filesystem::create_symlink(outside.Path() / "secret.inc", folder.Path() / "link.inc");
  EXPECT_EQ(Run("<!--#include file=\"link.inc\"-->"), "");
  EXPECT_EQ(Failure(), "page.asp:1: there is no include \"link.inc\"");
  RunFile("link.inc");
  EXPECT_EQ(result.failure->kind, FailureKind::NotFound);
}

TEST_F(SiteTest, TellsObjectsOfThePagesStartAndEnd) {
  EXPECT_EQ(Script("var x = Server.CreateObject('KalvoTables.Context'); Response.Write(x.ServerHTMLEncode('<'));"
                   "var y = new ActiveXObject('KalvoTables.Context'); try { y.ServerHTMLEncode('<'); }"
                   "catch (e) { Response.Write(e.number & 0xFFFF); }"),
            "&lt;91");
}

// A sink whose receiver went away.
class GoneSink : public PageSink {
 public:
  struct Gone {};
  void Head(const PageHead&) override {}
  void Body(std::string_view) override { throw Gone(); }
};

TEST_F(SiteTest, EndsThePageWhenTheReaderIsGone) {
  Put("page.asp", "<% while (true) { try { Response.Write('x'); Response.Flush(); } catch (e) {} } %>");
  GoneSink gone;
  EXPECT_THROW(site.Run("page.asp", request, session, gone, options), GoneSink::Gone);
  Put("page.asp", "at the end");
  EXPECT_THROW(site.Run("page.asp", request, session, gone, options), GoneSink::Gone);
  EXPECT_EQ(Run("well"), "well");
}

TEST_F(SiteTest, TakesAQueryOfAMegabyte) {
  while (request.queryString.size() < (1 << 20)) {
    request.queryString += "k" + std::to_string(request.queryString.size()) + "=v&";
  }
  EXPECT_EQ(Script("var n = 0; for (var k in Request.QueryString) ++n; Response.Write(n === Request.QueryString.Count);"
                   "Server.CreateObject('KalvoTables.Context');"),
            "True");
  EXPECT_EQ(Failure(), "");
}

TEST_F(SiteTest, DescribesFailures) {
  EXPECT_EQ(Describe({FailureKind::Script, "m", "a/b.asp", 12}), "a/b.asp:12: m");
  EXPECT_EQ(Describe({FailureKind::NotFound, "m", "a/b.asp", 0}), "a/b.asp: m");
}

}  // namespace
}  // namespace kalvo::test
