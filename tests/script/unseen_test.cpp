// What script of the page's own fails with while the library goes on: it is told, with its place.

#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

class Unseen : public PageTest {
 protected:
  // Renders a table of one column without rows, whose header is this function, and answers what was told.
  std::vector<std::string> Told(const std::string& header, const std::string& catalogue = "return column;") {
    Run("<%\nvar column = {\n  ConstructHTMLHeader: " + header +
        ",\n  ConstructHTMLData: function () { return ''; }};\n\n" +
        "var context = Server.CreateObject('KalvoTables.Context'), display = "
        "Server.CreateObject('KalvoTables.Display');\n"
        "var table = Server.CreateObject('KalvoTables.Table');\n"
        "table.Initialize(TABLETYPE_KALVODB, 5, 'T', table_NoTotals, false, false, false, true, [1],\n"
        "  'select A from T', 'A', 'ASC');\n"
        "table.BuildHTML(context, Response, display, { GetColumn: function (id) { " +
        catalogue + " } }, '', '');\n%>");
    EXPECT_EQ(Failure(), "");
    std::vector<std::string> told;
    for (const PageFailure& failure : result.unseen) told.push_back(DescribeWay(failure));
    return told;
  }

  void SetUp() override { database.results = {FakeResult{{"A"}, {{Value(std::string("1"))}}}}; }
};

using Lines = std::vector<std::string>;

TEST_F(Unseen, IsToldWithItsPlaceAndTheWayThere) {
  EXPECT_EQ(Told("function () { throw new Error('x'); }"),
            Lines{"page.asp:3: column: ConstructHTMLHeader: Error: x, called from page.asp:10"});
}

TEST_F(Unseen, IsAFunctionWithoutAResult) {
  EXPECT_EQ(Told("function () { }"), Lines{"page.asp:10: column: ConstructHTMLHeader: the function returned nothing"});
}

TEST_F(Unseen, IsAColumnThatThereIsNot) {
  EXPECT_EQ(Told("function () { return ''; }", "return undefined;"),
            (Lines{"page.asp:10: column catalogue: GetColumn: there is no column 1",     // for its header
                   "page.asp:10: column catalogue: GetColumn: there is no column 1"}));  // and for the row
}

TEST_F(Unseen, IsAMemberThatIsMissing) {
  EXPECT_EQ(Told("function () { return ''; }", "return {};"),
            (Lines{"page.asp:10: column: ConstructHTMLHeader: Error: column: there is no member ConstructHTMLHeader "
                   "(0x1B6)",
                   "page.asp:10: column: ConstructHTMLData: Error: column: there is no member ConstructHTMLData "
                   "(0x1B6)"}));
}

TEST_F(Unseen, IsNothingThatScriptGotItself) {
  Run("<% var d = new ActiveXObject('KalvoTables.Display');"
      "try { d.OnStartPage({}); } catch (e) { Response.Write(e.message); } %>");
  EXPECT_EQ(sink.body, "OnStartPage: Object doesn't support this property or method");
  EXPECT_EQ(result.unseenCount, 0U);
}

TEST_F(Unseen, IsCountedBeyondWhatIsKept) {
  Script(
      "var d = new ActiveXObject('KalvoTables.Context'), bad = { GotoContainer: function () { throw 'no'; } };"
      "d.OnStartPage(ScriptingContext);"
      "for (var i = 0; i < 50; ++i) d.EncapsulateGotoContainerFailure(bad, '', '', '', 0, 0, '');");
  EXPECT_EQ(Failure(), "");
  EXPECT_EQ(result.unseen.size(), 20U);
  EXPECT_EQ(result.unseenCount, 50U);
}

}  // namespace
}  // namespace kalvo::test
