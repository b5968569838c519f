<%
// Columns and a column catalogue of the page's own, in a table of its own.
var context = Server.CreateObject("KalvoTables.Context"), display = Server.CreateObject("KalvoTables.Display");
function column(header, content, total) {
  return {
    ConstructHTMLHeader: function (ctxt, disp) { return disp.TableHeaderCell(header, "", "", "", ""); },
    ConstructHTMLData: function (ctxt, disp, row) { return disp.SimpleRowData(Server.HTMLEncode(content(row))); },
    ConstructHTMLTotal: function (ctxt, disp, row, first) {
      var label = first.value ? "All" : total(row);
      first.value = false;
      return disp.MultipleRowData(label, true, 1, 1, "right", "", false, "");
    }
  };
}
var columns = {
  1: column("Server", function (row) { return row.GetRowIndex() + ". " + row.GetField("ComputerName").toUpperCase(); }),
  2: column("State", function (row) { return row.GetField("ServerState") === "2" ? "managed" : "-"; },
            function (row) { return row.GetField("ServerState"); })
};
var table = Server.CreateObject("KalvoTables.Table");
table.Initialize(TABLETYPE_KALVODB, TABLE_RES_ORGANIZATION_ALLSERVERS, "Servers", table_ShowTotals, false, false,
  false, true, [1, 2], "select ComputerName, ServerState from EXDB_SERVER order by %SORT%\r\n\r\n" +
  "select sum(ServerState) as ServerState from EXDB_SERVER", "ComputerName", "ASC");
table.BuildHTML(context, Response, display, { GetColumn: function (id) { return columns[id]; } }, "None.", "Servers");
%>
