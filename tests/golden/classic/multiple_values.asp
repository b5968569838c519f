<% var c = Request.QueryString("c"); for (var i = 1; i <= c.Count; i++) { Response.Write(c(i) + ";"); } %> <%= c %>
