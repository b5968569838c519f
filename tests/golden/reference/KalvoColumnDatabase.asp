<%
var columns = Server.CreateObject("KalvoTables.KalvoColumnDatabase");
var context = Server.CreateObject("KalvoTables.Context"), display = Server.CreateObject("KalvoTables.Display");
context.IncrementTableIndex();
Response.Write(columns.GetColumn(COL_SERVER_COMPUTER).ConstructHTMLHeader(context, display));
%>
