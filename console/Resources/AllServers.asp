<%@ Language="JavaScript" %><%
var pageTitle = "All Servers";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><%
Report(TABLE_RES_ORGANIZATION_ALLSERVERS, {}, "No server is known.");
%><!--#include file="../Include/Footer.inc"-->
