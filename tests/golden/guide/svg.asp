<%
Response.ContentType = "image/svg+xml";
var values = [3, 7, 5];
%><svg xmlns="http://www.w3.org/2000/svg" width="<%= 20 * values.length %>" height="80">
<% for (var i = 0; i < values.length; ++i) { %><rect x="<%= 20 * i %>" y="<%= 80 - 10 * values[i] %>" width="15" height="<%= 10 * values[i] %>"/>
<% } %></svg>
