<%@ Language="JavaScript" %><%
// One's own password. The server itself takes the form, because no page is to see passwords, and shows this page again;
// "KALVO_PASSWORD" says why then. After a change it is the session that says so, once.
var pageTitle = "Change Password";
var pageSection = "";
%><!--#include file="../Include/Header.inc"--><%
var outcome = String(Request.ServerVariables("KALVO_PASSWORD"));

function Complaint() {
  if (outcome === "wrong") { return "The old password is another one."; }
  if (outcome === "differ") { return "The new password was typed in two ways."; }
  if (outcome === "fixed") {
    return "This server may not change passwords. Ask whoever runs it: the command is \"kalvo passwd\".";
  }
  if (outcome.slice(0, 3) === "no ") { return "Not taken: " + outcome.slice(3) + "."; }
  if (outcome.slice(0, 5) === "wait ") {
    return "There were too many attempts. Please try again in " + outcome.slice(5) + " seconds.";
  }
  return "";
}

function PasswordField(label, name, kind) {
  Response.Write("<p><label>" + label + '<br><input type="password" name="' + name + '" autocomplete="' + kind +
    '" maxlength="1024" required></label></p>\r\n');
}

function WriteForm() {
  Response.Write('<form method="post" action="Password.asp">\r\n');
  PasswordField("Old password", "OldPassword", "current-password");
  PasswordField("New password", "NewPassword", "new-password");
  PasswordField("New password, again", "RepeatedPassword", "new-password");
  Response.Write('<p><input type="submit" value="Change password"></p>\r\n</form>\r\n');
  Note("At least 12 characters; several words make a good one. You are signed out everywhere else.");
}

if (String(Request.ServerVariables("AUTH_TYPE")) !== "Form") {
  Note("There is no password of this console: you are known to it without one.");
} else if (String(Session("KalvoPasswordChanged")) === "Yes") {
  Session.Value("KalvoPasswordChanged", "");
  Note("Your password was changed, and you are signed out everywhere else.");
} else {
  if (Complaint() !== "") {
    Response.Write('<p class="complaint" role="alert">' + Encode(Complaint()) + "</p>\r\n");
  }
  WriteForm();
}
%><!--#include file="../Include/Footer.inc"-->
