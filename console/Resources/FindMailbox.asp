<%@ Language="JavaScript" %><%
var pageTitle = "Find a Mailbox";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Choices.inc"--><%
var server = Argument("Server"), beginning = Argument("Beginning");
Form("FindMailbox.asp", "Find", function () {
  Selection("Server", "Server:", Servers());
  TextField("Beginning", "Name begins with:", beginning);
});
if (server !== "") {
  Heading("Mailboxes on " + server);
  Report(TABLE_AmbiguousAddressResolution, {name: server, mailbox: beginning + "%"},
    "No mailbox of this server has a name that begins so.");
}
%><!--#include file="../Include/Footer.inc"-->
