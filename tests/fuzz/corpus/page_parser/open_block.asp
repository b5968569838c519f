a
<% if (true) {
