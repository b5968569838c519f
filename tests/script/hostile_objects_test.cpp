// Script objects that change what the library is working with while it asks them: every question may end the page's
// hold on its host, initialize a table or a source anew, or close it.
#include "host/script/page/classes.h"
#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

// A script list of a class's methods: ["name", [its parameters' names]].
std::string Methods(const ClassBinding& binding) {
  std::string list = "[";
  for (const Member& member : binding.members()) {
    if (member.kind != MemberKind::Method) continue;
    list += "['" + std::string(member.name) + "',[";
    for (const Parameter& parameter : member.Parameters()) list += "'" + std::string(parameter.name) + "',";
    list += "]],";
  }
  return list + "]";
}

// `hostile` offers every member that it is asked for, each a function that does the next piece of mischief and gives
// the next answer.
constexpr const char* kMischief = R"(
  function bare(name) { return new ActiveXObject('KalvoTables.' + name); }
  var depth = 0, turn = 0, asked = 0, odd = [], target, ctx, disp, t, db;
  var hostile = new Proxy({}, {
    has: function () { return true; },
    get: function (self, name) { return typeof name === 'string' && name !== 'toString' ? answer : undefined; }
  });
  function call(o, name, given) { if (o && name in o) o[name].apply(o, given || []); }
  var mischief = [
    function () { call(target, 'OnEndPage'); }, function () { ctx.OnEndPage(); }, function () { disp.OnEndPage(); },
    function () { call(target, 'OnStartPage', [host()]); }, function () { ctx.OnStartPage(host()); },
    function () { disp.OnStartPage(host()); }, function () { call(target, 'TearDown'); },
    function () { call(target, 'CloseDS'); }, function () { call(target, 'OpenDS'); },
    function () { call(target, 'MoveFirst'); }, function () { call(target, 'MoveTotals'); },
    function () { initialize(t, [4, 5]); }, function () { initialize(t, []); }, function () { t.SetTopNParameters(ctx); },
    function () { call(target, 'Initialize', arguments_('Initialize')); },
    function () { db.Initialize_RMC_Alert(); db.Initialize_MAPI_Columns(); db.Initialize_TOPN_Columns(); },
    function () { call(target, 'GetField', ['Name']); }, function () { throw new Error('mischief'); }
  ];
  var answers = [hostile, 1, 'text', 0, hostile, null, '7', undefined, new Date(1999, 0, 2), hostile, 3, 'Yes', -1];
  function answer() {
    asked++;
    if (depth < 2) {
      depth++;
      try { mischief[turn++ % mischief.length](); } catch (e) { if (turn % 5 === 0) { depth--; throw e; } }
      depth--;
    }
    return answers[asked % answers.length];
  }
  function host() {
    return {Response: hostile, Request: turn % 2 ? hostile : Request, Server: turn % 3 ? hostile : Server,
            Session: turn % 5 ? hostile : Session};
  }
  function initialize(table, columns) {
    table.Initialize(turn % 3, TABLE_CURRENTALERTS, 'T', table_ShowTotals, true, true, true, true, columns,
      'select %SORT% %NAME%', 'Id', 'ASC');
  }
  var byName = {
    ASPScriptingContext: host, pCtxt: function () { return ctx; }, Ctxt: function () { return ctx; },
    pDisplay: function () { return disp; }, KalvoTable: function () { return t; }, pTable: function () { return t; },
    Response: function () { return hostile; }, pColDB: function () { return turn % 2 ? hostile : db; },
    pTableData: function () { return hostile; }, pLiveContainer: function () { return hostile; },
    bFirstCell: function () { return {value: true}; }, tableId: function () { return turn % 67; },
    GraphicID: function () { return ['p', 1, 2]; }
  };
  var parameters = {};
  function arguments_(method) {
    return parameters[method].map(function (name) {
      if (name === 'Columns') return 'GetColumns' in target ? [1, 2, 3] : '1';
      return byName[name] ? byName[name]() : String(turn % 8);
    });
  }
  function attack(name, methods) {
    methods.forEach(function (method) { parameters[method[0]] = method[1]; });
    for (var round = 0; round < 40; round++) {
      turn = round;
      ctx = bare('Context'); disp = bare('Display'); t = bare('Table'); db = bare('KalvoColumnDatabase');
      initialize(t, [1, 2, 3, 40, 60]);
      target = bare(name);
      methods.concat([['Initialize', []], ['OpenDS', []]]).concat(methods).forEach(function (method) {
        if (!(method[0] in target)) return;
        try { ctx.OnStartPage(host()); } catch (e) { }
        try { disp.OnStartPage(host()); } catch (e) { }
        try { target[method[0]].apply(target, arguments_(method[0])); }
        catch (e) { if (typeof e.number !== 'number' && e.message !== 'mischief' && odd.length < 10) odd.push(e); }
      });
    }
    Session.Value('odd', odd.join('; ')); Session.Value('asked', asked);
  }
)";

class HostileObjects : public PageTest {};

TEST_F(HostileObjects, LeaveThePageRunningWhateverTheyChangeWhileTheyAreAsked) {
  session.driller = std::make_shared<FakeLive>();
  session.values["kalvodrilldownauth"] = std::string("Yes");
  request.queryString = "a=1&Sort=x&Sort=y&First=3&Debug=All";
  options.limits.seconds = 100;
  const FakeResult rows = {{"Name", "Id"}, {{std::string("one"), 1}, {std::string("two"), 2}}};
  database.results = {rows, rows};
  for (const ClassBinding& binding : Classes()) {
    if (binding.make == nullptr) continue;
    SCOPED_TRACE(binding.name);
    Script(std::string(kMischief) + "attack('" + std::string(binding.name) + "', " + Methods(binding) + ");");
    EXPECT_EQ(Failure(), "");
    EXPECT_EQ(session.Get("odd"), Value(std::string()));
    EXPECT_GT(std::get<std::int32_t>(session.Get("asked")), 0);
  }
}

}  // namespace
}  // namespace kalvo::test
