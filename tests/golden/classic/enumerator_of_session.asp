<% Session("one") = 1; Session("two") = "zwei"; var e = new Enumerator(Session.Contents);
while (!e.atEnd()) { Response.Write(e.item() + "=" + Session.Contents(e.item()) + ";"); e.moveNext(); } %>
