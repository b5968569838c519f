<%@ Language="JavaScript" %><%
var pageTitle = "Server Groups";
var pageSection = "configuration";
%><!--#include file="../Include/Header.inc"--><%
Report(TABLE_SERVERGROUPSUMMARY, {}, "There are no server groups.");
%><!--#include file="../Include/Footer.inc"-->
