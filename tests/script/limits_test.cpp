#include <chrono>

#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

class Limits : public PageTest {
 protected:
  Limits() { options.limits = {0.5, 64}; }

  // Runs code and answers how many seconds that took.
  double Timed(const std::string& code) {
    const auto start = std::chrono::steady_clock::now();
    Script(code);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  }

  FailureKind Kind() const { return result.failure ? result.failure->kind : FailureKind::NotFound; }
};

TEST_F(Limits, EndPagesThatNeverEnd) {
  const struct {
    const char* why;
    const char* code;
  } kCases[] = {
      {"an empty loop", "while (true);"},
      {"a loop that catches", "while (true) { try { while (true); } catch (e) {} }"},
      {"a loop that ends in loops", "try { while (true); } finally { while (true); }"},
      {"a loop of calls", "function f() {} while (true) f();"},
      {"a loop of operations", "var d = Server.CreateObject('KalvoTables.Display'); while (true) d.TableRowStart();"},
      {"a loop of failing operations",
       "var d = Server.CreateObject('KalvoTables.Display'); while (true) { try { d.OnStartPage(1); } catch (e) {} }"},
      {"a loop that flushes", "while (true) { Response.Write('x'); Response.Flush(); }"},
      {"a loop of slow built-ins", "var s = 'a'.repeat(1000000); while (true) s.indexOf('b');"},
      {"a loop in a sort", "[1, 2, 3].sort(function () { while (true); });"},
      {"a loop in a row source",
       "var c = new ActiveXObject('KalvoTables.KalvoColumn'), x = Server.CreateObject('KalvoTables.Context'),"
       "d = Server.CreateObject('KalvoTables.Display'); c.Initialize(2, 'N', 'F', 0, '', '', 1, false, 1, 0, '', 1, 1, "
       "'',"
       "false, ''); c.ConstructHTMLData(x, d, {GetField: function () { while (true); }});"},
      {"a loop in what an error says", "throw {toString: function () { while (true); }};"},
      {"a loop in the session's object", "Session.StaticObjects('endless');"},
  };
  options.statics = {{"endless", "endless.js", "while (true);"}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const double seconds = Timed(c.code);
    ASSERT_TRUE(result.failure);
    EXPECT_EQ(Kind(), FailureKind::TimeLimit);
    EXPECT_LT(seconds, 3);
  }
}

TEST_F(Limits, EndPagesThatNobodyWantsAnyMore) {
  const struct {
    const char* why;
    const char* code;
  } kCases[] = {
      {"an empty loop", "Response.Write('x'); while (true);"},
      {"a loop that catches", "while (true) { try { while (true); } catch (e) {} }"},
      {"a loop of operations", "var d = Server.CreateObject('KalvoTables.Display'); while (true) d.TableRowStart();"},
  };
  options.limits = {60, 64};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    int asked = 0;
    options.isWanted = [&asked] { return ++asked < 5; };
    Script(c.code);
    EXPECT_FALSE(result.failure) << "nobody is left to be told";
    EXPECT_FALSE(result.headSent);
    EXPECT_GE(asked, 5);
  }
}

TEST_F(Limits, EndScriptThatTheLibraryCalls) {
  session.values["kalvoadministrator"] = std::string("Yes");
  Timed(
      "var x = Server.CreateObject('KalvoTables.Context'), d = Server.CreateObject('KalvoTables.Display');"
      "var live = {GotoContainer: function () { while (true); }};"
      "x.EncapsulateGotoContainerFailure(live, 's', 'm', 'c', 0, 0, 'e'); Response.Write('not reached');");
  EXPECT_EQ(Kind(), FailureKind::TimeLimit);
  EXPECT_EQ(sink.body, "");
}

TEST_F(Limits, NameTheLineThatRuns) {
  options.limits.seconds = 2;
  Run("\n\n<% var n = 0; while (true) {\n  ++n;\n  ++n;\n} %>");
  ASSERT_TRUE(result.failure);
  EXPECT_EQ(result.failure->message, "the page has run for longer than its time limit");
  EXPECT_EQ(result.failure->file, "page.asp");
  EXPECT_GE(result.failure->line, 3);  // whichever line of the loop was running
  EXPECT_LE(result.failure->line, 6);
}

