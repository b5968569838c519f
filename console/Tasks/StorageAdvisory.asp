<%@ Language="JavaScript" %><%
var pageTitle = "Storage Advisory";
var pageSection = "tasks";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><%
var report = ChosenReport("StorageAdvisory.asp", [
  ["DisabledRecipients", "Disabled Recipients", TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS],
  ["MissingServers", "Missing Servers", TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS],
  ["NewServers", "New Servers", TABLE_TASK_STORAGEADVISORY_NEWSERVERS],
  ["Mailboxes", "Mailboxes", TABLE_TASK_STORAGEADVISORY_MAILBOX_SPACEPOLICY],
  ["PublicFolders", "Public Folders", TABLE_TASK_STORAGEADVISORY_PUBLICFOLDER_SPACEPOLICY],
  ["MailboxGroups", "Mailbox Groups", TABLE_TASK_STORAGEADVISORY_MAILBOXGROUP_SPACEPOLICY],
  ["FileSystems", "File Systems", TABLE_TASK_STORAGEADVISORY_FileSystemCapacity]
], []);
// The boxes of the disabled recipients are an administrator's; nobody else gets a form to send.
var choosing = IsAdministrator() && report[2] === TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS;
Heading(report[1]);
if (choosing) {
  Response.Write('<form method="post" action="../Configuration/Selection.asp">\r\n' +
    '<input type="hidden" name="What" value="violations">\r\n');
}
Report(report[2]);
if (choosing) { Response.Write('<p><input type="submit" value="Enable selected recipients"></p>\r\n</form>\r\n'); }
%><!--#include file="../Include/Footer.inc"-->
