<%
// A message of a public folder: its details and its attachments.
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
var server = String(Request.QueryString("Server")), folder = String(Request.QueryString("Mailbox"));
generator.DisplayMessageInformation(server, folder, "", String(Request.QueryString("MessageId")), false);
generator.BuildTable(TABLE_MAPI_PUBLICFOLDER_ATTACHMENTS, server, "", "", folder);
%>
