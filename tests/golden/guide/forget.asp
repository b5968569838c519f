<%
var name = String(Request.QueryString("Name")), purpose = "Forget " + name;
if (String(Request.ServerVariables("REQUEST_METHOD")) === "POST" &&
    Session.TakeToken(purpose, String(Request.Form("Token")))) {
  // act, then Response.Redirect to a page that shows
} else { %>
<form method="post" action="Forget.asp?Name=<%= Server.URLEncode(name) %>">
<input type="hidden" name="Token" value="<%= Session.NewToken(purpose) %>">
<input type="submit" value="Forget it">
</form>
<% } %>
