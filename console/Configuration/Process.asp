<%@ Language="JavaScript" %><%
// Carries out what a form of the console asks for, then goes back to the page that the form names.
var MAILBOX = "0", PUBLIC_FOLDERS = "4";

// The form's continue address where it is a page of this console, else the start page.
function ContinueAddress() {
  var address = Argument("Continue");
  return /^\.\.\/[A-Za-z]+\/[A-Za-z]+\.asp(\?[^\x00-\x20\x7f\\#]*)?$/.test(address) ? address : "../Default.asp";
}

// The reason why the message was not deleted; "" when it was. The right to drill down is not enough here: the mailbox
// has to be the user's own, and public folders are the administrators'.
function DeleteMessage() {
  var worker = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator"), step = {value: ""},
    store = Argument("Flags");
  if (store !== MAILBOX && store !== PUBLIC_FOLDERS) { return "The form does not say where the message is."; }
  if (store === PUBLIC_FOLDERS ? !IsAdministrator()
                               : !worker.CheckUserPermissions(Argument("ServerName"), Argument("MailboxName"))) {
    return "Delete message not allowed";
  }
  try {
    return worker.DeleteMessage(step) ? "" : step.value;
  } catch (failure) {
    return step.value + ": " + failure.description;
  }
}

var failed = Argument("ProcessType") === "DeleteMessage" ? DeleteMessage() : "This form is not known here.";
if (failed === "") { Response.Redirect(ContinueAddress()); }
var pageTitle = "Not Done";
var pageSection = "";
%><!--#include file="../Include/Header.inc"--><%
Note(failed);
Response.Write("<p>" + Link(ContinueAddress(), "Continue") + "</p>\r\n");
%><!--#include file="../Include/Footer.inc"-->
