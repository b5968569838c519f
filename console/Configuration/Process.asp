<%@ Language="JavaScript" %><%
// Carries out what a form of the console asks for, then goes back to the page that the form names. The form itself and
// every link lead here by GET: that shows what would be done, and asks. Only the answer is posted, and only with the
// token of the question anything is done.
var MAILBOX = "0", PUBLIC_FOLDERS = "4";
var FIELDS = ["ProcessType", "ServerName", "MailboxName", "FolderId", "MessageId", "Flags", "Continue"];

// The form's continue address where it is a page of this console, else the start page.
function ContinueAddress() {
  var address = Argument("Continue");
  return /^\.\.\/[A-Za-z]+\/[A-Za-z]+\.asp(\?[^\x00-\x20\x7f\\#]*)?$/.test(address) ? address : "../Default.asp";
}

// This page with the fields of the form: the answer is posted to it, and `DeleteMessage` reads the query string.
function AnswerAddress() {
  var parameters = [];
  for (var i = 0; i < FIELDS.length; ++i) { parameters.push(FIELDS[i], Argument(FIELDS[i])); }
  return AddressOf("Process.asp", parameters);
}

// What the token of the question is good for: this message, and no other.
function Purpose() {
  return "DeleteMessage " + Argument("MessageId");
}

// The reason why the visitor may not delete; "" when there is none. The right to drill down is not enough here: the
// mailbox has to be the user's own, and public folders are the administrators'.
function Refusal(worker) {
  var store = Argument("Flags"), allowed;
  if (Argument("ProcessType") !== "DeleteMessage") { return "This form is not known here."; }
  if (store !== MAILBOX && store !== PUBLIC_FOLDERS) { return "The form does not say where the message is."; }
  allowed = store === PUBLIC_FOLDERS ? IsAdministrator()
                                     : worker.CheckUserPermissions(Argument("ServerName"), Argument("MailboxName"));
  if (allowed) { return ""; }
  Session.NoteRefusal("delete in " + Argument("MailboxName") + " on " + Argument("ServerName"));
  return "Delete message not allowed";
}

// The reason why the message was not deleted; "" when it was.
function Delete(worker) {
  var step = {value: ""};
  if (!Session.TakeToken(Purpose(), String(Request.Form("Token")))) {
    return "This answer was given already, or its question is too old. Nothing was deleted.";
  }
  try {
    return worker.DeleteMessage(step) ? "" : step.value;
  } catch (failure) {
    return step.value + ": " + failure.description;
  }
}

// What is known of the message, [name, text] each; the reason as a text where it cannot be read.
function Description() {
  var live = Session.StaticObjects("gLiveDriller"), display = Server.CreateObject("KalvoTables.Display");
  try {
    live.GotoMsgAttachment(Argument("ServerName"), Argument("MailboxName"), Argument("MessageId"), Number(Argument("Flags")));
    return [["Subject", live.MessageSubject()], ["Sender", live.MessageSender()], ["Folder", live.CurrentContainerName()],
      ["Size", display.Kalvo_FormatNumericValue(live.MessageSize(), 1024, "KB")],
      ["Creation Date", display.Kalvo_FormatDateTimeFloat(live.MessageCreationDate())]];
  } catch (failure) {
    return "Delete Message: " + failure.description;
  }
}

function Ask(facts) {
  var held = Session.StaticObjects("gHeldMessages");
  Response.Write('<table class="facts">\r\n');
  for (var i = 0; i < facts.length; ++i) {
    Response.Write("<tr><th>" + Encode(facts[i][0]) + "</th><td>" + Encode(facts[i][1]) + "</td></tr>\r\n");
  }
  Response.Write("</table>\r\n");
  if (held) { Note("It is kept for " + held.Days + " days, and can be restored under Deleted Messages until then."); }
  Response.Write('<form class="scope" method="post" action="' + Encode(AnswerAddress()) + '">\r\n' +
    '<input type="hidden" name="Token" value="' + Encode(Session.NewToken(Purpose())) + '">\r\n' +
    '<input type="submit" value="Delete this message">\r\n' + Link(ContinueAddress(), "Keep it") + "\r\n</form>\r\n");
}

var worker = Server.CreateObject("KalvoTables.KalvoforExchangeTableGenerator"), failed = Refusal(worker), facts = null;
if (failed === "" && String(Request.ServerVariables("REQUEST_METHOD")) === "POST") {
  failed = Delete(worker);
  if (failed === "") { Response.Redirect(ContinueAddress()); }
} else if (failed === "") {
  facts = Description();
  if (typeof facts === "string") { failed = facts; }
}
var pageTitle = failed === "" ? "Delete a Message?" : "Not Done";
var pageSection = "";
%><!--#include file="../Include/Header.inc"--><%
if (failed === "") {
  Ask(facts);
} else {
  Note(failed);
  Response.Write("<p>" + Link(ContinueAddress(), "Continue") + "</p>\r\n");
}
%><!--#include file="../Include/Footer.inc"-->
