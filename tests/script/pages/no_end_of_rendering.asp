<%
// A table that is rendered while it is rendered, as deep as script may call.
var display = Server.CreateObject("KalvoTables.Display"), context = Server.CreateObject("KalvoTables.Context");
var columns = new ActiveXObject("KalvoTables.KalvoColumnDatabase"), table = new ActiveXObject("KalvoTables.Table"), n = 0;
table.Initialize(TABLETYPE_KALVODB, TABLE_CURRENTALERTS, "", table_ShowTotals, false, false, false, true, [16], "select 1 as n", "", "");
var endless = {
  Write: function () {
    if (++n > 500) { return; }
    table.BuildHTML(context, endless, display, columns, "None.", "Title");
  }
};
try { endless.Write(); } catch (e) { }
Response.Write(n > 3 ? "survived" : "came back after " + n);
%>
