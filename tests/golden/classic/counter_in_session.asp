<%
if (Session("count") == null) Session("count") = 0;
Session("count") = Number(Session("count")) + 1;
Session("count") += 1;
%>count is <%= Session("count") %>
