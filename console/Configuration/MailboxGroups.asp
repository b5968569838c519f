<%@ Language="JavaScript" %><%
var pageTitle = "Mailbox Groups";
var pageSection = "configuration";
%><!--#include file="../Include/Header.inc"--><%
Report(TABLE_MAILBOXGROUPSUMMARY, {}, "There are no mailbox groups.");
%><!--#include file="../Include/Footer.inc"-->
