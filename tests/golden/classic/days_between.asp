<% var from = new Date(Date.UTC(2026, 0, 31)), day = 24 * 3600 * 1000; %><%= (new Date(from.getTime() + day)).getUTCMonth() %> <%= Math.floor((Date.UTC(2026, 2, 1) - from) / day) %>
