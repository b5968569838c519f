<%@ Language="JavaScript" %><%
var pageTitle = "Server Group";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><!--#include file="../Include/Choices.inc"--><%
var group = Argument("GroupName");
ScopeForm("SingleServerGroupReports.asp", "GroupName", "Server group:", ServerGroups(), []);
if (group !== "") {
  Heading("Server group " + group);
  Links([
    ["../Tasks/CapacityPlanning.asp", "Capacity planning of this group", "GroupName", group],
    ["../Tasks/Chargeback.asp", "Chargeback of this group", "GroupName", group],
    ["../Tasks/TopN.asp", "Top mailboxes, public folders and messages of this group", "GroupName", group],
    ["../Configuration/ConfigureServerGroup.asp", "Configure this group", "GroupName", group]
  ]);
  var report = ChosenReport("SingleServerGroupReports.asp", [
    ["Membership", "Membership", TABLE_RES_SERVERGROUPMEMBERSHIP],
    ["Servers", "Server Summary", TABLE_RES_SERVERGROUP_SERVERSUMMARY]
  ], ["GroupName", group]);
  Report(report[2], {name: group}, "This group has no managed servers.");
}
%><!--#include file="../Include/Footer.inc"-->
