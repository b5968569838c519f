<%= Application("Title") %> has <%= Application("limit") * 2 %>, <%= typeof Application("none") %>
