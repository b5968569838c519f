<%
var tables = Server.CreateObject("KalvoTables.KalvoTableDatabase");
for (var id = 1; id <= 3; ++id) {
  Response.Write(id + ": " + (tables.IsTableNull(id) ? "none" : tables.GetTable(id).GetOrderBy()) + "\n");
}
%>
