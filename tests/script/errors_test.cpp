#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

class Errors : public PageTest {
 protected:
  // What code throws: its number and description.
  std::string Thrown(const std::string& code) {
    return Script("var d = Server.CreateObject('KalvoTables.Display'); try {" + code +
                  "; Response.Write('nothing'); } catch (e) { Response.Write((e.number >>> 0).toString(16) + ' ' + "
                  "e.description + (e.message === e.description && e instanceof Error ? '' : ' wrong')); }");
  }
};

TEST_F(Errors, CarryNumberDescriptionAndMessage) {
  const struct {
    const char* why;
    const char* code;
    const char* thrown;
  } kCases[] = {
      {"outside of the catalogue", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn(129)",
       "800a0009 Subscript out of range"},
      {"too large for 16 bits", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn(70000)",
       "800a0006 Overflow"},
      {"no number", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn('x')", "800a000d Type mismatch"},
      {"null for a number", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn(null)",
       "800a005e Invalid use of Null"},
      {"a scale of zero", "d.Kalvo_FormatNumericValue(1, 0, '', '')", "800a000b Division by zero"},
      {"before the page's start", "new ActiveXObject('KalvoTables.Display').AddInputField('a', 'b')",
       "800a005b Object variable or With block variable not set"},
      {"an unknown class", "new ActiveXObject('KalvoTables.NoSuchClass')",
       "800a01ad ActiveX component can't create object"},
      {"another library's class", "Server.CreateObject('Scripting.Dictionary')",
       "800a01ad ActiveX component can't create object"},
      {"the intrinsic objects are no public classes", "Server.CreateObject('KalvoTables.Session')",
       "800a01ad ActiveX component can't create object"},
      {"no object", "d.OnStartPage(7)", "800a01a8 Object required"},
      {"undefined for an object", "d.OnStartPage()", "800a01a8 Object required"},
      {"null for an object", "d.OnStartPage(null)", "800a01a8 Object required"},
      {"an object of another class", "new ActiveXObject('KalvoTables.Table').SetTopNParameters(d)",
       "800a000d Type mismatch"},
      {"a script object for a class", "new ActiveXObject('KalvoTables.Table').SetTopNParameters({})",
       "800a000d Type mismatch"},
      {"an operation on another object", "d.TableRowStart.call(Response)", "800a000d Type mismatch"},
      {"an operation on no object", "(0, d.TableRowStart)()", "800a01a8 Object required"},
      {"a property that is only read", "new ActiveXObject('KalvoTables.TableConstants').TABLES_DSN = 'x'",
       "800a01b6 Object doesn't support this property or method"},
      {"an object as text", "d.SimpleRowData({})", "800a01b6 Object doesn't support this property or method"},
      {"no descriptor", "d.GraphicInput('x', '')", "800a000d Type mismatch"},
      {"a short descriptor", "d.GraphicInput(['x', 1], '')", "800a0009 Subscript out of range"},
      {"a descriptor of no size", "d.FolderGraphicID = ['x', 'wide', 1]", "800a000d Type mismatch"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Thrown(c.code), c.thrown);
  }
}

TEST_F(Errors, KeepTheNumberOfAnExceptionThatPassesThrough) {
  const struct {
    const char* why;
    const char* thrown;
    const char* caught;
  } kCases[] = {
      {"a small number", "5", "5"},
      {"the largest of 16 bits", "65535", "65535"},
      {"a run-time error that is none of the program's own", "-2146828283", "-2146828283"},
      {"one that is", "-2146828275", "-2146828275"},
      {"a component's", "-2147467259", "-2147467259"},
      {"no number at all", "undefined", "-2147467259"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Script(std::string("var x = new ActiveXObject('KalvoTables.Context'); x.OnStartPage({Response: Response,"
                                 "Request: Request, Session: Session, Server: {HTMLEncode: function () {"
                                 "throw {number: ") +
                     c.thrown +
                     ", description: 'd'}; }}}); try { x.ServerHTMLEncode('a'); }"
                     "catch (e) { Response.Write(e.number + e.description); }"),
              std::string(c.caught) + "d");
  }
}

TEST_F(Errors, NamePageAndLine) {
  const struct {
    const char* why;
    const char* page;
    const char* failure;
  } kCases[] = {
      {"thrown by script", "a\n<%\nthrow new Error('boom'); %>", "page.asp:3: Error: boom"},
      {"thrown in a function", "<%\nfunction f() {\n throw new Error('boom'); }\n\nf(); %>", "page.asp:3: Error: boom"},
      {"a name that there is not", "\n\n<%= nosuch %>", "page.asp:3: ReferenceError: identifier 'nosuch' undefined"},
      {"thrown by an operation", "\n<% new ActiveXObject('KalvoTables.KalvoColumnDatabase')\n.GetColumn(500) %>",
       "page.asp:3: Error: Subscript out of range (0x9)"},
      {"thrown by a built-in", "\n<% JSON.parse('{x') %>", "page.asp:2: SyntaxError: invalid json (at offset 2)"},
      {"a thrown text", "\n<%\n\nthrow 'text'; %>", "page.asp:4: text"},
      {"a thrown object", "\n<% throw {number: -2147221504, description: 'mine'}; %>", "page.asp:2: mine (0x80040000)"},
      {"a thrown nothing", "\n<% throw undefined; %>", "page.asp:2: undefined"},
      {"after a comment that ends with its block", "<% var a = 1 // one %>\n<% f(); %>",
       "page.asp:2: ReferenceError: identifier 'f' undefined"},
      {"in a callback", "<%\n[1].forEach(function () {\n nosuch(); }); %>",
       "page.asp:3: ReferenceError: identifier 'nosuch' undefined"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    Run(c.page);
    EXPECT_EQ(Failure(), c.failure);
    EXPECT_EQ(result.failure->kind, FailureKind::Script);
  }
}

TEST_F(Errors, NameTheIncludeThatFails) {
  Put("inc/b.inc", "x\n\n<% nosuch(); %>");
  Run("a\n<!--#include file=\"inc/b.inc\"-->");
  EXPECT_EQ(Failure(), "inc/b.inc:3: ReferenceError: identifier 'nosuch' undefined");
  Put("inc/b.inc", "x\n<% var = 3; %>");
  Run("a\n<!--#include file=\"inc/b.inc\"--> ");
  EXPECT_EQ(Failure(), "inc/b.inc:2: SyntaxError: invalid variable declaration");
  EXPECT_EQ(result.failure->kind, FailureKind::Syntax);
}

TEST_F(Errors, OfSyntaxLeaveThePageUnrun) {
  EXPECT_EQ(Run("text <% Response.Flush(); %>\n<% x = ; %>"), "");
  EXPECT_EQ(Failure(), "page.asp:2: SyntaxError: empty expression not allowed");
}

TEST_F(Errors, OfSyntaxAtTheEndOfThePageNameItsLastLine) {
  Put("end.inc", "a\n\n<% var a; %>\n");
  const struct {
    const char* why;
    const char* page;
    const char* failure;
  } kCases[] = {
      {"an open condition", "x\n<% if ( %>", "page.asp:2: SyntaxError: parse error"},
      {"an open block", "<%\nif (true) {\n%>", "page.asp:3: SyntaxError: parse error"},
      {"an open block and text", "<%\nif (true) { %>\n\ntext\n", "page.asp:2: SyntaxError: parse error"},
      {"an open block and an include", "<% if (true) { %>\n<!--#include file=\"end.inc\"-->",
       "page.asp:1: SyntaxError: parse error"},
      {"an open comment", "x\n<% /* %>", "page.asp:2: SyntaxError: unterminated comment"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Run(c.page), "");
    EXPECT_EQ(Failure(), c.failure);
    EXPECT_EQ(result.failure->kind, FailureKind::Syntax);
  }
}

TEST_F(Errors, LeaveWhatWasWrittenToTheCaller) {
  EXPECT_EQ(Run("a<% Response.Flush(); %>b<% nosuch(); %>c"), "ab");
  EXPECT_TRUE(result.headSent);
  EXPECT_EQ(result.unsent, "b");
  Run("a<% Response.Status = '500 No'; nosuch(); %>c");
  EXPECT_FALSE(result.headSent);
  EXPECT_EQ(result.unsent, "a");
  EXPECT_EQ(result.head.status, 500);
}

TEST_F(Errors, AreReadHoweverTheyAreMade) {
  Script("throw {get message() { throw 1; }, get number() { throw 2; }, toString: function () { throw 3; }};");
  ASSERT_TRUE(result.failure);
  Script("throw Object.create(null);");
  ASSERT_TRUE(result.failure);
  Script("var e = new Error('x'); e.stack = 'y'; e.number = NaN; e.description = {}; throw e;");
  EXPECT_EQ(Failure(), "page.asp: Error: x");
}

TEST_F(Errors, OfThePageBeforeAreForgotten) {
  LeaveError(Error(9, "old"));
  EXPECT_EQ(Script("var c = Server.CreateObject('KalvoTables.Context'); Response.Write(c.Failure('x'));"), "False");
}

TEST_F(Errors, OfAMissingPageAreNotFound) {
  for (const char* page : {"nosuch.asp", "../page.asp", "", "/"}) {
    RunFile(page);
    ASSERT_TRUE(result.failure) << page;
    EXPECT_EQ(result.failure->kind, FailureKind::NotFound) << page;
  }
}

TEST_F(Errors, WrittenByAssigningToASessionCallNameTheLine) {
  Run("\n<% Session('x') = 'Yes'; %>");
  EXPECT_NE(Failure().find("page.asp:2: ReferenceError: invalid lvalue"), std::string::npos) << Failure();
}

}  // namespace
}  // namespace kalvo::test
