<!-- a page -->
<%@ Language=JavaScript %>
<%= "ok" %>
