<% Response.Buffer = true; Response.Write("lost"); Response.Clear(); Response.Write("kept"); %>
