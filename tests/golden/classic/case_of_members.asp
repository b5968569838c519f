<% Response.write("a"); response = Response; response.WRITE(Request.querystring("N").count); Response.Write(Server.htmlEncode("<")); %>
