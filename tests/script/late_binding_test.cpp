#include "host/script/late_binding/adapters.h"

#include "host/script/binding/wrappers.h"
#include "host/script/page/classes.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "script/page_runner.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace host;

// ---- script objects that serve the library -------------------------------------------------------------------------

class Adapters : public testing::Test {
 protected:
  // The object that an expression makes, as an interface.
  template <typename T>
  std::shared_ptr<T> Make(const std::string& expression) {
    std::shared_ptr<T> made;
    const auto failure = engine.Attempt([&] {
      duk_eval_string(engine.Context(), ("object = " + expression).c_str());
      made = InterfaceAt<T>(engine, -1);
    });
    if (failure) throw Error(failure->number, failure->description);
    return made;
  }

  std::string Text(const std::string& expression) {
    std::string text;
    engine.Attempt([&] {
      duk_eval_string(engine.Context(), expression.c_str());
      text = TextOf(engine, -1);
    });
    return text;
  }

  Wrappers wrappers{Classes()};
  Engine engine{PageLimits{}, &wrappers};
};

TEST_F(Adapters, CallFunctionsAndReadOtherMembers) {
  const auto live = Make<LiveContainer>(
      "({owner: 'a', MailboxOwner: function (s, m) { return this.owner + s + m; },"
      "MessageSubject: 'read', MessageSize: function () { return 7; },"
      "FolderCount: 3, MessageSender: null, MessageCreationDate: undefined})");
  EXPECT_EQ(live->MailboxOwner("s", "m"), "asm");
  EXPECT_EQ(live->MessageSubject(), Value(std::string("read")));
  EXPECT_EQ(live->MessageSize(), Value(7));
  EXPECT_EQ(live->FolderCount(), 3);
  EXPECT_EQ(live->MessageSender(), Value(Null{}));
  EXPECT_EQ(live->MessageCreationDate(), Value(Empty{}));
  EXPECT_EQ(ErrorOf([&] { live->MailboxHomeServer("s", "m"); }).Number(), 438);
  EXPECT_EQ(ErrorOf([&] { live->Folders(); }).Number(), 438);
}

TEST_F(Adapters, FindInheritedMembersAndAccessors) {
  const auto listing = Make<Listing>(
      "(function () { function L() { this.n = 2; } L.prototype.Count = function () {"
      "return this.n; }; Object.defineProperty(L.prototype, 'Total', {get: function () {"
      "return function (name) { return name + this.n; }; }}); return new L(); })()");
  EXPECT_EQ(listing->Count(), 2);
  EXPECT_EQ(listing->Total("Size"), Value(std::string("Size2")));
}

TEST_F(Adapters, PassArgumentsAsTheyAre) {
  const auto live = Make<LiveContainer>(
      "({log: '', GotoContainer: function () { this.log = JSON.stringify("
      "Array.prototype.slice.call(arguments)); }})");
  live->GotoContainer("S\u20AC", "m", "", 0, 5);
  EXPECT_EQ(Text("object.log"), "[\"S\u20AC\",\"m\",\"\",0,5]");
}

TEST_F(Adapters, TurnWhatScriptThrowsIntoErrors) {
  const auto listing = Make<Listing>(
      "({MoveFirst: function () { var e = new Error('m'); e.number = -507445201;"
      "e.description = 'd'; throw e; }, Sort: function () { nosuch(); },"
      "get Count() { throw 'text'; }, Field: function () { return {}; }})");
  const Error error = ErrorOf([&] { listing->MoveFirst(); });
  EXPECT_EQ(error.Number(), codes::kNoSuchFolder);
  EXPECT_EQ(error.Description(), "d");
  EXPECT_EQ(ErrorOf([&] { listing->Sort(); }).Number(), codes::kFailed);
  EXPECT_EQ(ErrorOf([&] { listing->Count(); }).Number(), codes::kFailed);
}

TEST_F(Adapters, NeedAnObject) {
  for (const char* value : {"null", "undefined", "7", "'text'"}) {
    EXPECT_EQ(ErrorOf([&] { Make<Listing>(value); }).Number(), 424) << value;
    const auto live = Make<LiveContainer>(std::string("({Folders: function () { return ") + value + "; }})");
    EXPECT_EQ(ErrorOf([&] { live->Folders(); }).Number(), 424) << value;
  }
}

