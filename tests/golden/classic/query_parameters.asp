<% for (var key in Request.QueryString) { %><%= key %>: <%= Server.HTMLEncode(Request.QueryString(key)) %>
<% } %><%= Request.QueryString.Count %>
