<%
var display = Server.CreateObject("KalvoTables.Display");
Response.Write(display.DetailTableStart("") + display.TableRowStart());
Response.Write(display.SimpleRowData(Server.HTMLEncode("a < b")));
Response.Write(display.SimpleRowData(display.Kalvo_FormatNumericValue(1536, 1024, "KB", "-")));
Response.Write(display.TableRowEnd() + display.DetailTableEnd());
%>
