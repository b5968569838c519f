<% Session("a") = 1; Session("b") = true; Session("c") = "x"; Session.Contents.Remove("b"); %><%= Session.Contents.Count %> <%= typeof Session("b") %>
<% Session.Contents.RemoveAll(); %><%= Session.Contents.Count %>
