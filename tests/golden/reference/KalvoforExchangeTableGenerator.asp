<%
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
generator.BuildTable(TABLE_RES_ORGANIZATION_ALLSERVERS);
%>
