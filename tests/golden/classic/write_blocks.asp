<% if (true) %>one<% else %>two<% ; var n = 2; while (n --> 0) { %> <%= n %><% } %>
