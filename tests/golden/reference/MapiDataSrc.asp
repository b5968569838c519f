<%
var context = Server.CreateObject("KalvoTables.Context");
var table = Server.CreateObject("KalvoTables.KalvoTableDatabase").GetTable(TABLE_MAPI_FOLDERS);
var source = Server.CreateObject("KalvoTables.MapiDataSrc");
source.Initialize(table, "SEA-EX01", context);
Response.Write(source.OpenDS() === 0 ? source.RecordCount() + " folders" : "no folders without mailboxes");
%>
