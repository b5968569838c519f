<%
var table = Server.CreateObject("KalvoTables.Table");
table.Initialize(TABLETYPE_KALVODB, TABLE_RES_ORGANIZATION_ALLSERVERS, "Servers", table_NoTotals, false, false, false,
  true, [COL_SERVER_COMPUTER], "select ComputerName, Missing from EXDB_SERVER order by %SORT%", "ComputerName", "ASC");
table.BuildHTML(Server.CreateObject("KalvoTables.Context"), Response, Server.CreateObject("KalvoTables.Display"),
  Server.CreateObject("KalvoTables.KalvoColumnDatabase"), "There are no servers.", "Servers");
%>
