<%@ Language="JavaScript" %><%
var pageTitle = "Chargeback";
var pageSection = "tasks";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><!--#include file="../Include/Choices.inc"--><%
var organization = Argument("Organization"), site = Argument("Site"), server = Argument("Server"),
  group = Argument("GroupName");
var empty = "There are no mailboxes here.";
if (site !== "") {
  Heading("Organization " + organization + ", site " + site);
  Report(TABLE_CHARGEBACK_Site, {organization: organization, site: site}, empty);
} else if (organization !== "") {
  Heading("Organization " + organization);
  Report(TABLE_CHARGEBACK_Organization, {organization: organization}, empty);
} else if (server !== "") {
  Heading("Server " + server);
  Report(TABLE_CHARGEBACK_Server, {name: server}, empty);
} else if (group !== "") {
  Heading("Server group " + group);
  Report(TABLE_CHARGEBACK_ServerGroup, {name: group}, empty);
} else {
  Note("Who keeps how much: choose an organization, a site, a server group or a server.");
}

Heading("Organizations and sites");
Links(SiteLinks("Chargeback.asp"));
ScopeForm("Chargeback.asp", "GroupName", "Server group:", ServerGroups(), []);
ScopeForm("Chargeback.asp", "Server", "Server:", Servers(), []);
%><!--#include file="../Include/Footer.inc"-->
