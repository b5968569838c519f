<% if (Request("go") == "") { Response.Redirect("list page.asp?x=ä"); } %>not reached
