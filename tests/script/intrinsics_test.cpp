#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

class Intrinsics : public PageTest {};

TEST_F(Intrinsics, EnumerateTheKeysOfARequestInOrder) {
  request.queryString = "b=1&A=2&a=3&Count=9&toString=t&length=l";
  EXPECT_EQ(Script("for (var k in Request.QueryString) Response.Write(k + '=' + Request.QueryString(k) + ';');"),
            "b=1;A=2, 3;Count=9;toString=t;length=l;");
  EXPECT_EQ(Script("Response.Write(Request.QueryString.Count + ' ' + Request.QueryString);"),
            "5 b=1&A=2&a=3&Count=9&toString=t&length=l");
}

TEST_F(Intrinsics, AnswerTheValuesOfAKey) {
  request.queryString = "a=2&A=3";
  EXPECT_EQ(Script("var v = Request.QueryString('a'); Response.Write([v.Count, v.Item(1), v.Item(2), v(2), v + '!', "
                   "v == '2, 3'].join('|'));"),
            "2|2|3|3|2, 3!|true");
  EXPECT_EQ(Script("var v = Request.QueryString('none'); Response.Write(v.Count + '[' + v + ']');"), "0[]");
  EXPECT_EQ(Script("try { Request.QueryString('a').Item(3); } catch (e) { Response.Write(e.number); }"), "-2146828279");
}

TEST_F(Intrinsics, ReadFormCookiesAndServerVariables) {
  request.method = "POST";
  request.form = "x=%E2%82%AC&y=2";
  request.cookies = "sid=s1";
  request.url = "/r.asp";
  request.logonName = "DOMAIN\\Ann";
  EXPECT_EQ(Script("Response.Write([Request.Form('x'), Request.Cookies('SID'), Request.ServerVariables('URL'), "
                   "Request('y'), Request('sid'), Request('logon_user'), Request('none')].join('|'));"),
            "\u20AC|s1|/r.asp|2|s1|DOMAIN\\Ann|");
}

TEST_F(Intrinsics, ArePassedToOperationsAsTheirText) {
  request.queryString = "a=1&a=2";
  EXPECT_EQ(Script("Response.Write(Server.URLEncode(Request.QueryString('a')));"), "1%2C+2");
}

TEST_F(Intrinsics, WriteValuesAsTheProgramWritesThem) {
  EXPECT_EQ(Run("<%= true %>,<%= null %>,<%= undefined %>,<%= 0.1 %>,<%= 1e20 %>,<%= -7 %>,<%= [1,2] %>,<%= 'x' %>"),
            "True,,,0.1,1E+20,-7,1,2,x");
  EXPECT_EQ(Run("<%= {toString: function () { return 'own'; }} %>"), "own");
}

TEST_F(Intrinsics, BufferTheResponseUntilItIsFlushed) {
  EXPECT_EQ(
      Script("Response.Write('a'); Response.Clear(); Response.Write('b'); Response.Flush(); Response.Write('c');"),
      "bc");
  EXPECT_EQ(sink.pieces, 2);
  ASSERT_EQ(sink.heads.size(), 1U);
  EXPECT_EQ(sink.heads[0].status, 200);
  EXPECT_EQ(sink.heads[0].contentType, "text/html; charset=utf-8");
}

TEST_F(Intrinsics, SendTheHeadOfAnEmptyPage) {
  EXPECT_EQ(Run(""), "");
  EXPECT_EQ(sink.heads.size(), 1U);
}

TEST_F(Intrinsics, SetStatusTypeAndHeaders) {
  Script(
      "Response.Status = '404 Not Found'; Response.ContentType = 'text/plain'; Response.AddHeader('X-A', 'b');"
      "Response.AddHeader('X-A', 'c'); Response.Write(Response.Status + Response.ContentType);");
  EXPECT_EQ(sink.body, "404 Not Foundtext/plain");
  ASSERT_EQ(sink.heads.size(), 1U);
  EXPECT_EQ(sink.heads[0].status, 404);
  EXPECT_EQ(sink.heads[0].reason, "Not Found");
  EXPECT_EQ(sink.heads[0].contentType, "text/plain; charset=utf-8");
  EXPECT_EQ(sink.heads[0].headers, (NamedTexts{{"X-A", "b"}, {"X-A", "c"}}));
}

