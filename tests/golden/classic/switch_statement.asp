<% switch (String(Request("action"))) { case "edit": %>editing<% break; case "new": %>new<% break; default: %>listing<% } %>
