<%@ Language="JavaScript" %><%
// Asks who the visitor is. The server itself takes the answer, sees to the session, and shows this page again when
// the answer was wrong; "KALVO_SIGN_IN" says why then.
var why = String(Request.ServerVariables("KALVO_SIGN_IN"));

function Complaint() {
  if (why === "wrong") { return "This name and password do not fit."; }
  if (why.slice(0, 5) === "wait ") {
    return "There were too many attempts. Please try again in " + why.slice(5) + " seconds.";
  }
  if (why === "full") { return "Nobody can sign in at the moment: the server has no room for a session. Its log says why."; }
  return "";
}

Response.AddHeader("Cache-Control", "no-store");
var complaint = Complaint();
%><!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width">
<title>Sign In - Kalvo for Exchange</title>
<link rel="icon" href="Images/Logo.gif">
<link rel="stylesheet" href="console.css">
</head>
<body class="signin">
<div id="banner"><img src="Images/Logo.gif" width="32" height="32" alt=""><span class="product">Kalvo for Exchange</span></div>
<div id="content">
<h1>Sign In</h1>
<% if (complaint !== "") { Response.Write('<p class="complaint" role="alert">' + Server.HTMLEncode(complaint) + "</p>\r\n"); } %>
<form method="post" action="SignIn.asp">
<input type="hidden" name="Return" value="<%= Server.HTMLEncode(String(Request.QueryString("Return"))) %>">
<p><label>Name<br><input name="Name" autocomplete="username" autofocus required></label></p>
<p><label>Password<br><input type="password" name="Password" autocomplete="current-password" required></label></p>
<p><input type="submit" value="Sign in"></p>
</form>
</div>
<div id="footer">Kalvo for Exchange</div>
</body>
</html>
