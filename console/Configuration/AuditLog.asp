<%@ Language="JavaScript" %><%
// What was done on this server, by whom: the newest lines of the audit log.
var pageTitle = "Audit Log";
var pageSection = "configuration";
var PAGE_LINES = 100;
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><%
var log = Session.StaticObjects("gAuditLog"), event = Argument("Event"), user = Argument("User"),
  skipped = Math.max(0, Number(Argument("Skip")) || 0);

function FilterForm(events) {
  Form("AuditLog.asp", "Show", function () {
    Response.Write('<label>Event: <select name="Event"><option value="">all</option>');
    for (var i = 0; i < events.length; ++i) {
      Response.Write('<option' + (events[i] === event ? " selected" : "") + ">" + Encode(events[i]) + "</option>");
    }
    Response.Write("</select></label>\r\n");
    TextField("User", "User:", user);
  });
}

function Details(details) {
  var texts = [];
  for (var name in details) { texts.push(name + ": " + details[name]); }
  return texts.join("; ");
}

function WriteLines(lines) {
  Response.Write('<div class="report"><table border="1">\r\n<tr><th>Line</th><th>Time (UTC)</th><th>Event</th><th>User</th>' +
    "<th>Address</th><th>Details</th></tr>\r\n");
  for (var i = 0; i < lines.length; ++i) {
    Response.Write("<tr><td>" + [lines[i].number, lines[i].time, lines[i].event, lines[i].user, lines[i].address,
      Details(lines[i].details)].map(Encode).join("</td><td>") + "</td></tr>\r\n");
  }
  Response.Write("</table></div>\r\n");
}

function WritePage() {
  var events = JSON.parse(log.Events()), lines;
  if (events.indexOf(event) < 0) { event = ""; }
  FilterForm(events);
  lines = JSON.parse(log.Lines(event, user, skipped, PAGE_LINES));
  if (lines.length === 0) { return Note("There are no such lines. Older ones may be found by the command \"kalvo audit\"."); }
  WriteLines(lines);
  if (lines.length === PAGE_LINES) {
    Links([["AuditLog.asp", "Older lines", "Event", event, "User", user, "Skip", skipped + PAGE_LINES]]);
  }
  Note("Whether no line was changed or taken out, the command \"kalvo audit --verify\" tells.");
}

if (!IsAdministrator()) {
  Refuse("audit log", "The audit log is shown to administrators only.");
} else if (!log) {
  Note("There is no audit log here.");
} else {
  WritePage();
}
%><!--#include file="../Include/Footer.inc"-->
