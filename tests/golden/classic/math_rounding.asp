<%= Math.round(2.5) %> <%= (2 / 3).toFixed(2) %> <%= 7 % 3 %> <%= parseInt("12px", 10) %> <%= 1 / 4 %>