TEST_F(Intrinsics, RefuseHeadersThatWouldBreakTheResponse) {
  const char* kCode[] = {
      "Response.AddHeader('X', 'a\\r\\nSet-Cookie: b')",
      "Response.AddHeader('X: y', 'a')",
      "Response.AddHeader('', 'a')",
      "Response.Redirect('/x\\nY: z')",
      "Response.ContentType = 'text/html\\r\\n'",
      "Response.Status = '200 OK\\r\\nX: y'",
      "Response.Status = 'OK'",
      "Response.Status = '99 Low'",
      "Response.Flush(); Response.AddHeader('X', 'late')",
      "Response.Flush(); Response.Redirect('/late')",
  };
  for (const char* code : kCode) {
    Script(code);
    ASSERT_TRUE(result.failure) << code;
    EXPECT_EQ(result.failure->kind, FailureKind::Script) << code;
    for (const PageHead& head : sink.heads) EXPECT_TRUE(head.headers.empty()) << code;
  }
}

TEST_F(Intrinsics, RedirectAndEnd) {
  EXPECT_EQ(Script("Response.Write('lost'); Response.Redirect('/x?y=1'); Response.Write('not reached');"), "");
  EXPECT_EQ(Failure(), "");
  EXPECT_EQ(sink.heads[0].status, 302);
  EXPECT_EQ(sink.heads[0].headers, (NamedTexts{{"Location", "/x?y=1"}}));
}

TEST_F(Intrinsics, EncodeHtmlAndUrls) {
  EXPECT_EQ(Script("Response.Write(Server.HTMLEncode('a<b>&\"\\'\u00EB'));"), "a&lt;b&gt;&amp;&quot;'\u00EB");
  EXPECT_EQ(Script("Response.Write(Server.URLEncode('a.b-c_d e\u00EB\\uD83D\\uDE00'));"),
            "a%2Eb%2Dc%5Fd+e%C3%AB%F0%9F%98%80");
}

TEST_F(Intrinsics, MapPathsBelowTheRootOnly) {
  Put("sub/page.asp", "<%= Server.MapPath('x.txt') %>|<%= Server.MapPath('/x.txt') %>|<%= Server.MapPath('/') %>");
  const std::string root = std::filesystem::canonical(folder.Path()).string();
  EXPECT_EQ(RunFile("sub/page.asp"), root + "/sub/x.txt|" + root + "/x.txt|" + root + "/");
  Script("Server.MapPath('../../etc/passwd')");
  EXPECT_NE(Failure().find("leads out of the site"), std::string::npos);
}

TEST_F(Intrinsics, ReadAndWriteTheSession) {
  session.values["kalvoadministrator"] = std::string("Yes");
  EXPECT_EQ(Script("Response.Write(Session('KalvoAdministrator') + Session.Value('kalvoadministrator'));"
                   "Session.Value('n', 7); Session.Value('t', '\u20AC'); Session.Value('gone', null);"
                   "Response.Write(typeof Session('none') + Session('n'));"),
            "YesYesundefined7");
  EXPECT_EQ(session.values["n"], Value(7));
  EXPECT_EQ(session.values["t"], Value(std::string("\u20AC")));
  EXPECT_EQ(session.values["gone"], Value(Null{}));
}

TEST_F(Intrinsics, KeepNoObjectsInTheSession) {
  EXPECT_EQ(Script("try { Session.Value('x', {}); } catch (e) { Response.Write(e.number); }"), "-2146828275");
  EXPECT_EQ(session.values.count("x"), 0U);
}

TEST_F(Intrinsics, AbandonTheSession) {
  Script("Session.Abandon();");
  EXPECT_TRUE(session.abandoned);
}

TEST_F(Intrinsics, MakeScriptStaticsOnce) {
  options.statics = {{"gThing", "thing.js", "({n: 0, Next: function () { return ++this.n; }})"}};
  EXPECT_EQ(Script("Session.StaticObjects('gThing').Next(); Response.Write(Session.StaticObjects('GTHING').Next());"
                   "Response.Write(Session.StaticObjects('gThing') === Session.StaticObjects('gThing'));"
                   "Response.Write(typeof Session.StaticObjects('none'));"),
            "2Trueundefined");
}

TEST_F(Intrinsics, NameTheFileOfAFailingStatic) {
  options.statics = {{"gThing", "thing.js", "\n\nnosuch()"}};
  Script("\nSession.StaticObjects('gThing')");
  EXPECT_NE(Failure().find("nosuch"), std::string::npos);
}

TEST_F(Intrinsics, AskForTheLiveDrillerOncePerPage) {
  session.driller = std::make_shared<FakeLive>();
  EXPECT_EQ(Script("var d = Session.StaticObjects('gLiveDriller'); Response.Write(d.MailboxOwner('s', 'm'));"
                   "Response.Write(d === Session.StaticObjects('glivedriller'));"),
            "DOMAIN\\kenTrue");
  EXPECT_EQ(session.drillersMade, 1);
  session.driller = nullptr;
  EXPECT_EQ(Script("Response.Write(typeof Session.StaticObjects('gLiveDriller'));"), "undefined");
}

