<% var names = ["pear", "Apple", "fig"]; names.sort(function (a, b) { return a.toLowerCase() < b.toLowerCase() ? -1 : 1; }); %>
<% for (var i = 0; i < names.length; i++) { %><li><%= names[i] %></li>
<% } %>
