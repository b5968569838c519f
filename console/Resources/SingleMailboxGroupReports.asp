<%@ Language="JavaScript" %><%
var pageTitle = "Mailbox Group";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><!--#include file="../Include/Choices.inc"--><%
var group = Argument("GroupName");
ScopeForm("SingleMailboxGroupReports.asp", "GroupName", "Mailbox group:", MailboxGroups(), []);
if (group !== "") {
  Heading("Mailbox group " + group);
  Links([
    ["../Tasks/TopN.asp", "Top mailboxes and messages of this group", "MailboxGroup", group],
    ["../Configuration/ConfigureMailboxGroup.asp", "Configure this group", "GroupName", group]
  ]);
}
Heading("All mailbox groups");
Report(TABLE_RES_MAILBOXGROUPS_MAILBOXESSUMMARY, {}, "There are no mailbox groups.");
%><!--#include file="../Include/Footer.inc"-->
