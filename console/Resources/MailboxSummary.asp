<%@ Language="JavaScript" %><%
var pageTitle = "Mailbox";
var pageSection = "resources";
var pageScripts = ["Scripts/confirm.js"];
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Choices.inc"--><!--#include file="../Include/Mailbox.inc"--><%
var server = Argument("Server"), mailbox = {value: Argument("Mailbox")}, container = PlainName(Argument("Container")),
  folder = Argument("ContainerId"), message = Argument("MessageId"), scope,
  tables = {folders: TABLE_MAPI_FOLDERS, messages: TABLE_MAPI_MESSAGES, attachments: TABLE_MAPI_ATTACHMENTS};
OpenForm("MailboxSummary.asp", "Mailbox", "Mailbox:", mailbox.value);
if (server === "" || mailbox.value === "") {
  // Nothing was asked for yet.
} else if ((folder !== "" || message !== "") && !generator.CheckUserPermissions(server, mailbox.value)) {
  // The right to drill down shows any folder's path, and opens any message, whose identifier is known; this page is
  // stricter.
  Refuse("open " + mailbox.value + " on " + server, "Mailbox or folder does not exist, or you are not the owner.");
} else if (generator.DisplayFolderPath(server, mailbox, container, folder, TABLE_MAPI_FOLDERS)) {
  scope = {name: server, mailbox: mailbox.value, container: container};
  if (message === "") {
    FolderTables(tables, scope);
  } else if (PlainName(mailbox.value) === "") {
    Note("The name of this mailbox cannot stand in a form, so its messages are not opened: " + mailbox.value);
  } else {
    generator.DisplayMessageInformation(server, mailbox.value, container, message, true);
    AttachmentTable(tables, scope);
  }
}
%><!--#include file="../Include/Footer.inc"-->
