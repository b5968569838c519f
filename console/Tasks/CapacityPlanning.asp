<%@ Language="JavaScript" %><%
var pageTitle = "Capacity Planning";
var pageSection = "tasks";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Choices.inc"--><%
var server = Argument("Server"), group = Argument("GroupName");
ScopeForm("CapacityPlanning.asp", "GroupName", "Server group:", ServerGroups(), []);
if (server !== "") {
  Heading("Server " + server);
  Response.Write("<p>" + Link("../Resources/SingleServerReports.asp", "All reports of this server", "Server", server) +
    "</p>\r\n");
  Report(TABLE_TASK_CAPACITYPLANNING_SINGLESERVER, {name: server}, "Nothing is known of this server's file systems.");
} else if (group !== "") {
  Heading("Server group " + group);
  Report(TABLE_TASK_CAPACITYPLANNING_SUMMARY, {name: group}, "Nothing is known of this group's file systems.");
} else {
  Note("Choose a server group to see the file systems of its servers.");
}
%><!--#include file="../Include/Footer.inc"-->
