<%@ Language="JavaScript" %><%
var pageTitle = "Top Mailboxes, Public Folders and Messages";
var pageSection = "tasks";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><!--#include file="../Include/Choices.inc"--><%
// The first of a kind in one scope: a server, a server group, a site, an organization or a mailbox group, whichever
// the request names.
var mailboxReports = [
  ["MailboxCount", "Mailboxes: most messages", TABLE_TOPN_MBCNT],
  ["MailboxSpace", "Mailboxes: most space", TABLE_TOPN_MBSPACE],
  ["MailboxAverage", "Mailboxes: largest average message", TABLE_TOPN_MailboxAverageSize],
  ["MailboxOldCount", "Mailboxes: most old messages", TABLE_TOPN_MBOLDCNT],
  ["MailboxOldSpace", "Mailboxes: most space of old messages", TABLE_TOPN_MBOLDSPACE],
  ["MailboxStale", "Mailboxes: longest unmodified", TABLE_TOPN_MBSTALE],
  ["MailboxOldest", "Mailbox messages: oldest", TABLE_TOPN_OLDMBMSG],
  ["MailboxLargest", "Mailbox messages: largest", TABLE_TOPN_LARGEMBMSG],
  ["MailboxLargestOld", "Mailbox messages: largest old ones", TABLE_TOPN_LARGEOLDMBMSG]
];
var folderReports = [
  ["FolderCount", "Public folders: most messages", TABLE_TOPN_PFMSGCNT],
  ["FolderSpace", "Public folders: most space", TABLE_TOPN_PFSPACE],
  ["FolderAverage", "Public folders: largest average message", TABLE_TOPN_PublicFolderAverageSize],
  ["FolderOldCount", "Public folders: most old messages", TABLE_TOPN_PFOLDCNT],
  ["FolderOldSpace", "Public folders: most space of old messages", TABLE_TOPN_PFOLDSPACE],
  ["FolderStale", "Public folders: longest unmodified", TABLE_TOPN_PFSTALE],
  ["FolderOldest", "Public folder messages: oldest", TABLE_TOPN_OLDPFMSG],
  ["FolderLargest", "Public folder messages: largest", TABLE_TOPN_LARGEPFMSG],
  ["FolderLargestOld", "Public folder messages: largest old ones", TABLE_TOPN_LARGEOLDPFMSG]
];

// [heading, scope, the parameters that name it]; null when the request names none.
function ChosenScope() {
  var server = Argument("Server"), group = Argument("GroupName"), mailboxGroup = Argument("MailboxGroup");
  var organization = Argument("Organization"), site = Argument("Site");
  if (server !== "") {
    return ["server " + server, {name: server, topN: TOPN_SINGLESERVER}, ["Server", server]];
  }
  if (group !== "") {
    return ["server group " + group, {name: group, topN: TOPN_SERVERGROUP}, ["GroupName", group]];
  }
  if (mailboxGroup !== "") {
    return ["mailbox group " + mailboxGroup, {name: mailboxGroup, topN: TOPN_MAILBOXGROUP},
      ["MailboxGroup", mailboxGroup]];
  }
  if (site !== "") {
    return ["site " + site, {organization: organization, site: site, topN: TOPN_SITE},
      ["Organization", organization, "Site", site]];
  }
  if (organization !== "") {
    return ["organization " + organization, {organization: organization, topN: TOPN_ORGANIZATION},
      ["Organization", organization]];
  }
  return null;
}

var chosen = ChosenScope();
if (chosen) {
  var reports = Argument("MailboxGroup") !== "" ? mailboxReports : mailboxReports.concat(folderReports);
  var report = ChosenReport("TopN.asp", reports, chosen[2]);
  Heading(report[1] + ", " + chosen[0]);
  Report(report[2], chosen[1], "The last detail scan found none.");
}
Heading("Other scopes");
ScopeForm("TopN.asp", "Server", "Server:", Servers(), ["Report", Argument("Report")]);
ScopeForm("TopN.asp", "GroupName", "Server group:", ServerGroups(), ["Report", Argument("Report")]);
ScopeForm("TopN.asp", "MailboxGroup", "Mailbox group:", MailboxGroups(), ["Report", Argument("Report")]);
Links(SiteLinks("TopN.asp"));
%><!--#include file="../Include/Footer.inc"-->
