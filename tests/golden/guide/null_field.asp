<%
var display = Server.CreateObject("KalvoTables.Display");
function Number0(text) { return text === "" ? "-" : display.Kalvo_FormatNumber(text, false); }
Response.Write(Number0("") + " " + Number0("1234"));
%>
