<% if (Request.ServerVariables("REQUEST_METHOD") == "POST") { %>Hello!<% } else { %><form method="post"><input name="name"></form><% } %>
