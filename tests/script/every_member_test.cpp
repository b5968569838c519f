// Every member of every class with every odd argument, on objects in every state: whatever a page does, it meets an
// error that it can catch, and goes on.
#include <algorithm>

#include "host/script/page/classes.h"
#include "script/page_runner.h"

namespace kalvo::test {
namespace {

using namespace host;

// The intrinsic objects' classes, and how a page comes by one.
const std::map<std::string_view, const char*> kInner = {
    {"Request", "Request"},
    {"NameCollection", "Request.QueryString"},
    {"ValueList", "Request.QueryString('a')"},
    {"Response", "Response"},
    {"Server", "Server"},
    {"Session", "Session"},
    {"ResponseCookies", "Response.Cookies"},
    {"ResponseCookie", "Response.Cookies('a')"},
    {"SessionItem", "Session.Reference('a')"},
    {"SessionContents", "Session.Contents"},
    {"Application", "Application"},
    {"ScriptingContext", "ScriptingContext"},
    {"LiveContainer", "Session.StaticObjects('gLiveDriller')"},
    {"Listing", "Session.StaticObjects('gLiveDriller').Folders()"},
};

// What a server's own session hands to pages: made and tested with the server.
bool IsOfAServer(std::string_view name) { return name == "AuditLog" || name == "HeldMessages"; }

bool EndsThePage(std::string_view member) { return member == "End" || member == "Redirect"; }

// A script list of the members that a page may call and go on: ["name", its parameters, -1 for a property].
std::string Members(const ClassBinding& binding) {
  std::string list = "[";
  for (const Member& member : binding.members()) {
    if (binding.name == "Response" && EndsThePage(member.name)) continue;
    const bool method = member.kind == MemberKind::Method;
    list += "['" + std::string(member.name) + "'," + (method ? std::to_string(member.parameterCount) : "-1") + "],";
  }
  return list + "]";
}

// Calls each member of `make()` with the arguments of the pool, on an object of its own and on one that all share.
// What is thrown must be an error of the program.
constexpr const char* kWalk = R"(
  var names = ['KalvoforExchangeTableGenerator', 'Table', 'KalvoTableDatabase', 'TableConstants', 'Context', 'Display',
    'KalvoColumn', 'KalvoControlColumn', 'KalvoColumnDatabase', 'DataSrc', 'KalvodbDataSrc', 'TopnDataSrc',
    'MapiDataSrc'];
  function bare(name) { return new ActiveXObject('KalvoTables.' + name); }
  function table(type) {
    var t = bare('Table');
    t.Initialize(type, TABLE_CURRENTALERTS, 'T', table_ShowTotals, true, true, true, true, [1, 2, 500],
      'select %SORT%', 'Id', 'ASC');
    return t;
  }
  var pool = [undefined, null, 0, -1, 1.5, 32768, 4294967296, NaN, '', 'text', '7', true, new Date(NaN),
    new Date(1999, 0, 2), {}, {value: 1}, [], [1, 2, 'x'], ['p', 1, 2], function () {},
    Request, Response, Server, Session, ScriptingContext, Session.StaticObjects('gLiveDriller'),
    table(0), table(1), table(2), table(9)].concat(names.map(bare));
  var odd = [], calls = 0;
  function attempt(o, member, step, k) {
    var i, given = [];
    for (i = 0; i < Math.max(member[1], 1); i++) given.push(pool[(k + i * step) % pool.length]);
    calls++;
    try {
      if (member[1] >= 0) o[member[0]].apply(o, given);
      else { o[member[0]]; o[member[0]] = given[0]; }
    } catch (e) {
      if (typeof e.number !== 'number' && odd.length < 10) odd.push(member[0] + ': ' + e);
    }
  }
  function walk(make, members) {
    var shared = make();
    members.forEach(function (member) {
      [0, 1, 7].forEach(function (step) {
        for (var k = 0; k < pool.length; k++) {
          attempt(make(), member, step, k);
          attempt(shared, member, step, k);
        }
      });
    });
  }
)";

class EveryMember : public PageTest {
 protected:
  EveryMember() {
    session.driller = std::make_shared<FakeLive>();
    session.values["kalvodrilldownauth"] = std::string("Yes");
    request.queryString = "a=1&a=2&Sort=x&First=3&Debug=All";
    options.limits.seconds = 100;
  }

  // The odd ones of a walk over objects that an expression makes.
  void Walk(const ClassBinding& binding, const std::string& made) {
    SCOPED_TRACE(std::string(binding.name) + ": " + made);
    Script(std::string(kWalk) + "walk(function () { return " + made + "; }, " + Members(binding) + ");" +
           "Session.Value('odd', odd.join('; ')); Session.Value('calls', calls);");
    EXPECT_EQ(Failure(), "");
    EXPECT_EQ(session.Get("odd"), Value(std::string()));
    EXPECT_GT(std::get<std::int32_t>(session.Get("calls")), 0);
  }
};

TEST_F(EveryMember, OfAnObjectThatWasNeverInitializedLeavesThePageRunning) {
  for (const ClassBinding& binding : Classes()) {
    if (binding.make != nullptr) Walk(binding, "bare('" + std::string(binding.name) + "')");
  }
}

TEST_F(EveryMember, OfAStartedObjectLeavesThePageRunning) {
  for (const ClassBinding& binding : Classes()) {
    if (binding.start == nullptr) continue;
    Walk(binding, "(function () { var o = bare('" + std::string(binding.name) +
                      "'); o.OnStartPage(ScriptingContext); return o; })()");
  }
}

TEST_F(EveryMember, OfARowSourceThatIsNotOpenLeavesThePageRunning) {
  for (const ClassBinding& binding : Classes()) {
    const bool isSource = binding.name.ends_with("DataSrc") && binding.name != "DataSrc";
    if (!isSource) continue;
    for (const char* type : {"0", "1", "2"}) {
      Walk(binding, "(function () { var o = bare('" + std::string(binding.name) +
                        "'), x = bare('Context'); x.OnStartPage(ScriptingContext); o.Initialize(table(" + type +
                        "), 'S', x); return o; })()");
    }
  }
}

TEST_F(EveryMember, OfAnIntrinsicObjectLeavesThePageRunning) {
  std::size_t walked = 0;
  for (const ClassBinding& binding : Classes()) {
    if (binding.make != nullptr || IsOfAServer(binding.name)) continue;
    ASSERT_TRUE(kInner.contains(binding.name)) << binding.name;
    Walk(binding, kInner.at(binding.name));
    ++walked;
  }
  EXPECT_EQ(walked, kInner.size());
}

}  // namespace
}  // namespace kalvo::test
