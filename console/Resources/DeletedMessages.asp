<%@ Language="JavaScript" %><%
// The messages that were deleted from a mailbox and are still held, to be put back. A posted form with the token of its
// row does that; everything else only shows.
var pageTitle = "Deleted Messages";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><!--#include file="../Include/Choices.inc"--><!--#include file="../Include/Mailbox.inc"--><%
var PUBLIC_FOLDERS = 4;
var server = Argument("Server"), mailbox = Argument("Mailbox"), shared = Argument("Public") === "Yes",
  flags = shared ? PUBLIC_FOLDERS : 0, held = Session.StaticObjects("gHeldMessages");

function Purpose(id) {
  return "RestoreMessage " + id;
}

// What came of the posted form, as a sentence.
function Restored(id) {
  if (!Session.TakeToken(Purpose(id), String(Request.Form("Token")))) {
    return "This form was sent already, or is too old. Nothing was restored.";
  }
  try {
    return "The message is back in the folder " + held.Restore(server, mailbox, id, flags) + ".";
  } catch (failure) {
    return "Not restored: " + failure.description;
  }
}

function RestoreForm(item) {
  var address = AddressOf("DeletedMessages.asp", ["Server", server, "Mailbox", mailbox, "Public", shared ? "Yes" : ""]);
  return '<form method="post" action="' + Encode(address) + '"><input type="hidden" name="Id" value="' + Encode(item.Id) +
    '"><input type="hidden" name="Token" value="' + Encode(Session.NewToken(Purpose(item.Id))) +
    '"><input type="submit" value="Restore"></form>';
}

function WriteItems(items) {
  var display = Server.CreateObject("KalvoTables.Display"), i, cells;
  if (items.length === 0) { return Note("No deleted messages are held."); }
  Response.Write('<div class="report"><table border="1">\r\n<tr><th>Subject</th><th>Sender</th><th>Folder</th><th>Size</th>' +
    "<th>Deleted</th><th>By</th><th></th></tr>\r\n");
  for (i = 0; i < items.length; ++i) {
    cells = [items[i].Subject, items[i].Sender, items[i].Folder,
      display.Kalvo_FormatNumericValue(items[i].Size, 1024, "KB", ""),
      display.Kalvo_FormatDateTimeFloat(items[i].Deleted), items[i].Who];
    Response.Write("<tr><td>" + cells.map(Encode).join("</td><td>") + "</td><td>" + RestoreForm(items[i]) + "</td></tr>\r\n");
  }
  Response.Write("</table></div>\r\n");
}

OpenForm("DeletedMessages.asp", "Mailbox", "Mailbox:", mailbox);
if (server !== "" && IsAdministrator()) {
  Links([["DeletedMessages.asp", "Public folders of " + server, "Server", server, "Public", "Yes"]]);
}
if (!held) {
  Note("There are no mailboxes here.");
} else if (server !== "" && (mailbox !== "" || shared)) {
  Note("Deleted messages are kept for " + held.Days + " days.");
  Heading(shared ? "Public folders of " + server : mailbox);
  if (String(Request.ServerVariables("REQUEST_METHOD")) === "POST") { Note(Restored(String(Request.Form("Id")))); }
  try {
    WriteItems(JSON.parse(held.Held(server, mailbox, flags)));
  } catch (failure) {
    Note(failure.description);
  }
}
%><!--#include file="../Include/Footer.inc"-->
