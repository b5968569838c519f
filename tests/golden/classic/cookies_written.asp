<% Response.Cookies("visits") = 3; Response.Cookies("visits").Path = "/shop"; Response.Cookies("name") = "Zoë & Co"; %>set