TEST_F(Intrinsics, RefuseHeadersThatTheServerSets) {
  for (const char* name : {"Content-Length", "transfer-encoding", "Connection"}) {
    Script("Response.AddHeader('" + std::string(name) + "', '3')");
    EXPECT_NE(Failure().find("is set by the server alone"), std::string::npos) << name << ": " << Failure();
  }
}

TEST_F(Intrinsics, EncodeTheAddressOfARedirection) {
  Script("Response.Redirect('/a b?x=\u00E4&y=%41')");
  EXPECT_EQ(sink.heads[0].headers, (NamedTexts{{"Location", "/a%20b?x=%C3%A4&y=%41"}}));
  Script("Response.Redirect()");
  EXPECT_NE(Failure().find("The address to redirect to is missing (url left out)"), std::string::npos) << Failure();
}

TEST_F(Intrinsics, FindMembersInAnyCase) {
  request.queryString = "a=1";
  EXPECT_EQ(Script("response.write('no');"), "");
  EXPECT_EQ(Script("Response.write('x'); Response.contenttype = 'text/plain'; Response.WRITE(Response.CONTENTTYPE);"
                   "Response.Write(Request.querystring('a').count + server().mapPath('/').length);"
                   "function server() { return { mapPath: function () { return ''; } }; }"),
            "xtext/plain1");
  EXPECT_EQ(Script("var own = {Write: 1}; Response.Write(typeof own.write + typeof Response.Wrote);"),
            "undefinedundefined");
}

TEST_F(Intrinsics, AssignItemsOfSessionAndCookies) {
  EXPECT_EQ(Script("Session('n') = 7; Session('n') += 1; Session('t') = 'x'; Response.Write(Session('n') + "
                   "Session('t')); Response.Cookies('c') = 'a b'; Response.Cookies('c').Path = '/x';"
                   "Response.Cookies('c').MaxAge = 60; Response.Cookies('d') = '1'; Response.Cookies('d').HttpOnly = "
                   "false; Response.Cookies('d').secure = true;"
                   "Response.Cookies('d').Expires = new Date(Date.UTC(2030, 0, 2, 3, 4, 5));"),
            "8x");
  EXPECT_EQ(session.values["n"], Value(8));
  EXPECT_EQ(sink.heads[0].headers,
            (NamedTexts{{"Set-Cookie", "c=a+b; Path=/x; Max-Age=60; HttpOnly; SameSite=Lax"},
                        {"Set-Cookie", "d=1; Path=/; Expires=Wed, 02 Jan 2030 03:04:05 GMT; Secure; SameSite=Lax"}}));
  EXPECT_EQ(Script("try { Session('o') = {}; } catch (e) { Response.Write(e.number + e.message); }"),
            "-2146828275value: a session keeps texts, numbers, booleans and dates; JSON.stringify makes a text");
  for (const char* code :
       {"Response.Cookies('a b') = 1", "Response.Cookies('') = 1", "Response.Cookies('a').Path = 'x'",
        "Response.Cookies('a').Path = '/;x'", "Response.Cookies('a').Expires = 'soon'",
        "var c = Response.Cookies('a'); Response.Flush(); c.value = 1"}) {
    Script(code);
    EXPECT_TRUE(result.failure) << code;
  }
}

TEST_F(Intrinsics, ListWhatTheSessionHas) {
  session.values = {{"a", Value(1)}, {"b", Value(std::string("x"))}};
  EXPECT_EQ(Script("var c = Session.Contents; Response.Write(c.Count + c('b') + ';'); for (var k in c) "
                   "Response.Write(k + '=' + c(k) + ';'); c.Remove('A'); Response.Write(Session.Contents.Count);"
                   "Session.Contents.RemoveAll(); Response.Write(typeof Session('b'));"),
            "2x;a=1;b=x;1undefined");
  EXPECT_EQ(Script("Response.Write(Session.SessionID + Session.Timeout);"), "the-mark30");
}

TEST_F(Intrinsics, EnumerateAsPagesOfOthersDo) {
  request.queryString = "b=1&a=2&a=3";
  const std::string walk = "for (; !e.atEnd(); e.moveNext()) Response.Write(e.item() + ';');";
  EXPECT_EQ(Script("var e = new Enumerator(Request.QueryString);" + walk), "b;a;");
  EXPECT_EQ(Script("var e = new Enumerator(Request.QueryString('a'));" + walk), "2;3;");
  EXPECT_EQ(Script("var e = new Enumerator([1, 'x']);" + walk + "e.moveFirst(); Response.Write(e.item());"), "1;x;1");
  EXPECT_EQ(Script("var e = new Enumerator({a: 1, b: 2});" + walk), "a;b;");
  EXPECT_EQ(Script("var e = new Enumerator(null);" + walk + "Response.Write(typeof e.item());"), "undefined");
}

