<%@ Language="JavaScript" %>
<p><%= 1 + 2 %></p>
<% var s = "%\>"; /* %%> */ Response.Write(s); // end %>
text