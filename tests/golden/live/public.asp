<%
// A public folder: where it is, its folders, its messages.
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
var server = String(Request.QueryString("Server")), folder = {value: String(Request.QueryString("Mailbox"))};
if (generator.DisplayFolderPath(server, folder, "", "", TABLE_MAPI_PUBLICFOLDER_FOLDERS)) {
  generator.BuildTable(TABLE_MAPI_PUBLICFOLDER_FOLDERS, server, "", "", folder.value);
  generator.BuildTable(TABLE_MAPI_PUBLICFOLDER_MESSAGES, server, "", "", folder.value);
}
%>
