<% var seen = 0; for (var name in Request.Cookies) { seen++; } %>cookies: <%= seen %>, none: [<%= Request.Cookies("none") %>]
