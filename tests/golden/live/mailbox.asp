<%
// A mailbox: where it is, its folders, its messages.
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
var server = String(Request.QueryString("Server")), mailbox = {value: String(Request.QueryString("Mailbox"))},
  container = String(Request.QueryString("Container"));
if (generator.DisplayFolderPath(server, mailbox, container, String(Request.QueryString("ContainerId")), TABLE_MAPI_FOLDERS)) {
  generator.BuildTable(TABLE_MAPI_FOLDERS, server, "", "", mailbox.value, container);
  generator.BuildTable(TABLE_MAPI_MESSAGES, server, "", "", mailbox.value, container);
}
%>
