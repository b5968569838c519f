<%
var constants = Server.CreateObject("KalvoTables.TableConstants");
Response.Write([constants.TABLES_DSN, constants.gszAscendingSort, constants.gszDescendingSort].join(" "));
%>
