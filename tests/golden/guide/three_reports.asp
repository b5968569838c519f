<%@ Language="JavaScript" %>
<h1>Servers</h1>
<%
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
generator.BuildTable(TABLE_CURRENTALERTS);
generator.BuildTable(TABLE_RES_ORGANIZATION_ALLSERVERS);
generator.BuildTable(TABLE_TASK_RECOVERYMANAGEMENT_LONGESTBACKUPS);
%>
