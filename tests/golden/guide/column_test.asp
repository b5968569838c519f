<%
// A column is a function of its row: it is tested with a row that the test makes.
var space = {
  ConstructHTMLData: function (context, display, row) {
    var bytes = Number(row.GetField("Space"));
    return display.SimpleRowData(bytes > 1048576 ? "<b>full</b>" : "fine");
  }
};
var display = Server.CreateObject("KalvoTables.Display");
function cell(bytes) { return space.ConstructHTMLData(null, display, { GetField: function (name) { return String(bytes); } }); }
function expect(what, is, should) { Response.Write((is === should ? "ok   " : "FAIL ") + what + "\n"); }
Response.ContentType = "text/plain";
expect("below a megabyte", cell(1000), "<td>fine</td>");
expect("above it", cell(2000000), "<td><b>full</b></td>");
%>
