<%= "abc".charAt(1) %> <%= "abc".substr(1, 2) %> <%= "a,b".split(",").length %> <%= "Trim me".toUpperCase() %> <%= "abc".indexOf("c") %> <%= "é".charCodeAt(0) %>
