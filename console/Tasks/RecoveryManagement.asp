<%@ Language="JavaScript" %><%
var pageTitle = "Recovery Management";
var pageSection = "tasks";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><%
var report = ChosenReport("RecoveryManagement.asp", [
  ["Latest", "Most Recent Backups", TABLE_TASK_RECOVERYMANAGEMENT_SucessfulBackups],
  ["Failed", "Failed Backups", TABLE_TASK_RECOVERYMANAGEMENT_FAILEDBACKUPS],
  ["OverPolicy", "Servers Over Backup Policy", TABLE_TASK_RECOVERYMANAGEMENT_SERVERSOVERBACKUPPOLICY],
  ["Longest", "Longest Backups", TABLE_TASK_RECOVERYMANAGEMENT_LONGESTBACKUPS]
], []);
Heading(report[1]);
Report(report[2]);
%><!--#include file="../Include/Footer.inc"-->
