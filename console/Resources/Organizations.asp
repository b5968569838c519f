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

var sites = Sites(), links = [], last = null, i;
for (i = 0; i < sites.length; ++i) {
  if (sites[i][0] !== last) {
    last = sites[i][0];
    links.push(["Organizations.asp", last, "Organization", last]);
  }
  links.push(["Organizations.asp", last + ", " + sites[i][1], "Organization", last, "Site", sites[i][1]]);
}
Heading("Organizations and sites");
Links(links);
%><!--#include file="../Include/Footer.inc"-->
