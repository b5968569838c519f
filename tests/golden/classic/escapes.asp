<%= escape("a b/ä") %> <%= unescape("%E4") %> <%= encodeURIComponent("a b/ä") %> <%= Server.URLEncode("a b/ä") %>
