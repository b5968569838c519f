<%@ Language="JavaScript" %><%
var pageTitle = "Performance";
var pageSection = "tasks";
%><!--#include file="../Include/Header.inc"--><!--#include file="../Include/Menu.inc"--><%
var report = ChosenReport("Performance.asp", [
  ["MostMessages", "Most messages", TABLE_PERFORMANCE_AVGMSGS_DESC],
  ["FewestMessages", "Fewest messages", TABLE_PERFORMANCE_AVGMSGS_ASC],
  ["LargestMessages", "Largest messages", TABLE_PERFORMANCE_AVGMSGSIZE_DESC],
  ["SmallestMessages", "Smallest messages", TABLE_PERFORMANCE_AVGMSGSIZE_ASC],
  ["MostDisk", "Most disk I/O", TABLE_PERFORMANCE_AVGDISKIO_DESC],
  ["LeastDisk", "Least disk I/O", TABLE_PERFORMANCE_AVGDISKIO_ASC],
  ["MostMemory", "Most memory", TABLE_PERFORMANCE_AVGMEMUSAGE_DESC],
  ["LeastMemory", "Least memory", TABLE_PERFORMANCE_AVGMEMUSAGE_ASC]
], []);
Heading(report[1]);
Report(report[2]);
%><!--#include file="../Include/Footer.inc"-->
