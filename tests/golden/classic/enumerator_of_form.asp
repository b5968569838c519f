<% for (var e = new Enumerator(Request.Form); !e.atEnd(); e.moveNext()) { var key = e.item(); %>
<%= key %>=<%= Server.HTMLEncode(Request.Form(key)) %>
<% } %>
