// The figures of disks, database files, backups and activity, added up from the plain rows of the tables.
#include <gtest/gtest.h>

#include "database/figures_fixture.h"

namespace kalvo::test {
namespace {

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

}  // namespace
}  // namespace kalvo::test
