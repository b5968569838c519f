<%
// A response, a request, a server and a session of the page's own.
var written = [], asked = [];
var query = { Sort: ["ComputerName"], SortOrder: ["DESC"], Tag: ["a b"] };
var host = {
  Response: { Write: function (text) { written.push(text); }, Flush: function () { asked.push("Flush"); } },
  Request: {
    QueryString: function (key) {
      if (key === undefined) return { Sort: 1, SortOrder: 1, Tag: 1 };
      var values = query[key] || [];
      return { Count: values.length, Item: function (i) { return values[i - 1]; } };
    },
    ServerVariables: function (name) { return name === "URL" ? "/own/page" : ""; }
  },
  Server: {
    HTMLEncode: function (text) { return "{" + text + "}"; },
    URLEncode: function (text) { return "[" + text + "]"; }
  },
  Session: { Value: function (name) { asked.push(name); return name === "KalvoAdministrator" ? "Yes" : ""; } }
};
var generator = new ActiveXObject("KalvoTables.KalvoforExchangeTableGenerator");
generator.OnStartPage(host);
generator.BuildTable(TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS);
generator.OnEndPage();
Response.Write(written.join("") + "\r\n" + asked.join(","));
%>