TEST_F(Intrinsics, TellNumberAndDescriptionOfEveryError) {
  EXPECT_EQ(Script("try { null.x; } catch (e) { Response.Write(e.number + '|' + (e.description === e.message)); }"),
            "-2147467259|true");
  EXPECT_EQ(
      Script("var e = new Error('m'); e.number = 5; e.description = 'd'; Response.Write(e.number + e.description + "
             "e.message);"),
      "5dm");
}

TEST_F(Intrinsics, WriteBytes) {
  EXPECT_EQ(Script("Response.BinaryWrite([71, 73, 70, 0, 255]); Response.BinaryWrite(new Uint8Array([1, 2]));"),
            std::string("GIF\0\xFF\1\2", 7));
  for (const char* code : {"Response.BinaryWrite('x')", "Response.BinaryWrite([256])", "Response.BinaryWrite([-1])",
                           "Response.BinaryWrite(['x'])", "Response.BinaryWrite()"}) {
    EXPECT_EQ(Script(code), "");
    EXPECT_TRUE(result.failure) << code;
  }
}

TEST_F(Intrinsics, ReadTextsOfTheSiteAlone) {
  Put("data/list.json", "\xEF\xBB\xBF[1, \"\u00E4\"]");
  Put("data/latin.txt", "k\xE4se");
  EXPECT_EQ(Script("Response.Write(JSON.parse(Server.ReadText('data/list.json'))[1]);"), "\u00E4");
  std::filesystem::create_symlink("/etc/passwd", folder.Path() / "data/out");
  const struct {
    const char* path;
    const char* why;
  } kCases[] = {{"data/none", "is not there"},
                {"data", "is not there"},
                {"../x", "is not below the site"},
                {"data/out", "is not below the site"},
                {"data/latin.txt", "is not UTF-8"}};
  for (const auto& c : kCases) {
    EXPECT_EQ(Script("Server.ReadText('" + std::string(c.path) + "')"), "");
    EXPECT_NE(Failure().find(c.why), std::string::npos) << c.path << ": " << Failure();
  }
}

TEST_F(Intrinsics, ReadABodyThatIsNoForm) {
  request.method = "POST";
  request.body = "{\"a\": [1, 2]}";
  EXPECT_EQ(Script("Response.Write(JSON.parse(Request.Text).a[1] + '|' + Request.Form.Count);"), "2|0");
}

TEST_F(Intrinsics, SayWhoMayKeepThePage) {
  Script("Response.Expires = 5;");
  EXPECT_EQ(sink.heads[0].headers, (NamedTexts{{"Cache-Control", "private, max-age=300"}}));
  Script("Response.Expires = 0;");
  EXPECT_EQ(sink.heads[0].headers, (NamedTexts{{"Cache-Control", "no-store"}}));
  Script("Response.CacheControl = 'public'; Response.Charset = 'UTF-8'; Response.Buffer = true;");
  EXPECT_EQ(sink.heads[0].headers, (NamedTexts{{"Cache-Control", "public"}}));
  Script("Response.Charset = 'latin1'");
  EXPECT_NE(Failure().find("A page is sent as UTF-8"), std::string::npos);
  EXPECT_EQ(Script("Response.Buffer = false; Response.Write('a'); Response.Write('b');"), "ab");
  EXPECT_EQ(sink.pieces, 2);
}

TEST_F(Intrinsics, ReadWhatTheSettingsName) {
  options.application = {{"Title", "Kalvo"}};
  EXPECT_EQ(Script("Response.Write(Application('TITLE') + typeof Application('none') + Application.Count);"),
            "Kalvoundefined1");
}

TEST_F(Intrinsics, ServeAsScriptingContext) {
  EXPECT_EQ(Script("Response.Write(ScriptingContext.Request === Request && ScriptingContext.Response === Response && "
                   "ScriptingContext.Server === Server && ScriptingContext.Session === Session);"),
            "True");
}

TEST_F(Intrinsics, CannotBeReplaced) {
  EXPECT_EQ(Script("Response = 1; delete this.Request; TABLE_CURRENTALERTS = 9;"
                   "Response.Write(typeof Request + TABLE_CURRENTALERTS);"),
            "function2");
}

TEST_F(Intrinsics, OfferNoBackDoorsOfTheEngine) {
  EXPECT_EQ(Script("Response.Write(typeof Duktape + typeof require + typeof print);"), "undefinedundefinedundefined");
}

}  // namespace
}  // namespace kalvo::test
