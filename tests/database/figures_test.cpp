#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

#include "database/raw_rows.h"
#include "database/sample_databases.h"
#include "kalvo/platform/conversion.h"

// Every figure of the reports, added up here from the plain rows of the tables, without the reports' own SQL.

namespace kalvo::test {
namespace {

class Figures : public testing::Test {
 protected:
  static const Platform& Outside() { return SampleDatabases::Shared().PlatformOf(Engine::Sqlite); }
  static std::vector<RawRow> Table(std::string_view name) { return RowsOf(Outside(), name); }

  static std::vector<RawRow> Managed() {
    std::vector<RawRow> servers = Table("EXDB_SERVER");
    std::erase_if(servers, [](const RawRow& server) { return server.Number("serverstate") != 2; });
    return servers;
  }

  // The record of a server that EXDB_SERVERCURRENT points to; nothing for a server that was never scanned.
  static std::vector<RawRow> Current(std::int64_t server, int type, std::string_view table, const std::string& key) {
    std::vector<RawRow> found;
    for (const RawRow& current : Table("EXDB_SERVERCURRENT")) {
      if (current.Number("serverid") != server || current.Number("historytype") != type) continue;
      for (const RawRow& record : Table(table)) {
        if (record.Number(key) == current.Number("historyrecord")) found.push_back(record);
      }
    }
    return found;
  }

