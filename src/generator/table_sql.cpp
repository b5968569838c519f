// Every table's SQL, as the pieces that it is composed of.

#include "generator/table_sql.h"

#include "kalvo/platform/append.h"

namespace kalvo {

namespace {

// The totals of a table that has none: a query that yields no row.
constexpr std::string_view kNoTotals = "select 1 where (1 = 0)";
constexpr std::string_view kSort = " order by %SORT%";

// clang-format off

// ---- fixed queries --------------------------------------------------------------------------------------

struct FixedRow {
  KalvoTableConstants table;
  std::string_view sql;
};

// Pages show these texts, spacing and letter case included. A server state of 2 is managed, a backup state of 3 is
// failed, a history type of 3 is the current backup, a backup type of 1 the information store.
constexpr FixedRow kFixed[] = {
  {TABLE_TASK_RECOVERYMANAGEMENT_FAILEDBACKUPS,
   "SELECT s.DistOrgName, s.DistSiteName, s.ComputerName, s.Missing, sb.BackupState, sb.BackupType "
   "FROM EXDB_SERVER s, EXDB_SERVERBACKUP sb, EXDB_SERVERCURRENT sc "
   "WHERE sc.ServerId = s.ServerId and s.serverstate = 2 AND sb.ServerBackupId = sc.HistoryRecord AND "
   "sb.BackupState = 3"},
  {TABLE_TASK_RECOVERYMANAGEMENT_SERVERSOVERBACKUPPOLICY,
   "SELECT g.Name, s.ComputerName, s.Missing, sb.BackupLength, ac.ThresholdValue3, sb.BackupType "
   "FROM EXDB_GROUP g, EXDB_SERVER s, EXDB_SERVERBACKUP sb, EXDB_SERVERCURRENT sc, EXDB_SERVERGROUP sg, "
   "RMC_ALERTCONFIG ac, RMC_ALERTTYPE at "
   "WHERE sg.ServerGroupId = s.ServerGroupId and s.serverstate = 2 AND at.AlertTypeId = ac.AlertTypeId "
   "AND sb.ServerBackupId = sc.HistoryRecord AND s.ServerId = sc.ServerId AND sg.ServerGroupId = "
   "g.GroupId AND ac.Owner = g.GroupId and sc.HistoryType = 3 and sb.BackupType = 1 AND "
   "at.AlertTypeCode = 5022 AND sb.BackupLength > ac.ThresholdValue3"},
  {TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS,
   "SELECT qv.RecipientName, qv.QuotaViolationId, computerName, displayName "
   "FROM EXDB_QUOTAVIOLATION qv, rmc_alertconfig ac, rmc_alerttype at, exdb_server s "
   "where ac.owner = qv.recipientgroupid and ac.alerttypeid = at.alerttypeid and at.alerttypecode = "
   "qv.quotatype and qv.severity = ac.configsequence and s.serverstate = 2 and s.serverid = qv.serverid "},
  {TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS,
   "SELECT s.* FROM EXDB_SERVER s "
   "Where s.Missing = 1 and s.serverstate = 2"},
  {TABLE_TASK_STORAGEADVISORY_NEWSERVERS,
   "SELECT a.* FROM RMC_ALERT a, RMC_ALERTTYPE at "
   "WHERE at.AlertTypeId = a.AlertTypeId AND at.AlertTypeCode=5018"},
  {TABLE_TASK_STORAGEADVISORY_MAILBOX_SPACEPOLICY,
   "SELECT a.*, s.missing, at.AlertTypeCode "
   "FROM RMC_ALERT a left join exdb_server s on a.attrib2 = s.computername, RMC_ALERTTYPE at "
   "WHERE at.AlertTypeId = a.AlertTypeId AND (at.AlertTypeCode=5002 OR  at.AlertTypeCode=5001 OR  "
   "at.AlertTypeCode=5006 OR  at.AlertTypeCode=5008 OR  at.AlertTypeCode=5009 OR  at.AlertTypeCode=5036 "
   "OR  at.AlertTypeCode=5013)"},
  {TABLE_TASK_STORAGEADVISORY_PUBLICFOLDER_SPACEPOLICY,
   "SELECT a.*, s.missing, at.AlertTypeCode "
   "FROM RMC_ALERT a left join exdb_server s on a.attrib2 = s.computername, RMC_ALERTTYPE at "
   "WHERE at.AlertTypeId = a.AlertTypeId AND (at.AlertTypeCode=5005 OR at.AlertTypeCode=5004 OR "
   "at.AlertTypeCode=5007 OR at.AlertTypeCode=5011 OR at.AlertTypeCode=5012 OR at.AlertTypeCode=5042 OR "
   "at.AlertTypeCode=5014)"},
  {TABLE_TASK_STORAGEADVISORY_MAILBOXGROUP_SPACEPOLICY,
   "SELECT a.* FROM RMC_ALERT a, RMC_ALERTTYPE at "
   "WHERE at.AlertTypeId = a.AlertTypeId AND at.AlertTypeCode=5016"},
  {TABLE_TASK_STORAGEADVISORY_FileSystemCapacity,
   "SELECT a.*, s.missing, at.AlertTypeCode "
   "FROM RMC_ALERT a left join exdb_server s on a.attrib2 = s.computername, RMC_ALERTTYPE at "
   "WHERE at.AlertTypeId = a.AlertTypeId AND (at.AlertTypeCode=5032 OR at.AlertTypeCode=5030 OR "
   "at.AlertTypeCode=5031 OR at.AlertTypeCode=5034 OR at.AlertTypeCode=5033 OR at.AlertTypeCode=5035)"},
};

// ---- pieces that several tables share -------------------------------------------------------------------

// The file systems of managed servers with the space that database files take: the newest size of each file.
constexpr std::string_view kFileSystems =
    "from (select s.ComputerName, s.ServerGroupId, p.Name, p.Size as FileSystemSize, p.FreeSpace as "
    "FileSystemFreeSpace, x.Used as ExchangeSpaceUsed, p.Size - p.FreeSpace - x.Used as OtherUsed, case "
    "when p.Size = 0 then 0.0 else (p.Size - p.FreeSpace) * 100.0 / p.Size end as PercentUsed "
    "from EXDB_SERVER s, EXDB_PARTITION p, (select q.PartitionId, coalesce(sum(h.FileSize), 0) as Used "
    "from EXDB_PARTITION q left join EXDB_DBFILE f on f.PartitionId = q.PartitionId "
    "left join EXDB_DBFILEHISTORY h on h.DbFileId = f.DbFileId and h.DbFileHistoryId = (select "
    "max(h2.DbFileHistoryId) from EXDB_DBFILEHISTORY h2 "
    "where h2.DbFileId = f.DbFileId) group by q.PartitionId) x "
    "where p.ServerId = s.ServerId and x.PartitionId = p.PartitionId and s.ServerState = 2) cp";

// The servers with their current totals. A server that was never scanned has none, and keeps its row.
constexpr std::string_view kServerTotals =
    "from EXDB_SERVER s left join EXDB_SERVERCURRENT sc on sc.ServerId = s.ServerId and sc.HistoryType = "
    "1 left join EXDB_SERVERTOTALS st on st.ServerTotalsId = sc.HistoryRecord";

// The server groups with the current totals of their managed servers.
constexpr std::string_view kGroupTotals =
    "from EXDB_GROUP g inner join EXDB_SERVERGROUP sg on sg.ServerGroupId = g.GroupId "
    "left join EXDB_SERVER s on s.ServerGroupId = sg.ServerGroupId and s.ServerState = 2 "
    "left join EXDB_SERVERCURRENT sc on sc.ServerId = s.ServerId and sc.HistoryType = 1 "
    "left join EXDB_SERVERTOTALS st on st.ServerTotalsId = sc.HistoryRecord";

constexpr std::string_view kMailboxes =
    "from EXDB_SERVER s, EXDB_MAILBOX m";

constexpr std::string_view kServerFigures =
    "s.DomainName, s.ComputerName, s.Missing, st.Mailboxes, st.MBSpace, st.PBFolders, st.PbSpace";

constexpr std::string_view kMemberFigures =
    "s.DomainName, s.ComputerName, s.Missing, st.Mailboxes, st.MbMessages, st.MBSpace, st.PBFolders, "
    "st.PbMessages, st.PbSpace";

constexpr std::string_view kChargeback =
    "s.ComputerName, s.Missing, m.MbName, m.MbDistName, m.MsgCount, m.MsgSize, case when m.MsgCount = 0 "
    "then 0.0 else m.MsgSize * 1.0 / m.MsgCount end as AverageMsgSize";

constexpr std::string_view kServerGroups =
    "from EXDB_GROUP g, EXDB_SERVERGROUP sg "
    "where sg.ServerGroupId = g.GroupId";

constexpr std::string_view kServerSums =
    "sum(st.Mailboxes) as Mailboxes, sum(st.MBSpace) as MBSpace, sum(st.PBFolders) as PBFolders, "
    "sum(st.PbSpace) as PbSpace";

constexpr std::string_view kMemberSums =
    "sum(st.Mailboxes) as Mailboxes, sum(st.MbMessages) as MbMessages, sum(st.MBSpace) as MBSpace, "
    "sum(st.PBFolders) as PBFolders, sum(st.PbMessages) as PbMessages, sum(st.PbSpace) as PbSpace";

constexpr std::string_view kMailboxSums =
    "sum(m.MsgCount) as MsgCount, sum(m.MsgSize) as MsgSize";

// ---- composed queries -----------------------------------------------------------------------------------

// A select list, what it is selected from (one text or two that follow each other), a grouping, and the select
// list of the totals row, which is taken from the same rows.
struct ComposedRow {
  KalvoTableConstants table;
  std::string_view select;
  std::string_view from[2];
  std::string_view extra = {};
  std::string_view totals = {};
};

constexpr ComposedRow kComposed[] = {
  {TABLE_CURRENTALERTS,
   "a.*, s.missing, at.AlertTypeCode",
   {"from RMC_Alert A left join exdb_server s on a.attrib2 = s.computername, RMC_AlertType at "
    "where a.alerttypeid = at.alerttypeid and at.subsystem = 'Exchange Manager'"}},
  {TABLE_TASK_RECOVERYMANAGEMENT_LONGESTBACKUPS,
   "s.DistOrgName, s.DistSiteName, s.ComputerName, s.Missing, sb.BackupLength, sb.BackupState, "
   "sb.BackupType",
   {"from EXDB_SERVER s, EXDB_SERVERBACKUP sb, EXDB_SERVERCURRENT sc "
    "where sc.ServerId = s.ServerId and sc.HistoryType = 3 and sb.ServerBackupId = sc.HistoryRecord and "
    "s.ServerState = 2"}},
  {TABLE_TASK_CAPACITYPLANNING_SUMMARY,
   "cp.ComputerName, cp.Name, cp.ExchangeSpaceUsed, cp.OtherUsed, cp.FileSystemFreeSpace, cp.PercentUsed",
   {kFileSystems,
    ", EXDB_GROUP g where g.GroupId = cp.ServerGroupId and g.Name = %NAME%"},
   "",
   "sum(cp.ExchangeSpaceUsed) as ExchangeSpaceUsed, sum(cp.OtherUsed) as OtherUsed"},
  {TABLE_TASK_CAPACITYPLANNING_SINGLESERVER,
   "cp.Name, cp.FileSystemSize, cp.ExchangeSpaceUsed, cp.OtherUsed, cp.FileSystemFreeSpace, "
   "cp.PercentUsed",
   {kFileSystems,
    " where cp.ComputerName = %NAME%"}},
  {TABLE_TASK_STORAGEADVISORY_DISABLEDSINGLERECIPIENT,
   "qv.RecipientName, computerName, qv.Value, ac.ThresholdValue3, displayName, qv.DiscoveryTime",
   {"from EXDB_QUOTAVIOLATION qv, RMC_ALERTCONFIG ac, RMC_ALERTTYPE at, EXDB_SERVER s "
    "where ac.Owner = qv.RecipientGroupId and ac.AlertTypeId = at.AlertTypeId and at.AlertTypeCode = "
    "qv.QuotaType and qv.Severity = ac.ConfigSequence and s.ServerState = 2 and s.ServerId = qv.ServerId "
    "and (qv.RecipientName = %NAME% or %NAME% = '')"}},
  {TABLE_RES_SERVERGROUPS_SUMMARY,
   "g.Name, g.Description, (select count(*) "
   "from EXDB_SERVER m where m.ServerGroupId = g.GroupId and m.ServerState = 2) as MemberCount",
   {kServerGroups}},
  {TABLE_RES_SERVERGROUPS_MAILBOXESSUMMARY,
   "g.Name, sum(st.Mailboxes) as Mailboxes, sum(st.MBSpace) as MBSpace",
   {kGroupTotals},
   "group by g.Name"},
  {TABLE_RES_SERVERGROUPS_PUBLICFOLDERSSUMMARY,
   "g.Name, sum(st.PBFolders) as PBFolders, sum(st.PbSpace) as PbSpace",
   {kGroupTotals},
   "group by g.Name"},
  {TABLE_RES_MAILBOXGROUPS_SUMMARY,
   "g.Name, g.Description, rg.PriorityValue",
   {"from EXDB_GROUP g, EXDB_RECIPIENTGROUP rg "
    "where rg.RecipientGroupId = g.GroupId"}},
  {TABLE_RES_MAILBOXGROUPS_MAILBOXESSUMMARY,
   "g.Name, rt.Mailboxes, rt.MbMessages, rt.MBSpace",
   {"from EXDB_GROUP g inner join EXDB_RECIPIENTGROUP rg on rg.RecipientGroupId = g.GroupId "
    "left join EXDB_RECIPIENTGROUPCURRENT rc on rc.RecipientGroupId = rg.RecipientGroupId and "
    "rc.HistoryType = 1 left join EXDB_RECIPIENTGROUPTOTALS rt on rt.RecipientGroupTotalsId = "
    "rc.HistoryRecord"},
   "",
   "sum(rt.Mailboxes) as Mailboxes, sum(rt.MbMessages) as MbMessages, sum(rt.MBSpace) as MBSpace"},
  {TABLE_RES_SERVERGROUPMEMBERSHIP,
   kMemberFigures,
   {kServerTotals,
    " inner join EXDB_GROUP g on g.GroupId = s.ServerGroupId "
    "where g.Name = %NAME% and s.ServerState = 2"},
   "",
   kMemberSums},
  {TABLE_RES_ORGANIZATION_SERVERSUMMARY,
   kServerFigures,
   {kServerTotals,
    " where s.DistOrgName = %ORG% and s.ServerState = 2"},
   "",
   kServerSums},
  {TABLE_RES_ORGANIZATION_SITESERVERSUMMARY,
   kServerFigures,
   {kServerTotals,
    " where s.DistOrgName = %ORG% and s.DistSiteName = %SITE% and s.ServerState = 2"},
   "",
   kServerSums},
  {TABLE_RES_ORGANIZATION_ALLSERVERS,
   "s.DomainName, s.ComputerName, s.Missing, s.ServerState, s.AgentVersion",
   {"from EXDB_SERVER s"}},
  {TABLE_RES_SERVERGROUP_SERVERSUMMARY,
   kMemberFigures,
   {kServerTotals,
    " inner join EXDB_GROUP g on g.GroupId = s.ServerGroupId "
    "where g.Name = %NAME% and s.ServerState = 2"},
   "",
   kMemberSums},
  {TABLE_SERVERGROUPSUMMARY,
   "g.Name, g.Description",
   {kServerGroups}},
  {TABLE_MAILBOXGROUPSUMMARY,
   "g.Name, g.Description, rg.PriorityValue",
   {"from EXDB_GROUP g, EXDB_RECIPIENTGROUP rg "
    "where rg.RecipientGroupId = g.GroupId"}},
  {TABLE_SINGLESERVERGROUPMEMBERSHIP,
   "case when g.Name = %NAME% then 'FALSE' else 'TRUE' end as NotInGroup, s.DomainName, s.ComputerName, "
   "s.Missing, s.LastQuickScan, s.LastDetailScan, s.ServerId as Identifier, g.Name as GroupName, "
   "sg.DefaultGroup",
   {"from EXDB_SERVER s, EXDB_SERVERGROUP sg, EXDB_GROUP g "
    "where sg.ServerGroupId = s.ServerGroupId and g.GroupId = sg.ServerGroupId and s.ServerState = 2"}},
  {TABLE_RES_SERVER_DBFILESUMMARY,
   "f.DbFileString, f.SortDirPath, f.FileName, h.FileSize",
   {"from EXDB_SERVER s, EXDB_DBFILE f, EXDB_DBFILEHISTORY h "
    "where f.ServerId = s.ServerId and h.DbFileId = f.DbFileId and h.DbFileHistoryId = (select "
    "max(h2.DbFileHistoryId) from EXDB_DBFILEHISTORY h2 "
    "where h2.DbFileId = f.DbFileId) and s.ComputerName = %NAME%"},
   "",
   "sum(h.FileSize) as FileSize"},
  {TABLE_CHARGEBACK_Organization,
   kChargeback,
   {kMailboxes,
    " where m.ServerId = s.ServerId and s.ServerState = 2 and s.DistOrgName = %ORG%"},
   "",
   kMailboxSums},
  {TABLE_CHARGEBACK_Site,
   kChargeback,
   {kMailboxes,
    " where m.ServerId = s.ServerId and s.ServerState = 2 and s.DistOrgName = %ORG% and s.DistSiteName = "
    "%SITE%"},
   "",
   kMailboxSums},
  {TABLE_CHARGEBACK_Server,
   kChargeback,
   {kMailboxes,
    " where m.ServerId = s.ServerId and s.ServerState = 2 and s.ComputerName = %NAME%"},
   "",
   kMailboxSums},
  {TABLE_CHARGEBACK_ServerGroup,
   kChargeback,
   {kMailboxes,
    ", EXDB_GROUP g where m.ServerId = s.ServerId and s.ServerState = 2 and g.GroupId = s.ServerGroupId "
    "and g.Name = %NAME%"},
   "",
   kMailboxSums},
  {TABLE_AmbiguousAddressResolution,
   "s.ComputerName, m.MbName, m.MbDistName",
   {kMailboxes,
    " where m.ServerId = s.ServerId and s.ComputerName = %NAME% and m.MbName like %MAILBOX%"}},
};

// ---- performance ----------------------------------------------------------------------------------------

// The averages of the past seven days, ranked; a server without one stands behind the others. Their columns do not
// sort, so the order is a part of the text.
struct RankedRow {
  KalvoTableConstants table;
  std::string_view columns;
  std::string_view average, direction;
};

constexpr RankedRow kRanked[] = {
  {TABLE_PERFORMANCE_AVGMSGS_DESC,     "sa.AvgMsgRate",                     "AvgMsgRate",  "DESC"},
  {TABLE_PERFORMANCE_AVGMSGS_ASC,      "sa.AvgMsgRate",                     "AvgMsgRate",  "ASC"},
  {TABLE_PERFORMANCE_AVGMSGSIZE_DESC,  "sa.AvgMsgSize",                     "AvgMsgSize",  "DESC"},
  {TABLE_PERFORMANCE_AVGMSGSIZE_ASC,   "sa.AvgMsgSize",                     "AvgMsgSize",  "ASC"},
  {TABLE_PERFORMANCE_AVGDISKIO_DESC,   "sa.AvgDiskIO, sa.DiskPerfEnabled",  "AvgDiskIO",   "DESC"},
  {TABLE_PERFORMANCE_AVGDISKIO_ASC,    "sa.AvgDiskIO, sa.DiskPerfEnabled",  "AvgDiskIO",   "ASC"},
  {TABLE_PERFORMANCE_AVGMEMUSAGE_DESC, "sa.AvgMemory",                      "AvgMemory",   "DESC"},
  {TABLE_PERFORMANCE_AVGMEMUSAGE_ASC,  "sa.AvgMemory",                      "AvgMemory",   "ASC"},
};

constexpr std::string_view kActivity =
    "from EXDB_SERVER s, EXDB_SERVERCURRENT sc, EXDB_SERVERACTIVITY sa "
    "where sc.ServerId = s.ServerId and sc.HistoryType = 2 and sa.ServerActivityId = sc.HistoryRecord "
    "and s.ServerState = 2";
// clang-format on

// ---- composing ------------------------------------------------------------------------------------------

template <typename Row, std::size_t count>
const Row* Find(const Row (&rows)[count], KalvoTableConstants table) {
  for (const Row& row : rows) {
    if (row.table == table) return &row;
  }
  return nullptr;
}

// The data rows first, the totals row second.
void AppendTotals(std::string& sql, std::string_view totals) { Append(sql, kCrLf, kCrLf, totals); }

std::string Compose(const ComposedRow& row) {
  return Built([&](std::string& sql) {
    Append(sql, "select ", row.select, kCrLf, row.from[0], row.from[1], kCrLf, row.extra, kSort);
    AppendTotals(sql, row.totals.empty() ? kNoTotals : "select ");
    if (!row.totals.empty()) Append(sql, row.totals, kCrLf, row.from[0], row.from[1], kCrLf);
  });
}

std::string Compose(const RankedRow& row) {
  return Built([&](std::string& sql) {
    Append(sql, "select s.ComputerName, s.Missing, ", row.columns, kCrLf, kActivity, kCrLf);
    Append(sql, " order by case when sa.", row.average, " is null then 1 else 0 end, sa.", row.average, ' ',
           row.direction);
    AppendTotals(sql, kNoTotals);
  });
}

// The managed servers with the start of their latest backup of a type.
void AppendLatestBackups(std::string& sql, std::string_view type) {
  Append(sql,
         "select s.DistOrgName, s.DistSiteName, s.ComputerName, s.Missing, s.LastQuickScan, "
         "(select max(sb.BackupStart) from EXDB_ServerBackup sb where s.ServerId = sb.ServerId and sb.BackupType = ",
         type, ") as BackupStart, ", type, " as BackupType from EXDB_Server s where s.ServerState = 2");
}

std::string ComposeLatestBackups() {
  return Built([](std::string& sql) {
    AppendLatestBackups(sql, "1");
    sql += " union all ";
    AppendLatestBackups(sql, "2");
    sql += kSort;
    AppendTotals(sql, kNoTotals);
  });
}

std::string ComposeFixed(std::string_view query) {
  return Built([&](std::string& sql) {
    Append(sql, query, kSort);
    AppendTotals(sql, kNoTotals);
  });
}

}  // namespace

std::string_view FixedQuery(KalvoTableConstants table) {
  const FixedRow* row = Find(kFixed, table);
  return row ? row->sql : std::string_view();
}

std::string TableSql(KalvoTableConstants table) {
  if (table == TABLE_TASK_RECOVERYMANAGEMENT_SucessfulBackups) return ComposeLatestBackups();
  if (const FixedRow* row = Find(kFixed, table)) return ComposeFixed(row->sql);
  if (const ComposedRow* row = Find(kComposed, table)) return Compose(*row);
  if (const RankedRow* row = Find(kRanked, table)) return Compose(*row);
  return {};
}

}  // namespace kalvo
