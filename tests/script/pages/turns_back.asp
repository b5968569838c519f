<%
// Every object that the library asks is a script here, and every script turns back to the objects that are asking:
// initialises them anew, starts and ends their page, drops them, moves them, renders with them. What comes of it is
// no matter; that the page comes to its end is.
var seed = Number(Request.QueryString("Seed").Item(1)), budget = 2000, depth = 0;

function any(n) {
  seed = (seed * 16807) % 2147483647;
  return seed % n;
}
function pick(list) { return list[any(list.length)]; }
function make(name) { return new ActiveXObject("KalvoTables." + name); }
function long(text) { return text + new Array(any(40) + 2).join(" and more of it"); }
function attempt(step) {
  try { return step(); } catch (e) { return ""; }
}

// Turns back, now and then.
function turn() {
  var n = any(3);
  if (depth >= 3) { return; }
  depth++;
  while (n-- > 0 && budget-- > 0) { attempt(pick(steps)); }
  depth--;
}
function turning(answer) {
  return function (a, b) {
    turn();
    if (any(40) === 0) { throw new Error("refused"); }
    return answer(a, b);
  };
}

// ---- those who are asked ------------------------------------------------------------------------------------------

var fields = ["ComputerName", "7", "15", "F", "nothing", "RecipientName"];
function text() { return pick([long("text"), "", "1048576", "1/2/1999", "2", "FALSE", "Server"]); }
function values() { return pick([long("value"), ["a", "b"], [], "1", "-1", "TRUE", "ASC", "2"]); }

function newHost() {
  var response = { Write: turning(function () {}), Flush: turning(function () {}) };
  var request = {
    QueryString: turning(function (key) { return key === "Debug" ? pick([[], "ALL"]) : values(); }),
    ServerVariables: turning(function () { return "DOMAIN\\alice"; })
  };
  var session = { Value: turning(function () { return pick(["Yes", "Yes", "No"]); }), StaticObjects: turning(newLive) };
  var server = { HTMLEncode: turning(function (t) { return t; }), URLEncode: turning(function (t) { return t; }) };
  return {
    Response: turning(function () { return response; }), Request: turning(function () { return request; }),
    Session: turning(function () { return session; }), Server: turning(function () { return server; })
  };
}
function newRows() {
  return {
    OpenDS: turning(function () { return 0; }), CloseDS: turning(function () { return 0; }),
    MoveFirst: turning(function () { return 0; }), MoveNext: turning(function () { return 0; }),
    MoveTotals: turning(function () { return 0; }), GetField: turning(text), RecordCount: turning(function () { return 2; }),
    GetRowIndex: turning(function () { return 1; }), Value: turning(text), Count: turning(function () { return 2; }),
    Sort: turning(function () {}), ClearSortFields: turning(function () {}), AddSortField: turning(function () {}),
    Field: turning(text), Total: turning(text)
  };
}
function newLive() {
  return {
    GotoContainer: turning(function () {}), GotoContainerById: turning(function () {}),
    GotoMsgAttachment: turning(function () {}), MailboxOwner: turning(function () { return "domain\\alice"; }),
    CurrentMailboxName: turning(text), CurrentContainerName: turning(text), Folders: turning(newRows),
    Messages: turning(newRows), Attachments: turning(newRows), FolderCount: turning(function () { return 2; }),
    MessageCount: turning(function () { return 2; }), ResolveNameToAddress: turning(newRows),
    MailboxHomeServer: turning(function (server) { return server; }), ResetNameResolution: turning(function () {}),
    MessageSubject: turning(text), MessageSender: turning(text), MessageSize: turning(text),
    MessageCreationDate: turning(text), MessageModificationDate: turning(text), RemoveMessage: turning(function () {})
  };
}
function newColumn() {
  return {
    ConstructHTMLHeader: turning(text), ConstructHTMLData: turning(text), ConstructHTMLTotal: turning(text)
  };
}
var loader = Session.StaticObjects("gTopNServerLoader"), results = Session.StaticObjects("gTopNResults"), name;
loader.Load = loader.LoadGroup = loader.LoadSite = loader.LoadOrg = turning(function () {});
var served = newRows();
for (name in served) { results[name] = served[name]; }

// ---- those who ask ------------------------------------------------------------------------------------------------

// Nobody else holds them: one that is replaced while it asks has only its own call left.
var context, display, table, source, column, control, columns, generator;

