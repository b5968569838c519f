<%@ Language="JavaScript" %><%
// Deletes the message that the address names, as a page of somebody's own does.
var generator = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator"), step = {value: ""}, deleted;
try {
  deleted = generator.DeleteMessage(step);
  Response.Write("deleted: " + deleted + " " + step.value);
} catch (failure) {
  Response.Write(step.value + ": " + failure.description);
}
%>
