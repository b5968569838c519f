<!--#include file="rows.inc"-->
<%
var rows = [];
for (var i = 1; i <= 7; ++i) rows.push({Name: "Disk " + i, Free: 1024 * 1024 * i});
RowTable({
  rows: rows,
  columns: [
    {title: "Name", field: "Name"},
    {title: "Free", field: "Free", align: "right", total: true,
     text: function (value, display) { return display.Kalvo_FormatNumericValue(value, 1048576, "MB", "-"); }}
  ],
  sort: "Name", pageSize: 3, empty: "There are no disks."
});
%>
