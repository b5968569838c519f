<%@ Language="JavaScript" %><%
var pageTitle = "Quota Violations";
var pageSection = "tasks";
%><!--#include file="../Include/Header.inc"--><%
// Without a name the report is about everybody.
var name = Argument("Name");
Heading(name === "" ? "All users" : name);
Report(TABLE_TASK_STORAGEADVISORY_DISABLEDSINGLERECIPIENT, {name: name}, "There are no quota violations.");
%><!--#include file="../Include/Footer.inc"-->
