<%
var column = Server.CreateObject("KalvoTables.KalvoControlColumn");
column.Initialize(1, "Take", "", "Id", false, "", true, FORMATTYPE_CHECKBOX);
var context = Server.CreateObject("KalvoTables.Context"), display = Server.CreateObject("KalvoTables.Display");
Response.Write(column.ConstructHTMLData(context, display, { GetField: function (name) { return name === "Id" ? "7" : ""; } }));
%>
