<%= twice(21) %>
<script runat="server" language="JScript">
function twice(n) { return 2 * n; }
</script>
done
