<% Response.ContentType = "application/json"; Response.Write(JSON.stringify({rows: [[1, "a"], [2, null]]})); %>
