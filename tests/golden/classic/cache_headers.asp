<% Response.Expires = 0; Response.CacheControl = "private"; %>ok
