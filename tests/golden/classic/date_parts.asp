<% var d = new Date(2026, 1, 3, 4, 5, 6); %><%= d.getFullYear() %>-<%= d.getMonth() + 1 %>-<%= d.getDate() %> <%= d.getHours() %>:<%= d.getMinutes() %>
