<% var prices = {tea: 2, cake: 3.5}; var total = 0; for (var item in prices) { total += prices[item]; %><%= item %> <% } %>= <%= total %>
