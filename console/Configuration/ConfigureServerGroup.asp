<%@ Language="JavaScript" %><%
var pageTitle = "Configure Server Group";
var pageSection = "configuration";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Choices.inc"--><%
var group = Argument("GroupName");
ScopeForm("ConfigureServerGroup.asp", "GroupName", "Server group:", ServerGroups(), []);
if (group !== "") {
  Heading("Members of " + group);
  // Who may not change the members sees them, and has no form to send.
  if (IsAdministrator()) {
    Response.Write('<form method="post" action="Selection.asp">\r\n<input type="hidden" name="What" value="members">\r\n' +
      '<input type="hidden" name="GroupName" value="' + Encode(group) + '">\r\n');
  }
  Report(TABLE_SINGLESERVERGROUPMEMBERSHIP, {name: group}, "There are no managed servers.");
  if (IsAdministrator()) { Response.Write('<p><input type="submit" value="Change members"></p>\r\n</form>\r\n'); }
}
%><!--#include file="../Include/Footer.inc"-->
