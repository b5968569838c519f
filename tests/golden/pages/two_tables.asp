<%
// Two reports, each with its own place in the query string.
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator");
generator.BuildTable(TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS, "", "", "", "", "", TOPN_UNDEFINED, "None.", "Missing");
generator.BuildTable(TABLE_SERVERGROUPSUMMARY, "", "", "", "", "", TOPN_UNDEFINED, "None.", "Groups");
%>
