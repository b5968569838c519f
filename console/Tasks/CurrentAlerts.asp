<%@ Language="JavaScript" %><%
var pageTitle = "Current Alerts";
var pageSection = "alerts";
%><!--#include file="../Include/Header.inc"--><%
// The boxes of the table are an administrator's; nobody else gets a form to send.
if (IsAdministrator()) {
  Response.Write('<form method="post" action="../Configuration/Selection.asp">\r\n' +
    '<input type="hidden" name="What" value="alerts">\r\n');
  Report(TABLE_CURRENTALERTS, {}, "There are no alerts.");
  Response.Write('<p><input type="submit" value="Delete selected alerts"></p>\r\n</form>\r\n');
} else {
  Report(TABLE_CURRENTALERTS, {}, "There are no alerts.");
}
%><!--#include file="../Include/Footer.inc"-->
