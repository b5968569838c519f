<%@ Language="JavaScript" %><%
// What the forms of the console send: boxes of alerts, of quota violations, of servers. The console reads the
// reporting database and never writes it, so this page says what was chosen and who changes it.
var pageTitle = "Selection";
var pageSection = "configuration";

var kinds = {
  alerts: {box: "Delete", one: "alert", many: "alerts", unchanged: "No alert has been deleted."},
  violations: {box: "Select", one: "quota violation", many: "quota violations",
    unchanged: "No recipient has been enabled."},
  members: {box: "Include", one: "server", many: "servers", unchanged: "The members of the group are as they were."}
};
%><!--#include file="../Include/Header.inc"--><%
var what = String(Request.Form("What")), kind = kinds.hasOwnProperty(what) ? kinds[what] : null;
if (!IsAdministrator()) {
  Refuse("change " + what, "Only an administrator may change this.");
} else if (kind === null) {
  Note("Nothing was chosen.");
} else {
  var count = Number(Request.Form(kind.box).Count) || 0;
  Note(count + " " + (count === 1 ? kind.one : kind.many) + " chosen" +
    (what === "members" ? " for the group " + String(Request.Form("GroupName")) : "") + ".");
  Note("Nothing was changed. " + kind.unchanged);
  Note("The console reads the reporting database and never writes it. Make the change in the manager; the console " +
    "shows it after the manager's next scan.");
}
%><!--#include file="../Include/Footer.inc"-->
