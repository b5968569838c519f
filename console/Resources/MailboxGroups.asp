<%@ Language="JavaScript" %><%
var pageTitle = "Mailbox Groups";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><%
var empty = "There are no mailbox groups.";
Heading("Groups");
Report(TABLE_RES_MAILBOXGROUPS_SUMMARY, {}, empty);
Heading("Mailboxes");
Report(TABLE_RES_MAILBOXGROUPS_MAILBOXESSUMMARY, {}, empty);
%><!--#include file="../Include/Footer.inc"-->
