<% var q = Request.QueryString("q"); %>[<%= q %>] <%= q.Count %> <%= String(q) === "" %> <%= q == "" %>
