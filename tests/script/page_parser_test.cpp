#include <gtest/gtest.h>

#include <map>

#include "host/script/page/page_parser.h"

namespace kalvo::test {
namespace {

using namespace host;

class MapFiles : public PageFiles {
 public:
  std::map<std::string, std::string> files;
  std::optional<std::string> Read(const std::string& path) override {
    const auto found = files.find(path);
    return found == files.end() ? std::nullopt : std::optional(found->second);
  }
};

class PageParser : public testing::Test {
 protected:
  PageSource Parse(const std::string& text) {
    files.files["a/page.asp"] = text;
    return ParsePage("a/page.asp", files);
  }

  // The script with its texts in their places: what the page writes when all its code is left out.
  std::string Failure(const std::string& text) {
    try {
      Parse(text);
      return "";
    } catch (const PageFault& fault) {
      return Describe(fault.failure);
    }
  }

  MapFiles files;
};

using Texts = std::vector<std::string>;

TEST_F(PageParser, KeepsTextsOutsideOfTheScript) {
  const PageSource page = Parse("a\r\n<% code %>b<%= value %>");
  EXPECT_EQ(page.texts, (Texts{"a\r\n", "b"}));
  EXPECT_EQ(page.script, "__text(0);\n code \n__text(1);\n__write(( value \n));\n");
  EXPECT_EQ(page.files, Texts{"a/page.asp"});
}

TEST_F(PageParser, KnowsTheLineOfEveryScriptLine) {
  const PageSource page = Parse("one\ntwo <% a;\nb;\r\nc; %>\n\n<%=\n d %>");
  // 1 text, 2-4 code, 5 text, 6-7 the value, 8 the end of writing it
  const std::uint32_t kLines[] = {1, 2, 3, 4, 4, 6, 7, 7};
  ASSERT_EQ(page.lines.size(), std::size(kLines));
  for (std::size_t i = 0; i < std::size(kLines); ++i) EXPECT_EQ(page.lines[i].line, kLines[i]) << i;
}

TEST_F(PageParser, CountsTheLineBreaksThatOnlyTheEngineKnows) {
  const PageSource page = Parse("<% a\u2028b\n c %>");
  ASSERT_EQ(page.lines.size(), 3U);
  EXPECT_EQ(page.PlaceOf(2).line, 1U);
  EXPECT_EQ(page.PlaceOf(3).line, 2U);
}

TEST_F(PageParser, TakesLinesFromTheIncludeThatTheyStandIn) {
  files.files["a/inc/b.inc"] = "x\n<% b; %>";
  const PageSource page = Parse("<!--#include file=\"inc/b.inc\"-->\n<% a; %>");
  EXPECT_EQ(page.files, (Texts{"a/page.asp", "a/inc/b.inc"}));
  EXPECT_EQ(page.files[page.PlaceOf(2).file], "a/inc/b.inc");
  EXPECT_EQ(page.PlaceOf(2).line, 2U);
  EXPECT_EQ(page.files[page.PlaceOf(4).file], "a/page.asp");
  EXPECT_EQ(page.PlaceOf(4).line, 2U);
}

TEST_F(PageParser, FindsIncludesFromTheFileAndFromTheRoot) {
  files.files["a/x.inc"] = "near";
  files.files["x.inc"] = "root";
  files.files["a/b/y.inc"] = "<!--#include file=\"../x.inc\"-->";
  EXPECT_EQ(Parse("<!--#include file=\"x.inc\"-->").texts, Texts{"near"});
  EXPECT_EQ(Parse("<!-- #INCLUDE  Virtual = \"/x.inc\" -->").texts, Texts{"root"});
  EXPECT_EQ(Parse("<!--#include file=\"../x.inc\"-->").texts, Texts{"root"});
  EXPECT_EQ(Parse("<!--#include file=\"b\\y.inc\"-->").texts, Texts{"near"});
}

TEST_F(PageParser, TakesTheFirstLinesDirectiveAndItsLineBreak) {
  EXPECT_EQ(Parse("<%@ Language=\"JavaScript\" CodePage=65001 %>\r\nx").texts, Texts{"x"});
  EXPECT_EQ(Parse("\xEF\xBB\xBF<%@ LANGUAGE = JScript %>x").texts, Texts{"x"});
  EXPECT_EQ(Parse("\n<%@%>\n\nx").texts, Texts{"\nx"});
}

TEST_F(PageParser, TakesWhatThePageDeclares) {
  const std::string hash = "sha256-BpXhXx2vRLHwaBAlwgc7ySqE/qjSuaDmk4N/0EX3KB4=";
  files.files["a/b.inc"] = "<%@ SortWords=\"Included\" %>";
  const PageDirective directive =
      Parse("<%@ Language=\"JavaScript\" sortwords = \"Owner, d.Size\tLast_Seen\" HANDLERS='" + hash + " " + hash +
            "'\r\nStyles=" + hash + " Identifiers=\"own\" CodePage=65001 Trace %><!--#include file=\"b.inc\"-->")
          .directive;
  EXPECT_EQ(directive.sortWords, (Texts{"Owner", "d.Size", "Last_Seen"}));
  EXPECT_EQ(directive.handlers, (Texts{hash, hash}));
  EXPECT_EQ(directive.styles, Texts{hash});
  EXPECT_TRUE(directive.ownIdentifiers);
  EXPECT_FALSE(Parse("<%@ Language=JScript %>").directive.ownIdentifiers);
}

TEST_F(PageParser, RefusesADeclarationThatCannotBeMeant) {
  const std::string sort =
      "a/page.asp:1: SortWords of the page's first line takes names of letters, digits, \"_\" and "
      "\".\", with commas between them";
  const std::string handlers =
      "a/page.asp:1: Handlers of the page's first line takes hashes such as sha256-..., with blanks between them";
  const std::string letters(43, 'A');
  for (const std::string& words :
       {std::string("SortWords"), std::string("SortWords=\"\""), std::string("SortWords=\", ,\""),
        std::string("SortWords=\"a;b\""), std::string("SortWords=\"a\", b'"), "SortWords=" + std::string(129, 'a'),
        std::string("SortWords=\"\u00e9\"")}) {
    const bool taken = words == "SortWords=\"a\", b'";
    EXPECT_EQ(Failure("<%@ " + words + " %>"), taken ? "" : sort) << words;
  }
  for (const std::string& words :
       {std::string("'unsafe-inline'"), "sha256-" + letters, "sha256-" + letters + "==", "sha256-" + letters + ";",
        "sha384-" + letters + "=", "sha256-" + std::string(41, 'A') + "===", "nonce-" + letters + "="}) {
    EXPECT_EQ(Failure("<%@ Handlers=\"" + words + "\" %>"), handlers) << words;
  }
  EXPECT_EQ(Failure("<%@ Handlers=\"sha256-" + letters + "=\" %>"), "");
  EXPECT_EQ(Failure("<%@ Identifiers=\"any\" %>"),
            "a/page.asp:1: Identifiers of the page's first line takes the word own");
}

TEST_F(PageParser, LeavesOtherCommentsAlone) {
  EXPECT_EQ(Parse("<!-- x --><!---->").texts, Texts{"<!-- x --><!---->"});
  EXPECT_EQ(Parse("<!-- #exclude -->").texts, Texts{"<!-- #exclude -->"});
}

TEST_F(PageParser, RefusesWhatIsNotUtf8) {
  EXPECT_EQ(Failure("a\n\xFFz"), "a/page.asp:2: the file is not UTF-8");
  EXPECT_EQ(Failure("\r\n\r\ngr\xFC\xDF"), "a/page.asp:3: the file is not UTF-8");
  EXPECT_EQ(Failure(std::string("<\0%\0 \0", 6)), "a/page.asp:1: the file is not UTF-8");
  EXPECT_EQ(Failure("\xFF\xFE<"), "a/page.asp:1: the file is not UTF-8");
  EXPECT_EQ(Parse("a\uFFFDz").texts, Texts{"a\uFFFDz"});
  files.files["a/latin.inc"] = "x\n\nk\xE4se";
  EXPECT_EQ(Failure("<!--#include file=\"latin.inc\"-->"), "a/latin.inc:3: the file is not UTF-8");
}

TEST_F(PageParser, TakesTheDirectiveBeforeAllCode) {
  EXPECT_EQ(Parse("x <%@ Language=JScript SortWords=\"Owner\" %>\ny").directive.sortWords, Texts{"Owner"});
  EXPECT_EQ(Failure("<% ; %><%@ Language=JScript %>"),
            "a/page.asp:1: the block \"<%@\" must stand before all code of its file");
  EXPECT_EQ(Failure("\n<%@ Language=VBScript %>"), "a/page.asp:2: the page's language must be JavaScript");
  EXPECT_EQ(Failure("<%@ Language=JScript CodePage=1252 %>"),
            "a/page.asp:1: a page is UTF-8: CodePage is 65001 or left out");
  EXPECT_EQ(Failure("<%@ CodePage=\"65001\" %>"), "");
}

TEST_F(PageParser, RunsServerScriptElements) {
  EXPECT_EQ(Parse("a<script runat=\"server\" language=\"JScript\">var b = 1;</script>c").script,
            "__text(0);\nvar b = 1;\n__text(1);\n");
  EXPECT_EQ(Parse("<SCRIPT RUNAT=server>f();</SCRIPT >").script, "f();\n");
  files.files["a/code.js"] = "function f() { return '<%'; }";
  EXPECT_EQ(Parse("<script runat='server' src='code.js'></script>").script, "function f() { return '<%'; }\n");
  EXPECT_EQ(Parse("<script runat=\"server\" src=\"code.js\"/>x").script, "function f() { return '<%'; }\n__text(0);\n");
  EXPECT_EQ(Parse("<script src=\"x.js\">runat=server</script>").texts,
            Texts{"<script src=\"x.js\">runat=server</script>"});
  EXPECT_EQ(Failure("\n<script runat=server>f();"),
            "a/page.asp:2: the element \"script\" does not end with \"</script>\"");
  EXPECT_EQ(Failure("<script runat=server language=vbscript>x</script>"),
            "a/page.asp:1: the page's language must be JavaScript");
  EXPECT_EQ(Failure("<script runat=server src=\"no.js\"></script>"), "a/page.asp:1: there is no include \"no.js\"");
}

TEST_F(PageParser, TakesABlankBeforeTheExpression) {
  EXPECT_EQ(Parse("<% = 1 %>").script, "__write(( 1 \n));\n");
  EXPECT_EQ(Parse("<%\n= 1 %>").script, "__write(( 1 \n));\n");
}

TEST_F(PageParser, LetsItemsBeAssigned) {
  const struct {
    const char* why;
    const char* code;
    const char* script;
  } kCases[] = {
      {"a session's item", "Session('a') = 1;", "Session.Reference('a').value = 1;"},
      {"in its place in a line", "if (x) Session(f(1)) += 'b'", "if (x) Session.Reference(f(1)).value += 'b'"},
      {"a cookie", "Response.Cookies('a') = b;", "Response.Cookies('a').value = b;"},
      {"one in another", "Session(Session('a')) = 1", "Session.Reference(Session('a')).value = 1"},
      {"over lines", "Session(\n'a'\n) =\n1", "Session.Reference(\n'a'\n).value =\n1"},
      {"no comparison", "if (Session('a') == 1) {}", "if (Session('a') == 1) {}"},
      {"no other object", "my.Session('a') = 1", "my.Session('a') = 1"},
      {"no text", "x = \"Session('a') = 1\"", "x = \"Session('a') = 1\""},
      {"no comment", "// Session('a') = 1\n/* Session('a') = 1 */", "// Session('a') = 1\n/* Session('a') = 1 */"},
      {"no regular expression", "x = /Session('a') = 1[/\"]/.test(y)", "x = /Session('a') = 1[/\"]/.test(y)"},
      {"a division is none", "a / b; Session('a') = 1 / 2", "a / b; Session.Reference('a').value = 1 / 2"},
      {"not closed", "Session('a' = 1", "Session('a' = 1"},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(Parse("<%" + std::string(c.code) + "%>").script, std::string(c.script) + "\n") << c.why;
  }
}

TEST_F(PageParser, NamesWhatIsWrongAndWhere) {
  files.files["a/self.inc"] = "<!--#include file=\"self.inc\"-->";
  files.files["a/back.inc"] = "\n<!--#include file=\"page.asp\"-->";
  files.files["a/open.inc"] = "\n\n<% x";
  const struct {
    const char* text;
    const char* failure;
  } kCases[] = {
      {"a\n<% x", "a/page.asp:2: the block \"<%\" does not end with \"%>\""},
      {"a\n\n<%= x", "a/page.asp:3: the block \"<%\" does not end with \"%>\""},
      {"<%@ x", "a/page.asp:1: the block \"<%@\" does not end with \"%>\""},
      {"<% ; %><%@ Language=JScript %>", "a/page.asp:1: the block \"<%@\" must stand before all code of its file"},
      {"<%@ Language=VBScript %>", "a/page.asp:1: the page's language must be JavaScript"},
      {"\n<%=  %>", "a/page.asp:2: the block \"<%=\" has no expression"},
      {"<%=%>", "a/page.asp:1: the block \"<%=\" has no expression"},
      {"\n<!--#include file=\"x.inc\"", "a/page.asp:2: the include does not end with \"-->\""},
      {"\n<!--#include file=\"x.inc\"-->", "a/page.asp:2: there is no include \"x.inc\""},
      {"<!--#include file='x.inc\"-->", "a/page.asp:1: an include must name its file in quotation marks"},
      {"<!--#include file=x.inc-->", "a/page.asp:1: an include must name its file in quotation marks"},
      {"<!--#include file=\"\"-->", "a/page.asp:1: an include must name its file in quotation marks"},
      {"<!--#include \"x.inc\"-->", "a/page.asp:1: an include must name file=\"...\" or virtual=\"...\""},
      {"<!--#include-->", "a/page.asp:1: an include must name file=\"...\" or virtual=\"...\""},
      {"<!--#include file=\"/x.inc\"-->",
       "a/page.asp:1: an include of a file must be relative; name it with virtual=\"...\""},
      {"<!--#include file=\"../../etc/passwd\"-->",
       "a/page.asp:1: the include \"../../etc/passwd\" leads out of the site"},
      {"<!--#include virtual=\"/../x\"-->", "a/page.asp:1: the include \"/../x\" leads out of the site"},
      {"<!--#include file=\"..\\..\\x\"-->", "a/page.asp:1: the include \"..\\..\\x\" leads out of the site"},
      {"<!--#include file=\"page.asp\"-->", "a/page.asp:1: the include \"page.asp\" includes itself"},
      {"<!--#include file=\"self.inc\"-->", "a/self.inc:1: the include \"self.inc\" includes itself"},
      {"<!--#include file=\"back.inc\"-->", "a/back.inc:2: the include \"page.asp\" includes itself"},
      {"<!--#include file=\"open.inc\"-->", "a/open.inc:3: the block \"<%\" does not end with \"%>\""},
  };
  for (const auto& c : kCases) EXPECT_EQ(Failure(c.text), c.failure) << c.text;
}

TEST_F(PageParser, RefusesIncludesNestedTooDeeply) {
  for (int i = 0; i < 40; ++i) {
    files.files["a/" + std::to_string(i)] = "<!--#include file=\"" + std::to_string(i + 1) + "\"-->";
  }
  EXPECT_EQ(Failure("<!--#include file=\"0\"-->"), "a/15:1: includes are nested too deeply");
}

TEST_F(PageParser, RefusesPagesThatGrowWithoutEnd) {
  for (int i = 0; i < 10; ++i) {
    const std::string include = "<!--#include file=\"" + std::to_string(i + 1) + "\"-->";
    std::string text;
    for (int copies = 0; copies < 20; ++copies) text += include;
    files.files["a/" + std::to_string(i)] = text;
  }
  files.files["a/10"] = std::string(100, 'x');
  EXPECT_NE(Failure("<!--#include file=\"0\"-->").find("larger than 16 MiB"), std::string::npos);
}

TEST_F(PageParser, ReadsLargePagesOfManyPiecesInOnePass) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "<!-- x --><% ; %>";
  EXPECT_EQ(Parse(text).texts.size(), 100000U);
}

TEST_F(PageParser, FindsNoPageOutsideOfTheRoot) {
  for (const char* page : {"nosuch.asp", "../a/page.asp", "", "/", "..", "a/../../x"}) {
    try {
      ParsePage(page, files);
      ADD_FAILURE() << page;
    } catch (const PageFault& fault) {
      EXPECT_EQ(fault.failure.kind, FailureKind::NotFound) << page;
    }
  }
}

}  // namespace
}  // namespace kalvo::test
