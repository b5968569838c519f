<%@ Language="JScript" CodePage="65001" %>
<% Session.Value("x", "ä"); %><%= Session("x").length %>
