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
                  "e.description + (e instanceof Error ? '' : ' wrong') + '|' + e.message); }");
  }
};

TEST_F(Errors, CarryNumberDescriptionAndMessage) {
  const struct {
    const char* why;
    const char* code;
    const char* thrown;
  } kCases[] = {
      {"outside of the catalogue", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn(129)",
       "800a0009 Subscript out of range|GetColumn: Subscript out of range"},
      {"too large for 16 bits", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn(70000)",
       "800a0006 Overflow|GetColumn: nColumnId: 70000: Overflow"},
      {"no number", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn('x')",
       "800a000d Type mismatch|GetColumn: nColumnId: \"x\" is no number"},
      {"null for a number", "new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn(null)",
       "800a005e Invalid use of Null|GetColumn: nColumnId: null is no number"},
      {"a scale of zero", "d.Kalvo_FormatNumericValue(1, 0, '', '')",
       "800a000b Division by zero|Kalvo_FormatNumericValue: Division by zero"},
      {"before the page's start", "new ActiveXObject('KalvoTables.Display').AddInputField('a', 'b')",
       "800a005b Object variable or With block variable not set|AddInputField: Object variable or With block variable "
       "not set"},
      {"an unknown class", "new ActiveXObject('KalvoTables.NoSuchClass')",
       "800a01ad ActiveX component can't create object|there is no KalvoTables.NoSuchClass"},
      {"another library's class", "Server.CreateObject('Scripting.Dictionary')",
       "800a01ad ActiveX component can't create object|CreateObject: there is no Scripting.Dictionary; an object of "
       "script serves: {}"},
      {"the intrinsic objects are no public classes", "Server.CreateObject('KalvoTables.Session')",
       "800a01ad ActiveX component can't create object|CreateObject: there is no KalvoTables.Session"},
      {"no object", "d.OnStartPage(7)",
       "800a01a8 Object required|OnStartPage: ASPScriptingContext: 7 is no object that serves here"},
      {"undefined for an object", "d.OnStartPage()",
       "800a01a8 Object required|OnStartPage: ASPScriptingContext was left out: Object required"},
      {"null for an object", "d.OnStartPage(null)",
       "800a01a8 Object required|OnStartPage: ASPScriptingContext: null is no object that serves here"},
      {"an object of another class", "new ActiveXObject('KalvoTables.Table').SetTopNParameters(d)",
       "800a000d Type mismatch|SetTopNParameters: pCtxt: an object is no object that serves here"},
      {"a script object for a class", "new ActiveXObject('KalvoTables.Table').SetTopNParameters({})",
       "800a000d Type mismatch|SetTopNParameters: pCtxt: an object is no object that serves here"},
      {"an operation on another object", "d.TableRowStart.call(Response)",
       "800a000d Type mismatch|TableRowStart: Type mismatch"},
      {"an operation on no object", "(0, d.TableRowStart)()",
       "800a01a8 Object required|TableRowStart: called without its object"},
      {"a property that is only read", "new ActiveXObject('KalvoTables.TableConstants').TABLES_DSN = 'x'",
       "800a01b6 Object doesn't support this property or method|TABLES_DSN: the property can only be read"},
      {"an object as text", "d.SimpleRowData({})",
       "800a01b6 Object doesn't support this property or method|SimpleRowData: szValue: an object is no text"},
      {"no descriptor", "d.GraphicInput('x', '')",
       "800a000d Type mismatch|GraphicInput: GraphicID: \"x\" is no image: an array of path, width and height"},
      {"a short descriptor", "d.GraphicInput(['x', 1], '')",
       "800a0009 Subscript out of range|GraphicInput: GraphicID: an array: Subscript out of range"},
      {"a descriptor of no size", "d.FolderGraphicID = ['x', 'wide', 1]",
       "800a000d Type mismatch|FolderGraphicID: value: an array is no image: an array of path, width and height"},
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
       "page.asp:3: Error: GetColumn: Subscript out of range (0x9)"},
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

TEST_F(Errors, OfACallNameTheLineOfTheCall) {
  Run("<%\nvar a = {};\nvar b = 2;\n\n\n\na.foo(1);\n%>");
  EXPECT_EQ(Failure(), "page.asp:7: TypeError: undefined not callable (property 'foo' of [object Object])");
  Run("<%\nfunction f(x) {\n  var y = x;\n\n  return y.\n    foo(1);\n}\nf({});\n%>");
  EXPECT_EQ(result.failure->line, 6) << Failure();
}

TEST_F(Errors, TellTheWayThere) {
  Put("outer.inc", "\n<!--#include file=\"inner.inc\"-->");
  Put("inner.inc", "<%\nfunction inner() { nosuch(); }\n%>");
  Run("<!--#include file=\"outer.inc\"-->\n<%\nfunction outer() {\n  inner();\n}\nouter();\n%>");
  ASSERT_TRUE(result.failure);
  EXPECT_EQ(DescribeWay(*result.failure),
            "inner.inc:2: ReferenceError: identifier 'nosuch' undefined, called from page.asp:4 in outer, called from "
            "page.asp:6, included from outer.inc:2, included from page.asp:1");
}

TEST_F(Errors, NameNothingOfTheProgramsOwnSource) {
  const std::string told = Script(
      "try { new ActiveXObject('KalvoTables.KalvoColumnDatabase').GetColumn(129); } catch (e) { "
      "Response.Write([e.fileName, e.lineNumber, e.stack].join('|')); }"
      "try { [].reduce(function () {}); } catch (e) { Response.Write([e.fileName, e.stack].join('|')); }");
  EXPECT_EQ(told.find(".cpp"), std::string::npos) << told;
  EXPECT_EQ(told.find(".c:"), std::string::npos) << told;
  EXPECT_EQ(told.find("page.asp|1|"), 0U) << told;
}

TEST_F(Errors, OfANewerLanguageSayWhatWasMet) {
  const struct {
    const char* code;
    const char* met;
  } kCases[] = {
      {"var f = x => 1;", "=>"},       {"var t = `a`;", "`"},
      {"let a = 1;", "let"},           {"class A {}", "class"},
      {"for (var a of [1]) {}", "of"}, {"var a = b?.c;", "?."},
      {"var a = b ?? c;", "??"},       {"function f(a = 1) {}", "a default parameter"},
      {"var a = [...b];", "..."},
  };
  for (const auto& c : kCases) {
    Script("\n" + std::string(c.code));
    EXPECT_EQ(Failure().find("page.asp:2: "), 0U) << c.code << ": " << Failure();
    const std::string hint = "; page scripts are ECMAScript 5, and " + std::string(c.met) + " is newer";
    EXPECT_NE(Failure().find(hint), std::string::npos) << c.code << ": " << Failure();
  }
  Script("var of = 1, let_ = '=>'; // class A\nif (;");
  EXPECT_EQ(Failure().find("ECMAScript"), std::string::npos) << Failure();
}

TEST_F(Errors, OfOperationsNameWhatWasLeftOut) {
  EXPECT_EQ(Thrown("Server.CreateObject('KalvoTables.KalvoforExchangeTableGenerator').BuildTable()"),
            "800a0009 Subscript out of range|BuildTable: Subscript out of range (tableId left out)");
}

TEST_F(Errors, OfAGeneratorWithoutAPageSaySo) {
  EXPECT_EQ(Thrown("new ActiveXObject('KalvoTables.KalvoforExchangeTableGenerator').BuildTable(2)"),
            "800a005b Object variable or With block variable not set|BuildTable: the object has no page: call "
            "OnStartPage first");
}

TEST_F(Errors, OfWritingAnUnknownPropertyNameIt) {
  EXPECT_EQ(Thrown("Response.Nonsense = 3"),
            "800a01b6 Object doesn't support this property or method|Response: there is no property Nonsense");
  EXPECT_EQ(Thrown("d.MesageGraphicID = ['x', 1, 1]"),
            "800a01b6 Object doesn't support this property or method|Display: there is no property MesageGraphicID");
  EXPECT_EQ(Script("var own = Object.create(Response); own.mine = 1; own.other = {}; own.other.x = 2;"
                   "Response.Write(own.mine + own.other.x);"),
            "3");
}

}  // namespace
}  // namespace kalvo::test
