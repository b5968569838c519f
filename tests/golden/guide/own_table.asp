<%
var context = Server.CreateObject("KalvoTables.Context"), display = Server.CreateObject("KalvoTables.Display");
var columns = Server.CreateObject("KalvoTables.KalvoColumnDatabase");
var size = Server.CreateObject("KalvoTables.KalvoColumn");
size.Initialize(1, "Largest Mailbox Space", "Space", HYPERLINK_NONE, "", "", column_KeepTotal, true, FORMATTYPE_NUMERICVALUE,
  1024, "KB", 1, 1, "right", true, "-");
var own = {
  GetColumn: function (id) { return id === 1 ? size : columns.GetColumn(id); }
};
var table = Server.CreateObject("KalvoTables.Table");
table.Initialize(TABLETYPE_KALVODB, TABLE_RES_ORGANIZATION_ALLSERVERS, "Space", table_ShowTotals, false, false, false,
  true, [COL_SERVER_COMPUTER, 1],
  "select s.ComputerName, s.Missing, max(t.MBSpace) as Space from EXDB_SERVER s join EXDB_SERVERTOTALS t " +
  "on t.ServerId = s.ServerId where s.ComputerName like 'S%' group by s.ComputerName, s.Missing order by %SORT%\n\n" +
  "select max(t.MBSpace) as Space from EXDB_SERVERTOTALS t join EXDB_SERVER s on s.ServerId = t.ServerId " +
  "where s.ComputerName like 'S%'", "s.ComputerName", "ASC");
table.BuildHTML(context, Response, display, own, "There are no servers.", "Space");
%>
