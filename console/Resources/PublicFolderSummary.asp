<%@ Language="JavaScript" %><%
var pageTitle = "Public Folders";
var pageSection = "resources";
var pageScripts = ["Scripts/confirm.js"];
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Choices.inc"--><!--#include file="../Include/Mailbox.inc"--><%
var server = Argument("Server"), folder = {value: Argument("Mailbox")}, message = Argument("MessageId"), scope,
  tables = {folders: TABLE_MAPI_PUBLICFOLDER_FOLDERS, messages: TABLE_MAPI_PUBLICFOLDER_MESSAGES,
    attachments: TABLE_MAPI_PUBLICFOLDER_ATTACHMENTS};
if (!IsAdministrator()) {
  Note("Public folders are shown to administrators only.");
} else {
  OpenForm("PublicFolderSummary.asp", "Mailbox", "Folder:", folder.value);
  // The path is found by the request's own public folder, so no folder id is handed on.
  if (server !== "" && generator.DisplayFolderPath(server, folder, "", "", TABLE_MAPI_PUBLICFOLDER_FOLDERS)) {
    scope = {name: server, mailbox: folder.value};
    if (message === "") {
      FolderTables(tables, scope);
    } else {
      generator.DisplayMessageInformation(server, folder.value, "", message, false);
      AttachmentTable(tables, scope);
    }
  }
}
%><!--#include file="../Include/Footer.inc"-->
