<!--#include file="parts/header.inc"-->
<p><%= title("body") %></p>
<!-- #include virtual='/parts/footer.inc' -->