  static std::string GroupName(std::int64_t id) {
    for (const RawRow& group : Table("EXDB_GROUP")) {
      if (group.Number("groupid") == id) return group.Text("name");
    }
    return "";
  }
};

using Row = std::vector<std::string>;

Row Picked(const RawRow& row, const std::vector<std::string>& fields) {
  Row picked;
  for (const std::string& field : fields) picked.push_back(row.Text(field));
  return picked;
}

std::multiset<Row> Picked(const std::vector<RawRow>& rows, const std::vector<std::string>& fields) {
  std::multiset<Row> picked;
  for (const RawRow& row : rows) picked.insert(Picked(row, fields));
  return picked;
}

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

// ---- disks ------------------------------------------------------------------------------------------------

struct Disk {
  std::string server, group, name;
  std::int64_t size, free, files;
};

std::vector<Disk> DisksOf(const std::vector<RawRow>& managed, const std::vector<RawRow>& partitions,
                          const std::vector<RawRow>& files, const std::vector<RawRow>& history,
                          const std::function<std::string(std::int64_t)>& groupName) {
  std::vector<Disk> disks;
  for (const RawRow& partition : partitions) {
    for (const RawRow& server : managed) {
      if (server.Number("serverid") != partition.Number("serverid")) continue;
      Disk disk{server.Text("computername"),   groupName(server.Number("servergroupid")),
                partition.Text("name"),        partition.Number("size"),
                partition.Number("freespace"), 0};
      for (const RawRow& file : files) {
        if (file.Number("partitionid") != partition.Number("partitionid")) continue;
        std::int64_t newest = 0, size = 0;
        for (const RawRow& record : history) {
          if (record.Number("dbfileid") != file.Number("dbfileid") || record.Number("dbfilehistoryid") <= newest)
            continue;
          newest = record.Number("dbfilehistoryid"), size = record.Number("filesize");
        }
        disk.files += size;
      }
      disks.push_back(disk);
    }
  }
  return disks;
}

TEST_F(Figures, OfFileSystemsAddUpToTheirSize) {
  const auto disks =
      DisksOf(Managed(), Table("EXDB_PARTITION"), Table("EXDB_DBFILE"), Table("EXDB_DBFILEHISTORY"), GroupName);
  const std::vector<std::string> fields = {"name", "exchangespaceused", "otherused", "filesystemfreespace",
                                           "percentused"};
  for (const std::string group : {"Production", "Default Servers"}) {
    SCOPED_TRACE(group);
    std::int64_t files = 0, others = 0;
    std::map<std::pair<std::string, std::string>, Disk> expected;
    for (const Disk& disk : disks) {
      if (disk.group != group) continue;
      files += disk.files, others += disk.size - disk.free - disk.files;
      expected.emplace(std::pair(disk.server, disk.name), disk);
    }
    std::vector<std::string> withServer = fields;
    withServer.push_back("computername");
    const ReportRows actual =
        RowsOfReport(Outside(), 7, {group, "", "", ""}, withServer, {"exchangespaceused", "otherused"});
    EXPECT_EQ(actual.rows.size(), expected.size());
    for (const RawRow& row : actual.rows) {
      const Disk& disk = expected.at({row.Text("computername"), row.Text("name")});
      EXPECT_EQ(row.Number("exchangespaceused"), disk.files);
      EXPECT_EQ(row.Number("filesystemfreespace"), disk.free);
      EXPECT_EQ(row.Number("exchangespaceused") + row.Number("otherused") + row.Number("filesystemfreespace"),
                disk.size);
      EXPECT_GE(row.Number("otherused"), 0);
      EXPECT_NEAR(ParseNumber(row.Text("percentused")).value(),
                  static_cast<double>(disk.size - disk.free) * 100.0 / static_cast<double>(disk.size), 1e-9);
    }
    EXPECT_EQ(actual.totals.Number("exchangespaceused"), files);
    EXPECT_EQ(actual.totals.Number("otherused"), others);
  }
  std::size_t ofOneServer = 0;
  for (const Disk& disk : disks) ofOneServer += disk.server == "MUC-EX01";
  EXPECT_EQ(RowsOfReport(Outside(), 8, {"MUC-EX01", "", "", ""}, fields).rows.size(), ofOneServer);
}

TEST_F(Figures, OfDatabaseFilesAreTheirNewestSizes) {
  std::multiset<Row> expected;
  std::int64_t sum = 0;
  for (const RawRow& server : Managed()) {
    if (server.Text("computername") != "MUC-EX01") continue;
    for (const RawRow& file : Table("EXDB_DBFILE")) {
      if (file.Number("serverid") != server.Number("serverid")) continue;
      std::int64_t newest = 0, size = 0;
      for (const RawRow& record : Table("EXDB_DBFILEHISTORY")) {
        if (record.Number("dbfileid") != file.Number("dbfileid") || record.Number("dbfilehistoryid") <= newest)
          continue;
        newest = record.Number("dbfilehistoryid"), size = record.Number("filesize");
      }
      sum += size;
      expected.insert(
          {file.Text("dbfilestring"), file.Text("sortdirpath"), file.Text("filename"), std::to_string(size)});
    }
  }
  ASSERT_FALSE(expected.empty());
  const std::vector<std::string> fields = {"dbfilestring", "sortdirpath", "filename", "filesize"};
  const ReportRows actual = RowsOfReport(Outside(), 38, {"MUC-EX01", "", "", ""}, fields, {"filesize"});
  EXPECT_EQ(Picked(actual.rows, fields), expected);
  EXPECT_EQ(actual.totals.Number("filesize"), sum);
}

// ---- backups, activity ------------------------------------------------------------------------------------

TEST_F(Figures, OfBackupsAreTheLatestOfEachKind) {
  std::multiset<Row> failed, lengths, latest;
  for (const RawRow& server : Managed()) {
    const std::string& name = server.Text("computername");
    for (const RawRow& backup : Current(server.Number("serverid"), 3, "EXDB_SERVERBACKUP", "serverbackupid")) {
      lengths.insert({name, backup.Text("backuplength"), backup.Text("backupstate"), backup.Text("backuptype")});
      if (backup.Number("backupstate") == 3) failed.insert({name, backup.Text("backuptype")});
    }
    for (const char* type : {"1", "2"}) {
      double start = 0;
      std::string text;
      for (const RawRow& backup : Table("EXDB_SERVERBACKUP")) {
        if (backup.Number("serverid") != server.Number("serverid") || backup.Text("backuptype") != type) continue;
        const double begun = ParseDate(backup.Text("backupstart"), kEnglishUnitedStates).value().serial;
        if (begun > start) start = begun, text = backup.Text("backupstart");
      }
      latest.insert({name, text, type});
    }
  }
  EXPECT_FALSE(failed.empty());
  EXPECT_EQ(Picked(RowsOfReport(Outside(), 4, {}, {"computername", "backuptype"}).rows, {"computername", "backuptype"}),
            failed);
  const std::vector<std::string> long6 = {"computername", "backuplength", "backupstate", "backuptype"};
  EXPECT_EQ(Picked(RowsOfReport(Outside(), 6, {}, long6).rows, long6), lengths);
  const std::vector<std::string> latest3 = {"computername", "backupstart", "backuptype"};
  EXPECT_EQ(Picked(RowsOfReport(Outside(), 3, {}, latest3).rows, latest3), latest);
}

TEST_F(Figures, OfServersOverPolicyAreThoseWhoseLatestBackupIsLonger) {
  std::int64_t type = 0;
  for (const RawRow& row : Table("RMC_ALERTTYPE")) {
    if (row.Number("alerttypecode") == 5022) type = row.Number("alerttypeid");
  }
  std::multiset<Row> expected;
  for (const RawRow& server : Managed()) {
    for (const RawRow& backup : Current(server.Number("serverid"), 3, "EXDB_SERVERBACKUP", "serverbackupid")) {
      for (const RawRow& policy : Table("RMC_ALERTCONFIG")) {
        const bool over =
            policy.Number("alerttypeid") == type && policy.Number("owner") == server.Number("servergroupid") &&
            backup.Number("backuptype") == 1 &&
            static_cast<double>(backup.Number("backuplength")) > ParseNumber(policy.Text("thresholdvalue3")).value();
        if (over) {
          expected.insert({GroupName(server.Number("servergroupid")), server.Text("computername"),
                           backup.Text("backuplength"), policy.Text("thresholdvalue3")});
        }
      }
    }
  }
  ASSERT_FALSE(expected.empty());
  const std::vector<std::string> fields = {"name", "computername", "backuplength", "thresholdvalue3"};
  EXPECT_EQ(Picked(RowsOfReport(Outside(), 5, {}, fields).rows, fields), expected);
}

TEST_F(Figures, OfActivityAreTheCurrentAverages) {
  struct Case {
    int id;
    std::string field;
  };
  for (const Case& report : {Case{17, "avgmsgrate"},
                             {18, "avgmsgrate"},
                             {19, "avgmsgsize"},
                             {20, "avgmsgsize"},
                             {21, "avgdiskio"},
                             {22, "avgdiskio"},
                             {23, "avgmemory"},
                             {24, "avgmemory"}}) {
    SCOPED_TRACE("report " + std::to_string(report.id));
    std::multiset<Row> expected;
    for (const RawRow& server : Managed()) {
      for (const RawRow& activity : Current(server.Number("serverid"), 2, "EXDB_SERVERACTIVITY", "serveractivityid")) {
        expected.insert({server.Text("computername"), activity.Text(report.field)});
      }
    }
    const ReportRows actual = RowsOfReport(Outside(), report.id, {}, {"computername", report.field});
    EXPECT_EQ(Picked(actual.rows, {"computername", report.field}), expected);
    // Odd ids begin with the largest, even ones with the smallest.
    double before = report.id % 2 == 1 ? HUGE_VAL : -HUGE_VAL;
    for (const RawRow& row : actual.rows) {
      if (!row.Has(report.field)) continue;
      const double value = ParseNumber(row.Text(report.field)).value();
      EXPECT_TRUE(report.id % 2 == 1 ? value <= before : value >= before);
      before = value;
    }
  }
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
