<%
var context = Server.CreateObject("KalvoTables.Context");
context.SetOrg("Meridian");
context.SetTopN(TOPN_ORGANIZATION);
context.IncrementTableIndex();
var table = Server.CreateObject("KalvoTables.KalvoTableDatabase").GetTable(TABLE_TOPN_MailboxAverageSize);
table.SetTopNParameters(context);
var source = table.GetDataSrc(context);
if (source.OpenDS() === 0 && source.MoveFirst() === 0) Response.Write(source.RecordCount() + " mailboxes");
%>
