<%
// A row source of the page's own, handed to columns of the catalogue.
var context = Server.CreateObject("KalvoTables.Context"), display = Server.CreateObject("KalvoTables.Display");
var catalogue = Server.CreateObject("KalvoTables.KalvoColumnDatabase");
context.IncrementTableIndex();
var row = { GetField: function (name) { return { ComputerName: "Zoë & Söhne", Missing: "1", MBSpace: "1572864" }[name]; } };
var totals = { GetField: function (name) { return name === "MBSpace" ? 3145728 : null; } };
var first = { value: true };
Response.Write(catalogue.GetColumn(COL_SERVER_COMPUTER).ConstructHTMLData(context, display, row));
Response.Write(catalogue.GetColumn(COL_SERVERTOTALS_MBSPACE).ConstructHTMLData(context, display, row));
Response.Write("\r\n");
Response.Write(catalogue.GetColumn(COL_SERVER_COMPUTER).ConstructHTMLTotal(context, display, totals, first));
Response.Write(catalogue.GetColumn(COL_SERVERTOTALS_MBSPACE).ConstructHTMLTotal(context, display, totals, first));
Response.Write(" " + first.value);
%>
