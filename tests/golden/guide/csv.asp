<%
Response.ContentType = "text/csv";
Response.AddHeader("Content-Disposition", "attachment; filename=\"disks.csv\"");
function Line(values) {
  return values.map(function (value) { return '"' + String(value).replace(/"/g, '""') + '"'; }).join(",") + "\r\n";
}
Response.Write(Line(["Name", "Free"]) + Line(['The "big" one', 12]) + Line(["C:", 3.5]));
%>
