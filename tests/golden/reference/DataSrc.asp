<%
var source = Server.CreateObject("KalvoTables.DataSrc");
Response.Write(source.OpenDS() + " " + source.RecordCount());
%>
