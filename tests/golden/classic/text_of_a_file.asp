<% var lines = Server.ReadText("parts/library.js").split("\n"); %><%= lines[0].slice(0, 11) %> <%= lines.length %>
