<%= Request.ServerVariables("URL") %> <%= Request.ServerVariables("REQUEST_METHOD") %> [<%= Request.ServerVariables("NONE") %>] <%= Request.ServerVariables("LOGON_USER") %>
