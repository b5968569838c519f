<%@ Language="JavaScript" %><%
var pageTitle = "Configure Mailbox Group";
var pageSection = "configuration";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><%
var group = Argument("GroupName");
if (group !== "") {
  Heading("Mailbox group " + group);
  Links([["../Resources/SingleMailboxGroupReports.asp", "Reports of this group", "GroupName", group]]);
}
Heading("All mailbox groups");
Report(TABLE_MAILBOXGROUPSUMMARY, {}, "There are no mailbox groups.");
%><!--#include file="../Include/Footer.inc"-->
