<%@ Language="JavaScript" %><%
var pageTitle = "Public Folders";
var pageSection = "resources";
var pageScripts = ["Scripts/confirm.js"];
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Choices.inc"--><!--#include file="../Include/Mailbox.inc"--><%
var server = Argument("Server"), folder = {value: PlainName(Argument("Mailbox"))}, message = Argument("MessageId"),
  scope,
  tables = {folders: TABLE_MAPI_PUBLICFOLDER_FOLDERS, messages: TABLE_MAPI_PUBLICFOLDER_MESSAGES,
    attachments: TABLE_MAPI_PUBLICFOLDER_ATTACHMENTS};

// Where the user is. The published operation tells the path of a folder that has a name here; a folder that is known by
// its identifier alone, because its name cannot stand in an address, is told of by the page.
function ShowPath() {
  var path;
  // The path is found by the request's own public folder, so no folder id is handed on.
  if (folder.value !== "" || Argument("PublicFolderId") === "") {
    return generator.DisplayFolderPath(server, folder, "", "", TABLE_MAPI_PUBLICFOLDER_FOLDERS);
  }
  path = generator.PublicFolderDisplayPath();
  if (path === "-1") { return false; }
  Note("Folder: " + path);
  if (PlainName(path) === "") { Note("This name cannot stand in an address, so the folder is shown by its identifier."); }
  return true;
}

if (!IsAdministrator()) {
  Refuse("public folders", "Public folders are shown to administrators only.");
} else {
  OpenForm("PublicFolderSummary.asp", "Mailbox", "Folder:", folder.value);
  if (server !== "" && ShowPath()) {
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
