<%
Response.ContentType = "application/json";
Response.Write(JSON.stringify({name: "Kalvo", servers: [{name: "SEA-EX01", free: 12.5}, {name: "BEL-EX01", free: null}]}));
%>
