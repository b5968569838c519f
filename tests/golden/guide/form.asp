<%
var name = String(Request.Form("Name")), isPosted = String(Request.ServerVariables("REQUEST_METHOD")) === "POST";
if (isPosted && name === "") { %><p>Please give a name.</p><% }
if (isPosted && name !== "") { %><p>Hello <%= Server.HTMLEncode(name) %>.</p><% } else { %>
<form method="post"><input name="Name"><input type="submit" value="Greet"></form>
<% } %>
