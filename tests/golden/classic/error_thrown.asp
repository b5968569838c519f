<% function Fault(number, description) { var e = new Error(description); e.number = number; e.description = description; return e; }
try { throw Fault(-2147217900, "mine"); } catch (e) { Response.Write(e.number + ": " + e.description); } %>