TEST_F(Adapters, AreRowSources) {
  const auto source = Make<RowSource>(
      "({row: 0, MoveFirst: function () { this.row = 1; return 0; }, MoveNext: function () { this.row++; },"
      "GetField: function (name, guid) { return name === 'Id' ? (guid ? null : 'text') : this.row; }, RecordCount: 2,"
      "GetRowIndex: function () { return this.row; }, MoveTotals: function () { return -1; }})");
  EXPECT_EQ(source->MoveFirst(), 0);
  const std::string_view first = source->GetField("Row");
  const std::string_view again = source->GetField("Other");
  EXPECT_EQ(first, "1");
  EXPECT_EQ(again, "1");
  EXPECT_EQ(source->MoveNext(), 0);
  EXPECT_EQ(source->GetField("Row"), "2");
  EXPECT_EQ(source->GetField("Id"), "text");
  EXPECT_EQ(source->GetIdentifier("Id"), std::nullopt);
  EXPECT_EQ(source->GetIdentifier("Row"), "2");
  EXPECT_EQ(source->RecordCount(), 2);
  EXPECT_EQ(source->GetRowIndex(), 2);
  EXPECT_EQ(source->MoveTotals(), -1);
  EXPECT_EQ(ErrorOf([&] { source->OpenDS(); }).Number(), 438);
}

TEST_F(Adapters, AreColumnsThatGetWrappersAndABox) {
  const auto column = Make<TableColumn>(
      "({ConstructHTMLHeader: function (x, d) { return '<' + x.GetName() + d.TableRowEnd().length + '>'; },"
      "ConstructHTMLTotal: function (x, d, s, first) { var was = first.value; first.value = false; return was; }})");
  auto context = std::make_shared<Context>();
  context->SetName("n");
  auto display = std::make_shared<Display>();
  std::string out = "kept";
  column->AppendHeader(out, *context, *display);
  EXPECT_EQ(out, "kept<n7>");
  const auto source = Make<RowSource>("({})");
  bool first = true;
  out.clear();
  column->AppendTotal(out, *context, *display, *source, first);
  EXPECT_EQ(out, "True");
  EXPECT_FALSE(first);
  EXPECT_EQ(ErrorOf([&] { column->AppendData(out, *context, *display, *source); }).Number(), 438);
}

TEST_F(Adapters, GiveTheBoxBackFromAColumnThatFails) {
  const auto column = Make<TableColumn>(
      "({ConstructHTMLTotal: function (x, d, s, first) { first.value = false;"
      "throw {number: 9, description: 'd'}; }})");
  const auto source = Make<RowSource>("({})");
  auto context = std::make_shared<Context>();
  auto display = std::make_shared<Display>();
  std::string out;
  bool first = true;
  EXPECT_EQ(ErrorOf([&] { column->AppendTotal(out, *context, *display, *source, first); }).Number(), 9);
  EXPECT_FALSE(first);
}

TEST_F(Adapters, AnswerColumns) {
  const auto catalogue = Make<ColumnCatalogue>(
      "({GetColumn: function (id) { if (id > 3) throw {number: 9, description: 'd'};"
      "return id === 1 ? {ConstructHTMLHeader: function () { return 'h'; }} : id === 2 ? null : undefined; }})");
  const std::shared_ptr<TableColumn> column = catalogue->Column(1);
  ASSERT_NE(column, nullptr);
  EXPECT_EQ(ErrorOf([&] { catalogue->Column(4); }).Number(), 9);
  auto context = std::make_shared<Context>();
  auto display = std::make_shared<Display>();
  std::string out;
  column->AppendHeader(out, *context, *display);
  EXPECT_EQ(out, "h");
  EXPECT_EQ(catalogue->Column(2), nullptr);
  EXPECT_EQ(catalogue->Column(3), nullptr);
  for (const char* none : {"5", "'text'", "true"}) {
    const auto other = Make<ColumnCatalogue>(std::string("({GetColumn: function () { return ") + none + "; }})");
    EXPECT_EQ(other->Column(1), nullptr) << none;
  }
}

