<%
var column = Server.CreateObject("KalvoTables.KalvoColumn");
column.Initialize(1, "Size", "Bytes", HYPERLINK_NONE, "", "", column_NoTotal, false, FORMATTYPE_NUMERICVALUE, 1024, "KB",
  1, 1, "right", true, "-");
var context = Server.CreateObject("KalvoTables.Context"), display = Server.CreateObject("KalvoTables.Display");
Response.Write(column.ConstructHTMLData(context, display, { GetField: function (name) { return name === "Bytes" ? "2048" : ""; } }));
%>