function initialiseTable() {
  table.Initialize(any(3), pick([TABLE_CURRENTALERTS, TABLE_TOPN_MBCNT, TABLE_MAPI_MESSAGES, TABLE_MAPI_FOLDERS,
    TABLE_MAPI_PUBLICFOLDER_FOLDERS, TABLE_MAPI_ATTACHMENTS]), long("table"), any(2), false, true, true, true,
    pick([[16, 17, 105], [1], [80, 81, 82, 83, 100, 101, 102], []]),
    "select '" + long("text") + "' as F, 7 as ComputerName union all select 'b', 8\r\n\r\nselect 'sum' as F",
    pick(["", "7", "F"]), pick(["", "ASC"]));
}
function initialiseColumn() {
  column.Initialize(any(130), long("column"), pick(fields), any(23), long("pie"), long("line"), any(2), any(2) === 1,
    any(19), 1024, long("KB"), any(3), any(3), long("left"), any(2) === 1, long("default"));
}
function initialiseControl() {
  control.Initialize(1, long("control"), long("value"), pick(fields), any(2) === 1, long("click"), any(2) === 1,
    pick([FORMATTYPE_CHECKBOX, FORMATTYPE_QVCHECKBOX, 1]));
}
function initialiseSource() { source.Initialize(table, long("resource"), context); }
function scope() {
  context.SetName(long("server"));
  context.SetMailbox(pick(["", long("mailbox")]));
  context.SetContainer(long("\\folder"));
  context.SetTopN(any(6));
}
function start(object) { object.OnStartPage(newHost()); }
function newContext() { context = make("Context"); start(context); context.IncrementTableIndex(); scope(); }
function newDisplay() { display = make("Display"); start(display); }
function newTable() { table = make("Table"); initialiseTable(); }
function newSource() { source = make(pick(["KalvodbDataSrc", "TopnDataSrc", "MapiDataSrc"])); initialiseSource(); }
function newGenerator() { generator = make("KalvoforExchangeTableGenerator"); start(generator); }
function rows() { return pick([source, source, newRows()]); }
function build() {
  table.BuildHTML(context, newHost().Response(), display,
    pick([columns, { GetColumn: turning(function () { return pick([column, control, newColumn(), null]); }) }]),
    long("None"), long("Title"));
}

var steps = [
  newContext, newDisplay, newTable, newSource, newGenerator, scope,
  function () { column = make("KalvoColumn"); initialiseColumn(); },
  function () { control = make("KalvoControlColumn"); initialiseControl(); },
  function () { columns = make("KalvoColumnDatabase"); },
  function () { start(pick([context, display, generator])); },
  function () { pick([context, display, generator]).OnEndPage(); },
  initialiseTable, initialiseColumn, initialiseControl, initialiseSource,
  initialiseTable, initialiseColumn, initialiseControl, initialiseSource,
  function () { columns.Initialize_TOPN_Columns(); columns.Initialize_EXDB_Server(); },
  function () { source.OpenDS(); }, function () { source.CloseDS(); }, function () { source.MoveFirst(); },
  function () { source.MoveNext(); }, function () { source.MoveTotals(); }, function () { source.GetField("7"); },
  function () { source.GetField("F"); }, function () { source.gRecordCount = 5; },
  function () { source = table.GetDataSrc(context); },
  function () { column.ConstructHTMLHeader(context, display); }, function () { column.ConstructHTMLData(context, display, rows()); },
  function () { column.ConstructHTMLTotal(context, display, rows(), { value: false }); },
  function () { control.ConstructHTMLHeader(context, display); }, function () { control.ConstructHTMLData(context, display, rows()); },
  build, build,
  function () { display.DetailTableStart(long("bookmark")); display.TableHeaderCell("T", "up", "down", "", ""); },
  function () { display.FormCheckboxInput(long("a"), long("b"), true, long("c"), true); },
  function () { context.TableURL(long("a"), "b", "c", "d"); }, function () { context.Failure(long("step")); },
  function () { context.FailureMessage(long("message"), true); },
  function () { context.DrillDownPermission("s", "m"); },
  function () { context.EncapsulateGotoContainerFailure(newLive(), long("s"), "m", "c", 0, 1, "step", true); },
  function () { context.EncapsulateGotoMsgAttachmentFailure(newLive(), long("s"), "m", "c", true, "step"); },
  function () {
    generator.BuildTable(pick([TABLE_CURRENTALERTS, TABLE_TOPN_MBCNT, TABLE_MAPI_MESSAGES]), long("server"), "o", "s",
      long("mailbox"), long("\\folder"), any(6), long("None"), long("Title"));
  },
  function () {
    generator.DisplayFolderPath(long("server"), { value: long("mailbox") }, long("\\a\\b"), pick(["", "id"]),
      pick([TABLE_MAPI_FOLDERS, TABLE_MAPI_PUBLICFOLDER_FOLDERS]));
  },
  function () { generator.DisplayMessageInformation(long("server"), long("m"), "c", long("id"), any(2) === 1); },
  function () { generator.CheckUserPermissions(long("server"), "m"); },
  function () { generator.PublicFolderDisplayPath(); },
  function () { generator.DeleteMessage({ value: "" }); }
];

attempt(newContext);
attempt(newDisplay);
attempt(newTable);
attempt(newSource);
attempt(newGenerator);
column = make("KalvoColumn");
control = make("KalvoControlColumn");
columns = make("KalvoColumnDatabase");
while (budget-- > 0) { attempt(pick(steps)); }
Response.Write("survived");
%>
