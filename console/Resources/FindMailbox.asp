<%@ Language="JavaScript" %><%
var pageTitle = "Find a Mailbox";
var pageSection = "resources";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Choices.inc"--><%
var server = Argument("Server"), beginning = Argument("Beginning");
Response.Write('<form class="scope" method="get" action="FindMailbox.asp">\r\n');
Selection("Server", "Server:", Servers());
Response.Write('<label>Name begins with: <input name="Beginning" value="' + Encode(beginning) + '"></label>\r\n' +
  '<input type="submit" value="Find">\r\n</form>\r\n');
if (server !== "") {
  Heading("Mailboxes on " + server);
  Report(TABLE_AmbiguousAddressResolution, {name: server, mailbox: beginning + "%"},
    "No mailbox of this server has a name that begins so.");
}
%><!--#include file="../Include/Footer.inc"-->
