<%@ Language="JavaScript" %><%
var pageTitle = "Server";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><!--#include file="../Include/Choices.inc"--><%
var server = Argument("Server");
ScopeForm("SingleServerReports.asp", "Server", "Server:", Servers(), []);
if (server !== "") {
  Heading("Server " + server);
  Links([
    ["../Tasks/Chargeback.asp", "Chargeback of this server", "Server", server],
    ["../Tasks/TopN.asp", "Top mailboxes, public folders and messages of this server", "Server", server],
    ["FindMailbox.asp", "Find a mailbox on this server", "Server", server]
  ]);
  Heading("Database files");
  Report(TABLE_RES_SERVER_DBFILESUMMARY, {name: server}, "Nothing is known of this server's database files.");
  Heading("File systems");
  Report(TABLE_TASK_CAPACITYPLANNING_SINGLESERVER, {name: server}, "Nothing is known of this server's file systems.");
}
%><!--#include file="../Include/Footer.inc"-->
