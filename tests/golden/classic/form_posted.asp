<% if (Request.ServerVariables("REQUEST_METHOD") == "POST") { %>Hello <%= Server.HTMLEncode(Request.Form("name")) %>!<% } else { %><form method="post"></form><% } %>
