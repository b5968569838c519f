<%@ Language="JavaScript" %><%
var pageTitle = "Server Groups";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><%
var empty = "There are no server groups.";
Heading("Groups");
Report(TABLE_RES_SERVERGROUPS_SUMMARY, {}, empty);
Heading("Mailboxes");
Report(TABLE_RES_SERVERGROUPS_MAILBOXESSUMMARY, {}, empty);
Heading("Public folders");
Report(TABLE_RES_SERVERGROUPS_PUBLICFOLDERSSUMMARY, {}, empty);
%><!--#include file="../Include/Footer.inc"-->
