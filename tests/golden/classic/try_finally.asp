<% function f() { try { return "try"; } finally { Response.Write("finally "); } } %><%= f() %>
