<%
var context = Server.CreateObject("KalvoTables.Context"), display = Server.CreateObject("KalvoTables.Display");
var tables = Server.CreateObject("KalvoTables.KalvoTableDatabase");
var columns = Server.CreateObject("KalvoTables.KalvoColumnDatabase");
function Build(table, name) {
  context.SetName(name);
  table.BuildHTML(context, Response, display, columns, "There are no items in this report.", "");
}
var own = Server.CreateObject("KalvoTables.Table");
own.Initialize(TABLETYPE_KALVODB, TABLE_RES_ORGANIZATION_ALLSERVERS, "", table_NoTotals, false, false, false, true,
  [COL_SERVER_COMPUTER], "select ComputerName, Missing from EXDB_SERVER where ComputerName like %NAME% order by %SORT%",
  "ComputerName", "ASC");
Build(tables.GetTable(TABLE_CURRENTALERTS), "");
Build(own, "S%");
%>
