<%@ Language="JavaScript" %><%
var pageTitle = "Organizations";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><!--#include file="../Include/Choices.inc"--><%
var organization = Argument("Organization"), site = Argument("Site");
if (site !== "") {
  Heading("Organization " + organization + ", site " + site);
  Links([
    ["../Tasks/Chargeback.asp", "Chargeback of this site", "Organization", organization, "Site", site],
    ["../Tasks/TopN.asp", "Top mailboxes, public folders and messages of this site", "Organization", organization,
      "Site", site]
  ]);
  Report(TABLE_RES_ORGANIZATION_SITESERVERSUMMARY, {organization: organization, site: site},
    "This site has no managed servers.");
} else if (organization !== "") {
  Heading("Organization " + organization);
  Links([
    ["../Tasks/Chargeback.asp", "Chargeback of this organization", "Organization", organization],
    ["../Tasks/TopN.asp", "Top mailboxes, public folders and messages of this organization", "Organization", organization]
  ]);
  Report(TABLE_RES_ORGANIZATION_SERVERSUMMARY, {organization: organization},
    "This organization has no managed servers.");
}

Heading("Organizations and sites");
Links(SiteLinks("Organizations.asp"));
%><!--#include file="../Include/Footer.inc"-->
