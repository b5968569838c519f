<%= Server.MapPath("/parts").indexOf("parts") > 0 %> <%= Server.MapPath("x.txt").slice(-5) %>
