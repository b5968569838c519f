<%
// Each operation of a row source that was made and not initialised.
var names = ["KalvodbDataSrc", "TopnDataSrc", "MapiDataSrc"], i, j, source;
var operations = ["OpenDS", "OpenFolderDS", "OpenMessageDS", "CloseDS", "MoveFirst", "MoveNext", "MoveTotals", "GetField",
  "RecordCount", "GetRowIndex"];
for (i = 0; i < names.length; i++) {
  for (j = 0; j < operations.length; j++) {
    source = new ActiveXObject("KalvoTables." + names[i]);
    if (!source[operations[j]]) { continue; }
    try {
      Response.Write(operations[j] + "=" + source[operations[j]]("7") + " ");
    } catch (e) {
      Response.Write(operations[j] + "!" + (e.number & 0xFFFF) + " ");
    }
  }
  Response.Write("\n");
}
%>
