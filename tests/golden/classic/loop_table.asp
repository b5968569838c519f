<table><% for (var r = 1; r <= 2; r++) { %><tr><% for (var c = 1; c <= 3; c++) { %><td><%= r * c %></td><% } %></tr><% } %></table>
