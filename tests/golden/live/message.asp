<%
// A message of a mailbox: its details and its attachments.
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
var server = String(Request.QueryString("Server")), mailbox = String(Request.QueryString("Mailbox")),
  container = String(Request.QueryString("Container"));
generator.DisplayMessageInformation(server, mailbox, container, String(Request.QueryString("MessageId")), true);
generator.BuildTable(TABLE_MAPI_ATTACHMENTS, server, "", "", mailbox, container);
%>