TEST_F(Limits, EndPagesThatTakeAllMemory) {
  options.limits.seconds = 20;
  const struct {
    const char* why;
    const char* code;
  } kCases[] = {
      {"texts", "var a = [], s = 'x'.repeat(1000); while (true) a.push(s + a.length);"},
      {"texts that are caught",
       "var a = [], s = 'x'.repeat(1000); while (true) { try { a.push(s + a.length); } catch (e) {} }"},
      {"one text that doubles", "var s = 'x'; while (true) { try { s += s; } catch (e) { s = 'x' + s; } }"},
      {"objects", "var a = {}; while (true) a = {a: a, b: [a]};"},
      {"a buffer", "while (true) { try { new Uint8Array(1e9); } catch (e) { Response.Write('x'); } }"},
      {"what is written", "var s = 'x'.repeat(100000); while (true) { try { Response.Write(s); } catch (e) {} }"},
      {"objects of the library",
       "var a = []; while (true) a.push(new ActiveXObject('KalvoTables.KalvoColumnDatabase'));"},
      {"objects that wait for the page's end", "while (true) Server.CreateObject('KalvoTables.Context');"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const double seconds = Timed(c.code);
    EXPECT_EQ(Kind(), FailureKind::MemoryLimit);
    EXPECT_LT(seconds, 15);
  }
}

TEST_F(Limits, LetPagesUseTheSameMemoryAgain) {
  options.limits = {20, 16};
  EXPECT_EQ(Script("for (var i = 0; i < 300; ++i) new ActiveXObject('KalvoTables.KalvoColumnDatabase');"
                   "for (i = 0; i < 3000; ++i) var s = 'x'.repeat(10000 + i);"
                   "for (i = 0; i < 300; ++i) { Response.Write('x'.repeat(100000)); Response.Clear(); }"
                   "Response.Write('done');"),
            "done");
  EXPECT_EQ(Failure(), "");
}

TEST_F(Limits, LetPagesKeepManyLongTextsThatDifferInLittle) {
  options.limits = {20, 256};
  const auto keep = [&](const std::string& count) {
    const double seconds =
        Timed("var a = [], s = 'x'.repeat(1000); for (var i = 0; i < " + count + "; ++i) a.push(s + i + s);");
    EXPECT_EQ(Failure(), "");
    return seconds;
  };
  // Four times as many take about four times as long, and not sixteen times, however fast the machine is.
  const double few = keep("7500");
  EXPECT_LT(keep("30000"), 9 * few);
}

TEST_F(Limits, LeaveTheNextPageUnharmed) {
  Script("while (true);");
  EXPECT_EQ(Script("Response.Write('well');"), "well");
  EXPECT_EQ(Failure(), "");
}

TEST_F(Limits, TurnDeepRecursionIntoAnErrorThatScriptMayCatch) {
  options.limits = {20, 256};
  const struct {
    const char* why;
    const char* code;
  } kCases[] = {
      {"functions", "function f() { f(); } f();"},
      {"callbacks", "function f() { [1].forEach(f); } f();"},
      {"accessors", "var o = {get x() { return this.x; }}; o.x;"},
      {"conversions", "var o = {toString: function () { return '' + this; }}; '' + o;"},
      {"through the library",
       "var x = Server.CreateObject('KalvoTables.Context');"
       "x.OnStartPage({Request: Request, Session: Session, Server: Server, Response: {Flush: function () {},"
       "Write: function () { x.FailureMessage('x'); }}}); x.FailureMessage('x');"},
      {"nested text of code", "eval(new Array(100000).join('(') + '1');"},
      {"nested text of an expression", "new RegExp(new Array(100000).join('(') + 'a');"},
      {"nested text of data", "JSON.parse(new Array(100000).join('['));"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Script(std::string("try {") + c.code + "} catch (e) { Response.Write('caught'); }"), "caught");
    EXPECT_EQ(Failure(), "");
  }
}

TEST_F(Limits, EndCatastrophicExpressions) {
  options.limits.seconds = 20;
  Timed("/^(a+)+$/.test('a'.repeat(60) + 'b');");
  EXPECT_EQ(Failure(), "page.asp:1: RangeError: regexp step limit");
  options.limits.seconds = 0.5;
  EXPECT_LT(Timed("while (true) { try { /^(a+)+$/.test('a'.repeat(60) + 'b'); } catch (e) {} }"), 10);
  EXPECT_EQ(Kind(), FailureKind::TimeLimit);
}

TEST_F(Limits, EndForGoodWithResponseEnd) {
  const char* kCode[] = {
      "Response.Write('a'); try { Response.End(); } catch (e) { Response.Write('caught'); }",
      "Response.Write('a'); try { Response.End(); } finally { Response.Write('caught'); }",
      "Response.Write('a'); while (true) { try { Response.End(); } catch (e) {} }",
      "Response.Write('a'); function f() { try { Response.End(); } catch (e) { f(); } } f(); Response.Write('b');",
      "Response.Write('a'); [1, 2].forEach(function () { Response.End(); }); Response.Write('b');",
      "var x = Server.CreateObject('KalvoTables.Context'); Response.Write('a'); x.EncapsulateGotoContainerFailure("
      "{GotoContainer: function () { Response.End(); }}, 's', 'm', 'c', 0, 0, 'e'); Response.Write('b');",
      "Response.Write('a'); new (function () { Response.End(); })(); Response.Write('b');",
      "Response.Write('a'); '' + {toString: function () { Response.End(); }}; Response.Write('b');",
  };
  for (const char* code : kCode) {
    EXPECT_EQ(Script(code), "a") << code;
    EXPECT_EQ(Failure(), "") << code;
  }
}

TEST_F(Limits, OfNothingEndAtOnce) {
  options.limits = {0, 64};
  Script("while (true);");
  EXPECT_EQ(Kind(), FailureKind::TimeLimit);
  options.limits = {5, 0};
  Script("");
  EXPECT_EQ(Kind(), FailureKind::MemoryLimit);
}

TEST_F(Limits, OfTimeHoldInsideOfASort) {
  options.limits.seconds = 0.5;
  Script("var a = []; for (var i = 0; i < 200000; ++i) a.push(Math.random()); a.sort();");
  ASSERT_TRUE(result.failure);
  EXPECT_EQ(result.failure->kind, FailureKind::TimeLimit);
}

}  // namespace
}  // namespace kalvo::test
