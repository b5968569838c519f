<% var m = /(\d+)-(\d+)/.exec("tel 12-34"); %><%= m[1] %>/<%= m[2] %> <%= "a/b/c".replace(/\//g, "-") %> <%= "x1y2".split(/\d/).join("") %>
