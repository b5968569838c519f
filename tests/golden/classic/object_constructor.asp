<% function Account(name) { this.name = name; this.total = 0; }
Account.prototype.add = function (n) { this.total += n; return this; };
var a = new Account("Ann").add(2).add(3); %><%= a.name %>: <%= a.total %>
