<%
var context = Server.CreateObject("KalvoTables.Context");
context.SetName("SEA-EX01");
context.IncrementTableIndex();
Response.Write(context.GetName() + ", table " + context.TableIndex + "\n");
Response.Write(context.TableURL("Name", "ASC", "1", "50"));
%>
