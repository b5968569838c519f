<select><% var chosen = String(Request.QueryString("size")); var sizes = ["S", "M", "L"];
for (var i = 0; i < sizes.length; i++) { %><option<%= sizes[i] == chosen ? " selected" : "" %>><%= sizes[i] %></option><% } %></select>
