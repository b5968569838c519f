<%@ Language="JavaScript" %><%
// What the forms of the console send: boxes of alerts, of quota violations, of servers. The console reads the
// reporting database and never writes it, so this page says what was chosen and who changes it.
var pageTitle = "Selection";
var pageSection = "configuration";

var kinds = {
  alerts: {box: "Delete", one: "alert", many: "alerts"},
  violations: {box: "Select", one: "quota violation", many: "quota violations"},
  members: {box: "Include", one: "server", many: "servers"}
};
%><!--#include file="../Include/Header.inc"--><%
var what = String(Request.Form("What")), kind = kinds.hasOwnProperty(what) ? kinds[what] : null;
if (!IsAdministrator()) {
  Note("Only an administrator may change this.");
} else if (kind === null) {
  Note("Nothing was chosen.");
} else {
  var count = Number(Request.Form(kind.box).Count) || 0;
  Note(count + " " + (count === 1 ? kind.one : kind.many) + " chosen" +
    (what === "members" ? " for the group " + String(Request.Form("GroupName")) : "") + ".");
  Note("The console shows what the manager has found and cannot change it. Make the change in the manager; it is " +
    "seen here after its next scan.");
}
%><!--#include file="../Include/Footer.inc"-->
