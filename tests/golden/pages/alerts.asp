<%
// The Current Alerts report, and nothing else on the page.
Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator").BuildTable(TABLE_CURRENTALERTS);
%>
