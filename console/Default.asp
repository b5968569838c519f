<%@ Language="JavaScript" %><% Response.Redirect("Tasks/CurrentAlerts.asp"); %>