TEST_F(Adapters, AreSessions) {
  const struct {
    const char* why;
    const char* session;
  } kCases[] = {
      {"a member that is called", "({Value: function (name) { return name + '!'; }})"},
      {"an object of values", "({Value: {a: 'a!'}})"},
      {"a function", "(function (name) { return name + '!'; })"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Make<Session>(c.session)->Item("a"), Value(std::string("a!")));
  }
  const auto session = Make<Session>("({StaticObjects: {gLiveDriller: {CurrentMailboxName: 'm'}}})");
  EXPECT_EQ(session->StaticObject("gLiveDriller")->CurrentMailboxName(), "m");
  EXPECT_EQ(ErrorOf([&] { session->StaticObject("none"); }).Number(), 424);
  EXPECT_EQ(ErrorOf([&] { session->Item("a"); }).Number(), 438);
}

TEST_F(Adapters, AreRequests) {
  const struct {
    const char* why;
    const char* request;
  } kCases[] = {
      {"a function of the key, and without one the collection",
       "({QueryString: function (key) { var all = {a: ['1', '2'], B: 'x'}; return key === undefined ? all : all[key]; "
       "}})"},
      {"a function that carries its keys",
       "(function () { function q(key) { return {a: {Count: 2, Item: function (i) { return i; }}, B: 'x'}[key]; }"
       "q.a = 1; q.B = 1; return {QueryString: q}; })()"},
      {"an object", "({QueryString: {a: ['1', '2'], B: 'x'}})"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto request = Make<Request>(c.request);
    EXPECT_EQ(request->QueryKeys(), (std::vector<std::string>{"a", "B"}));
    EXPECT_EQ(request->QueryCount("a"), 2);
    EXPECT_EQ(request->QueryItem("a", 2), "2");
    EXPECT_EQ(request->QueryText("a"), "1, 2");
    EXPECT_EQ(request->QueryText("B"), "x");
    EXPECT_EQ(request->QueryCount("none"), 0);
    EXPECT_EQ(request->Item("a"), "1, 2");
    EXPECT_EQ(request->Item("none"), "");
    EXPECT_EQ(ErrorOf([&] { request->QueryItem("B", 2); }).Number(), 9);
    EXPECT_EQ(ErrorOf([&] { request->ServerVariable("URL"); }).Number(), 438);
  }
  EXPECT_EQ(Make<Request>("({ServerVariables: function (n) { return '/' + n; }})")->ServerVariable("x"), "/x");
  EXPECT_EQ(Make<Request>("(function (n) { return n + '?'; })")->Item("a"), "a?");
}

TEST_F(Adapters, AskARequestForNothingThatIsNotNeeded) {
  const auto request = Make<Request>(
      "({log: '', QueryString: function (key) { var me = this; me.log += '?'; return {"
      "Count: function () { me.log += 'n'; return 3; }, Item: function (i) { me.log += i;"
      "if (i === 2) throw {number: 70, description: 'd'}; return 'v' + i; }}; }})");
  EXPECT_EQ(request->QueryCount("k"), 3);
  EXPECT_EQ(Text("object.log"), "?n");
  EXPECT_EQ(request->QueryItem("k", 3), "v3");
  EXPECT_EQ(Text("object.log"), "?n?3");
  EXPECT_EQ(ErrorOf([&] { request->QueryItem("k", 2); }).Number(), 70);
  EXPECT_EQ(ErrorOf([&] { request->QueryText("k"); }).Number(), 70);
  EXPECT_EQ(Text("object.log"), "?n?3?2?n12");
  const auto bare = Make<Request>("({QueryString: function () { return {Count: 1}; }})");
  EXPECT_EQ(ErrorOf([&] { bare->QueryItem("k", 1); }).Number(), 438);
}

TEST_F(Adapters, FindAPlainRequestsKeysWhateverTheirCase) {
  const auto request = Make<Request>("({QueryString: {'\u00C4': ['1', '2']}})");
  EXPECT_EQ(request->QueryItem("\u00E4", 2), "2");
}

TEST_F(Adapters, AreScriptingContextsReadInAnyForm) {
  const auto context = Make<ScriptingContext>(
      "({text: '', Response: function () { var me = this; return {Write: function (t) { me.text += t; }}; },"
      "Server: {HTMLEncode: function (t) { return '<' + t + '>'; }}, Session: null})");
  context->GetResponse()->Write("a");
  context->GetResponse()->Write("b");
  EXPECT_EQ(Text("object.text"), "ab");
  std::string out;
  context->GetServer()->HTMLEncode(out, "x");
  EXPECT_EQ(out, "<x>");
  EXPECT_EQ(ErrorOf([&] { context->GetSession(); }).Number(), 424);
  EXPECT_EQ(ErrorOf([&] { context->GetRequest(); }).Number(), 438);
}

// ---- in whole pages --------------------------------------------------------------------------------------------

class LateBinding : public PageTest {};

TEST_F(LateBinding, ReadsTheIntrinsicObjectsOfAScriptContext) {
  request.queryString = "Sort=a";
  EXPECT_EQ(
      Script("var t = '', x = new ActiveXObject('KalvoTables.Context'); x.OnStartPage({Request: Request,"
             "Session: Session, Server: Server, Response: {Write: function (s) { t += s; }, Flush: function () {}}});"
             "x.IncrementTableIndex(); Response.Write(x.TableSortFieldInformation()); x.FailureMessage('m');"
             "Response.Write(t); Response.Write(x.GetRequest() === Request);"),
      "a<p>Error Generating Table: &nbsp;m</p>\r\nTrue");
}

TEST_F(LateBinding, TakesAPagesOwnRequestServerAndSession) {
  EXPECT_EQ(
      Script("var x = new ActiveXObject('KalvoTables.Context'), own = {Write: function () {}, Flush: function () {}};"
             "var session = {Value: function (n) { return n === 'KalvoAdministrator' ? 'Yes' : ''; }};"
             "x.OnStartPage({Response: own, Session: session, Request: {QueryString: {Sort: 's', k: ['1', '2']},"
             "ServerVariables: function () { return '/own.asp'; }}, Server: {HTMLEncode: function (t) {"
             "return '[' + t + ']'; }, URLEncode: function (t) { return '{' + t + '}'; }}});"
             "x.IncrementTableIndex(); Response.Write([x.KalvoAdministrator(), x.ServerHTMLEncode('a'),"
             "x.TableURL('f', '', '', ''), x.GetSession() === session].join(' '));"),
      "true [a] /own.asp?k={1}&k={2}&Sort={f}&SortOrder={}&First={}&PageSize={} true");
}

TEST_F(LateBinding, TakesAnObjectOfAnotherClassAsARowSource) {
  EXPECT_EQ(Script("var x = Server.CreateObject('KalvoTables.Context'), d = Server.CreateObject('KalvoTables.Display'),"
                   "c = new ActiveXObject('KalvoTables.KalvoColumn'), s = new ActiveXObject('KalvoTables.DataSrc');"
                   "c.Initialize(2, 'N', 'F', 0, '', '', 1, false, 1, 0, '', 1, 1, '', false, '');"
                   "Response.Write(c.ConstructHTMLData(x, d, s));"
                   "try { c.ConstructHTMLData(x, d, d); } catch (e) { Response.Write(e.number); }"),
            "<td>&nbsp;</td>-2146827850");
}

TEST_F(LateBinding, RendersATableOfScriptColumns) {
  database.results = {{{"Name"}, {{std::string("one")}, {std::string("two")}}}, {{"Name"}, {{std::string("sum")}}}};
  EXPECT_EQ(
      Script("var x = Server.CreateObject('KalvoTables.Context'), d = Server.CreateObject('KalvoTables.Display'),"
             "t = Server.CreateObject('KalvoTables.Table'), out = '', seen = [];"
             "t.Initialize(TABLETYPE_KALVODB, TABLE_CURRENTALERTS, 'T', table_ShowTotals, false, false, false, false,"
             "[7], 'select x', '', '');"
             "t.BuildHTML(x, {Write: function (s) { out += s; }, Flush: function () {}}, d, {GetColumn: function (id) {"
             "return {ConstructHTMLHeader: function (c) { return '<th' + id + (c === x) + '>'; },"
             "ConstructHTMLData: function (c, d, s) { seen.push(s); return '[' + s.GetField('Name') + s.GetRowIndex() "
             "+ ']'; },"
             "ConstructHTMLTotal: function (c, d, s, f) { var was = f.value; f.value = false; return s.GetField('Name')"
             "+ was; }}; }}, 'Empty', 'Title');"
             "Response.Write(out.match(/<th7true>/).length + '|' + out.match(/\\[\\w+\\]/g).join() + '|' +"
             "/sumtrue/.test(out) + '|' + (seen[0] === seen[1]));"),
      "1|[one1],[two2]|true|true");
}

// What the two navigation wrappers answer and write for a container, and what they leave for `x.Failure`.
class Navigation : public PageTest {
 protected:
  std::string Container(const std::string& live) { return Wrapped("Container", live, "'C', 0, 1, 'E'"); }
  std::string Message(const std::string& live) { return Wrapped("MsgAttachment", live, "'I', true, 'E'"); }

 private:
  std::string Wrapped(const std::string& call, const std::string& live, const std::string& rest) {
    return Script("Response.Write(Server.CreateObject('KalvoTables.Context').EncapsulateGoto" + call + "Failure(" +
                  live + ", 'S', 'M', " + rest + "));");
  }
};

TEST_F(Navigation, ReportsAContainerThatIsNone) {
  session.values["kalvodrilldownauth"] = std::string("Yes");
  for (const char* none : {"null", "undefined", "Session.StaticObjects('none')", "5"}) {
    SCOPED_TRACE(none);
    EXPECT_EQ(Container(none),
              "<p>Error Generating Table: &nbsp;GotoContainer: E<br>Error number: 0x1A8; &nbsp; "
              "Description: Object required</p>\r\nTrue");
    EXPECT_EQ(Message(none),
              "<p>Error Generating Table: &nbsp;GotoMsgAttachment: E<br>Error number: 0x1A8; &nbsp; "
              "Description: Object required</p>\r\nTrue");
  }
}

TEST_F(Navigation, RefusesAMessageBeforeItLooksAtTheContainer) {
  EXPECT_EQ(Message("null"),
            "<p>Error Generating Table: &nbsp;Drill down not allowed.<br>Error number: 0x0; &nbsp; Description: "
            "</p>\r\nTrue");
}

TEST_F(Navigation, ReportsAnExceptionWhoseNumberIsNone) {
  for (const char* number : {"0", "4294967296", "0.5"}) {
    EXPECT_EQ(Container(std::string("{GotoContainer: function () { throw {number: ") + number +
                        ", description: 'closed'}; }}"),
              "<p>Error Generating Table: &nbsp;GotoContainer: E<br>Error number: 0x80004005; &nbsp; "
              "Description: closed</p>\r\nTrue")
        << number;
  }
}

TEST_F(LateBinding, StartsOnARequestOfWhichNobodyNeedsAllItems) {
  EXPECT_EQ(Script("var x = new ActiveXObject('KalvoTables.Context'), asked = [];"
                   "function q(key) { return {Count: 2, Item: function (i) { asked.push(key + i);"
                   "if (key === 'Sort') throw {number: 70, description: 'd'}; return 'v'; }}; } q.Sort = 1; q.k = 1;"
                   "x.OnStartPage({Response: Response, Session: Session, Server: Server, Request: {QueryString: q}});"
                   "Response.Write(asked.join());"),
            "Debug1,Debug2,k1,k2");
}

TEST_F(LateBinding, ServesScriptsWithANativeDriller) {
  auto live = std::make_shared<FakeLive>();
  live->folders->items = {{{"Name", std::string("Inbox")}, {"Size", 7}}};
  session.driller = live;
  EXPECT_EQ(Script("var d = Session.StaticObjects('gLiveDriller'); d.GotoContainer('s', 'm', '', 0, 1);"
                   "var f = d.Folders(); f.MoveFirst(); Response.Write([f.Count(), f.Field('Name'), f.Field('Size'),"
                   "d.FolderCount(), d.MessageSubject(), f === d.Folders()].join());"
                   "try { f.Field('None'); } catch (e) { Response.Write(e.number); }"),
            "1,Inbox,7,1,Hello,true-2146828275");
}

TEST_F(LateBinding, UsesANativeDrillerInThePagesSession) {
  session.driller = std::make_shared<FakeLive>();
  request.logonName = "domain\\KEN";
  EXPECT_EQ(Script("Response.Write(Server.CreateObject('KalvoTables.Context').DrillDownPermission('s', 'm'));"),
            "True");
}

TEST_F(LateBinding, ReleasesCyclesBetweenScriptAndLibrary) {
  session.driller = std::make_shared<FakeLive>();
  const std::weak_ptr<LiveContainer> driller = session.driller;
  Script(
      "var x = new ActiveXObject('KalvoTables.Context'); var own = {x: x, d: Session.StaticObjects('gLiveDriller'),"
      "Write: function () { return x; }, Flush: function () {}}; own.own = own;"
      "x.OnStartPage({Response: own, Request: Request, Session: Session, Server: Server});");
  EXPECT_EQ(Failure(), "");
  session.driller = nullptr;
  EXPECT_TRUE(driller.expired());
}

}  // namespace
}  // namespace kalvo::test
