<% Response.Status = "404 Not Found"; Response.AddHeader("X-Why", "none"); Response.Write("no such item"); Response.End(); %>not reached
