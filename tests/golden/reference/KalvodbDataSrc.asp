<%
var context = Server.CreateObject("KalvoTables.Context");
context.IncrementTableIndex();
var table = Server.CreateObject("KalvoTables.KalvoTableDatabase").GetTable(TABLE_RES_ORGANIZATION_ALLSERVERS);
var source = Server.CreateObject("KalvoTables.KalvodbDataSrc");
source.Initialize(table, "", context);
if (source.OpenDS() === 0) {
  source.MoveFirst();
  Response.Write(source.RecordCount() + " servers, the first is " + source.GetField("ComputerName"));
  source.CloseDS();
}
%>
