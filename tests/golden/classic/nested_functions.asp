<% function outer(list) { function row(text) { %><li><%= text %></li><% } for (var i = 0; i < list.length; i++) row(list[i]); } %><ul><% outer(["a", "b"]); %></ul>
