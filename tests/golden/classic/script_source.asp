<script language="JavaScript" runat="server" src="parts/library.js"></script>
<script src="client.js"></script>
<%= library.add(1, 2) %>
