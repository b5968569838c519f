// Every figure of the reports, added up here from the plain rows of the tables, without the reports' own SQL.
#include <gtest/gtest.h>

#include "database/figures_fixture.h"

namespace kalvo::test {
namespace {

// ---- servers and their totals -----------------------------------------------------------------------------

const std::vector<std::string> kServerFigures = {"mailboxes", "mbmessages", "mbspace",
                                                 "pbfolders", "pbmessages", "pbspace"};

TEST_F(Figures, OfServersAreTheCurrentTotalsAndTheTotalsRowIsTheirSum) {
  struct Case {
    int id;
    Scope scope;
    std::vector<std::string> figures;
  };
  const std::vector<std::string> four = {"mailboxes", "mbspace", "pbfolders", "pbspace"};
  const Case cases[] = {{30, {"Branch Offices", "", "", ""}, kServerFigures},
                        {34, {"R&D <Lab>", "", "", ""}, kServerFigures},
                        {31, {"", "Côte & Fils", "", ""}, four},
                        {32, {"", "Meridian", "O'Fallon", ""}, four}};
  for (const Case& report : cases) {
    SCOPED_TRACE("report " + std::to_string(report.id));
    std::multiset<Row> expected;
    std::map<std::string, std::int64_t> sums;
    for (const RawRow& server : Managed()) {
      const bool inScope = report.scope.name.empty()
                               ? server.Text("distorgname") == report.scope.organization &&
                                     (report.scope.site.empty() || server.Text("distsitename") == report.scope.site)
                               : GroupName(server.Number("servergroupid")) == report.scope.name;
      if (!inScope) continue;
      Row row = {server.Text("domainname"), server.Text("computername")};
      const auto totals = Current(server.Number("serverid"), 1, "EXDB_SERVERTOTALS", "servertotalsid");
      ASSERT_LE(totals.size(), 1u);
      for (const std::string& figure : report.figures) {
        row.push_back(totals.empty() ? "" : totals[0].Text(figure));
        if (!totals.empty()) sums[figure] += totals[0].Number(figure);
      }
      expected.insert(row);
    }
    ASSERT_FALSE(expected.empty());
    std::vector<std::string> fields = {"domainname", "computername"};
    fields.insert(fields.end(), report.figures.begin(), report.figures.end());
    const ReportRows actual = RowsOfReport(Outside(), report.id, report.scope, fields, report.figures);
    EXPECT_EQ(Picked(actual.rows, fields), expected);
    for (const std::string& figure : report.figures) EXPECT_EQ(actual.totals.Number(figure), sums[figure]) << figure;
  }
}

TEST_F(Figures, OfServerGroupsAreTheSumsOfTheirServers) {
  for (const RawRow& group : Table("EXDB_SERVERGROUP")) {
    const std::string name = GroupName(group.Number("servergroupid"));
    SCOPED_TRACE(name);
    std::int64_t members = 0, mailboxes = 0, space = 0, folders = 0, folderSpace = 0;
    bool scanned = false;
    for (const RawRow& server : Managed()) {
      if (server.Number("servergroupid") != group.Number("servergroupid")) continue;
      ++members;
      for (const RawRow& totals : Current(server.Number("serverid"), 1, "EXDB_SERVERTOTALS", "servertotalsid")) {
        scanned = true;
        mailboxes += totals.Number("mailboxes"), space += totals.Number("mbspace");
        folders += totals.Number("pbfolders"), folderSpace += totals.Number("pbspace");
      }
    }
    const auto rowOf = [&](int id, const std::vector<std::string>& fields) {
      for (const RawRow& row : RowsOfReport(Outside(), id, {}, fields).rows) {
        if (row.Text("name") == name) return Picked(row, fields);
      }
      return Row{"no row"};
    };
    const auto shown = [&](std::int64_t figure) { return scanned ? std::to_string(figure) : ""; };
    EXPECT_EQ(rowOf(25, {"name", "membercount"}), (Row{name, std::to_string(members)}));
    EXPECT_EQ(rowOf(26, {"name", "mailboxes", "mbspace"}), (Row{name, shown(mailboxes), shown(space)}));
    EXPECT_EQ(rowOf(27, {"name", "pbfolders", "pbspace"}), (Row{name, shown(folders), shown(folderSpace)}));
  }
}

TEST_F(Figures, OfMailboxGroupsAreTheirCurrentTotalsWhichCoverEveryMailbox) {
  std::multiset<Row> expected;
  std::int64_t mailboxes = 0, messages = 0, space = 0;
  for (const RawRow& current : Table("EXDB_RECIPIENTGROUPCURRENT")) {
    for (const RawRow& totals : Table("EXDB_RECIPIENTGROUPTOTALS")) {
      if (totals.Number("recipientgrouptotalsid") != current.Number("historyrecord")) continue;
      expected.insert({GroupName(current.Number("recipientgroupid")), totals.Text("mailboxes"),
                       totals.Text("mbmessages"), totals.Text("mbspace")});
      mailboxes += totals.Number("mailboxes"), messages += totals.Number("mbmessages"),
          space += totals.Number("mbspace");
    }
  }
  const std::vector<std::string> fields = {"name", "mailboxes", "mbmessages", "mbspace"};
  const ReportRows actual = RowsOfReport(Outside(), 29, {}, fields, {"mailboxes", "mbmessages", "mbspace"});
  EXPECT_EQ(Picked(actual.rows, fields), expected);
  EXPECT_EQ(actual.totals.Number("mailboxes"), mailboxes);
  EXPECT_EQ(actual.totals.Number("mbmessages"), messages);
  EXPECT_EQ(actual.totals.Number("mbspace"), space);

  // The sample's mailboxes are each in one group.
  std::int64_t allMessages = 0, allSpace = 0;
  const auto all = Table("EXDB_MAILBOX");
  for (const RawRow& mailbox : all) allMessages += mailbox.Number("msgcount"), allSpace += mailbox.Number("msgsize");
  EXPECT_EQ(mailboxes, static_cast<std::int64_t>(all.size()));
  EXPECT_EQ(messages, allMessages);
  EXPECT_EQ(space, allSpace);
}

TEST_F(Figures, OfAServersTotalsAreThoseOfItsMailboxes) {
  for (const RawRow& server : Managed()) {
    SCOPED_TRACE(server.Text("computername"));
    std::int64_t count = 0, messages = 0, space = 0;
    for (const RawRow& mailbox : Table("EXDB_MAILBOX")) {
      if (mailbox.Number("serverid") != server.Number("serverid")) continue;
      ++count, messages += mailbox.Number("msgcount"), space += mailbox.Number("msgsize");
    }
    const auto totals = Current(server.Number("serverid"), 1, "EXDB_SERVERTOTALS", "servertotalsid");
    if (totals.empty()) {
      EXPECT_EQ(count, 0);
      continue;
    }
    EXPECT_EQ(totals[0].Number("mailboxes"), count);
    EXPECT_EQ(totals[0].Number("mbmessages"), messages);
    EXPECT_EQ(totals[0].Number("mbspace"), space);
  }
}

// ---- charge-back ------------------------------------------------------------------------------------------

TEST_F(Figures, OfMailboxesAreTheirOwnAndTheTotalsRowIsTheirSum) {
  struct Case {
    int id;
    Scope scope;
  };
  const Case cases[] = {{39, {"", "Nordlicht", "", ""}},
                        {40, {"", "Nordlicht", "Москва", ""}},
                        {41, {"SEA-EX01", "", "", ""}},
                        {42, {"Production", "", "", ""}}};
  for (const Case& report : cases) {
    SCOPED_TRACE("report " + std::to_string(report.id));
    std::map<Row, double> averages;
    std::int64_t count = 0, size = 0;
    for (const RawRow& server : Managed()) {
      const bool inScope = report.id == 41 ? server.Text("computername") == report.scope.name
                           : report.id == 42
                               ? GroupName(server.Number("servergroupid")) == report.scope.name
                               : server.Text("distorgname") == report.scope.organization &&
                                     (report.scope.site.empty() || server.Text("distsitename") == report.scope.site);
      if (!inScope) continue;
      for (const RawRow& mailbox : Table("EXDB_MAILBOX")) {
        if (mailbox.Number("serverid") != server.Number("serverid")) continue;
        const std::int64_t messages = mailbox.Number("msgcount");
        count += messages, size += mailbox.Number("msgsize");
        averages[Picked(mailbox, {"mbname", "mbdistname", "msgcount", "msgsize"})] =
            messages == 0 ? 0.0 : static_cast<double>(mailbox.Number("msgsize")) / static_cast<double>(messages);
      }
    }
    ASSERT_GT(averages.size(), 5u);
    const std::vector<std::string> fields = {"mbname", "mbdistname", "msgcount", "msgsize", "averagemsgsize"};
    const ReportRows actual = RowsOfReport(Outside(), report.id, report.scope, fields, {"msgcount", "msgsize"});
    EXPECT_EQ(actual.rows.size(), averages.size());
    for (const RawRow& row : actual.rows) {
      const auto found = averages.find(Picked(row, {"mbname", "mbdistname", "msgcount", "msgsize"}));
      ASSERT_NE(found, averages.end()) << row.Text("mbname");
      EXPECT_NEAR(ParseNumber(row.Text("averagemsgsize")).value(), found->second, 1e-6 * found->second);
    }
    EXPECT_EQ(actual.totals.Number("msgcount"), count);
    EXPECT_EQ(actual.totals.Number("msgsize"), size);
  }
}

TEST_F(Figures, ResolvingANameFindsTheMailboxesOfAServerThatBeginSo) {
  std::multiset<Row> expected;
  for (const RawRow& server : Managed()) {
    if (server.Text("computername") != "ZRH-EX01") continue;
    for (const RawRow& mailbox : Table("EXDB_MAILBOX")) {
      if (mailbox.Number("serverid") == server.Number("serverid") && mailbox.Text("mbname").starts_with("A")) {
        expected.insert({mailbox.Text("mbname"), mailbox.Text("mbdistname")});
      }
    }
  }
  ASSERT_FALSE(expected.empty());
  const std::vector<std::string> fields = {"mbname", "mbdistname"};
  EXPECT_EQ(Picked(RowsOfReport(Outside(), 43, {"ZRH-EX01", "", "", "A%"}, fields).rows, fields), expected);
}

// ---- alerts, quotas, lists --------------------------------------------------------------------------------

TEST_F(Figures, OfAlertReportsAreTheAlertsOfTheirCodes) {
  struct Case {
    int id;
    std::set<std::int64_t> codes;  // empty: all of the console's own
  };
  const Case cases[] = {{2, {}},
                        {12, {5018}},
                        {13, {5001, 5002, 5006, 5008, 5009, 5013, 5036}},
                        {14, {5004, 5005, 5007, 5011, 5012, 5014, 5042}},
                        {15, {5016}},
                        {16, {5030, 5031, 5032, 5033, 5034, 5035}}};
  for (const Case& report : cases) {
    SCOPED_TRACE("report " + std::to_string(report.id));
    std::multiset<Row> expected;
    std::set<std::int64_t> seen;
    for (const RawRow& alert : Table("RMC_ALERT")) {
      for (const RawRow& type : Table("RMC_ALERTTYPE")) {
        if (type.Number("alerttypeid") != alert.Number("alerttypeid")) continue;
        const std::int64_t code = type.Number("alerttypecode");
        if (report.codes.empty() ? type.Text("subsystem") != "Exchange Manager" : !report.codes.contains(code))
          continue;
        expected.insert(Picked(alert, {"alertedresource", "attrib2", "attrib6", "alerttime"}));
        seen.insert(code);
      }
    }
    if (!report.codes.empty()) {
      EXPECT_EQ(seen, report.codes) << "the sample lacks a code";
    }
    const std::vector<std::string> fields = {"alertedresource", "attrib2", "attrib6", "alerttime"};
    EXPECT_EQ(Picked(RowsOfReport(Outside(), report.id, {}, fields).rows, fields), expected);
  }
}

TEST_F(Figures, OfQuotaViolationsAreBeyondTheirThresholds) {
  const std::vector<std::string> fields = {"recipientname", "value", "thresholdvalue3"};
  const ReportRows all = RowsOfReport(Outside(), 10, {}, fields);
  EXPECT_EQ(all.rows.size(), Table("EXDB_QUOTAVIOLATION").size());
  for (const RawRow& row : all.rows) {
    EXPECT_GT(ParseNumber(row.Text("value")).value(), ParseNumber(row.Text("thresholdvalue3")).value());
  }
  EXPECT_EQ(RowsOfReport(Outside(), 9, {}, {"recipientname"}).rows.size(), all.rows.size());
  const std::string name = all.rows.front().Text("recipientname");
  const auto ofOne = static_cast<std::size_t>(
      std::ranges::count_if(all.rows, [&](const RawRow& row) { return row.Text("recipientname") == name; }));
  EXPECT_EQ(RowsOfReport(Outside(), 10, {name, "", "", ""}, fields).rows.size(), ofOne);
}

TEST_F(Figures, OfMembershipNameEveryManagedServerOnce) {
  const std::vector<std::string> fields = {"notingroup", "computername", "identifier", "groupname", "defaultgroup"};
  std::multiset<Row> expected;
  for (const RawRow& server : Managed()) {
    const std::string group = GroupName(server.Number("servergroupid"));
    expected.insert({group == "Production" ? "FALSE" : "TRUE", server.Text("computername"), server.Text("serverid"),
                     group, group == "Default Servers" ? "1" : "0"});
  }
  EXPECT_EQ(Picked(RowsOfReport(Outside(), 37, {"Production", "", "", ""}, fields).rows, fields), expected);
}

TEST_F(Figures, OfListsAreTheTablesThemselves) {
  const auto servers = Table("EXDB_SERVER");
  EXPECT_EQ(RowsOfReport(Outside(), 33, {}, {"computername"}).rows.size(), servers.size());
  std::multiset<Row> missing;
  for (const RawRow& server : Managed()) {
    if (server.Number("missing") == 1) missing.insert({server.Text("computername")});
  }
  EXPECT_FALSE(missing.empty());
  EXPECT_EQ(Picked(RowsOfReport(Outside(), 11, {}, {"computername"}).rows, {"computername"}), missing);
  for (const int id : {28, 36}) {
    EXPECT_EQ(RowsOfReport(Outside(), id, {}, {"name", "priorityvalue"}).rows.size(),
              Table("EXDB_RECIPIENTGROUP").size());
  }
  EXPECT_EQ(RowsOfReport(Outside(), 35, {}, {"name"}).rows.size(), Table("EXDB_SERVERGROUP").size());
}

}  // namespace
}  // namespace kalvo::test
