-- The reporting database: what the scanner writes and the reports read.
--
-- Five words differ from engine to engine and stand between "@" signs; README.md beside this file says what to
-- put for each, and database/sample/schema.cpp does it for the sample:
--   @DT@   date and time, to the second, in the organization's local time
--   @B16@  sixteen raw bytes, an identifier
--   @CI@   the collation of a name: compared without regard to case where the engine can
--   @END@  what closes a table
--   @PG@   before what PostgreSQL alone is given
-- Names are unquoted and are matched without regard to case. Flags are small integers, 0 or 1. Sizes are bytes.
-- Tables come first and indexes last, so that a loader can fill the tables in between.

-- A group of servers or of mailboxes. Both kinds share one number space, which alert policies point into.
create table EXDB_GROUP (
  GroupId integer not null primary key,
  Name varchar(256)@CI@ not null,
  Description varchar(1024)
)@END@;

-- The groups that hold servers. Exactly one is the default group: a server is in it until it is put elsewhere.
create table EXDB_SERVERGROUP (
  ServerGroupId integer not null primary key,          -- = EXDB_GROUP.GroupId
  DefaultGroup smallint not null                       -- 1 for the default group
)@END@;

-- The groups that hold mailboxes. A mailbox in several is governed by the one with the lowest priority value.
create table EXDB_RECIPIENTGROUP (
  RecipientGroupId integer not null primary key,       -- = EXDB_GROUP.GroupId
  PriorityValue integer not null
)@END@;

-- A mail server that the product knows. The reports are about the managed ones.
create table EXDB_SERVER (
  ServerId integer not null primary key,
  ServerGroupId integer,                               -- EXDB_SERVERGROUP
  DomainName varchar(256)@CI@,
  ComputerName varchar(256)@CI@ not null,              -- unique: alerts name servers by it
  DistOrgName varchar(256)@CI@,                        -- organization, site and name in the directory
  DistSiteName varchar(256)@CI@,
  DistCnName varchar(256)@CI@,
  Missing smallint not null,                           -- 1: it was there and is not any more
  ServerState smallint not null,                       -- 2 managed, anything else not
  LastQuickScan @DT@,                                  -- null: never scanned
  LastDetailScan @DT@,
  AgentVersion varchar(64)
)@END@;

-- Which records of a server are the current ones. Types 1 and 2: at most one a server; type 3: the latest backup
-- of each kind. Records of all types are numbered in one sequence, which EXDB_RECIPIENTGROUPCURRENT shares.
create table EXDB_SERVERCURRENT (
  ServerId integer not null,
  HistoryType smallint not null,                       -- 1 totals, 2 activity, 3 backup
  HistoryRecord integer not null,                      -- ServerTotalsId, ServerActivityId or ServerBackupId
  primary key (ServerId, HistoryType, HistoryRecord)
)@END@;

-- What one scan found on a server: numbers of mailboxes, folders and messages, and space in bytes.
create table EXDB_SERVERTOTALS (
  ServerTotalsId integer not null primary key,
  ServerId integer not null,
  Mailboxes bigint not null,
  MbMessages bigint not null,
  MBSpace bigint not null,
  PBFolders bigint not null,
  PbMessages bigint not null,
  PbSpace bigint not null
)@END@;

-- A server's averages over the seven days before a scan.
create table EXDB_SERVERACTIVITY (
  ServerActivityId integer not null primary key,
  ServerId integer not null,
  AvgMsgRate double precision,                         -- messages a day
  AvgMsgSize double precision,                         -- bytes a message
  AvgDiskIO double precision,                          -- bytes a second
  AvgMemory double precision,                          -- bytes
  DiskPerfEnabled varchar(32)                          -- "Enabled" or "Disabled": shown as it is
)@END@;

-- One run of a backup.
create table EXDB_SERVERBACKUP (
  ServerBackupId integer not null primary key,
  ServerId integer not null,
  BackupType smallint not null,                        -- 1 information store, 2 directory store
  BackupState smallint not null,                       -- 2 succeeded, 3 failed
  BackupStart @DT@,
  BackupLength integer                                 -- seconds
)@END@;

-- A file system of a server, as the last scan found it; sizes in bytes.
create table EXDB_PARTITION (
  PartitionId integer not null primary key,
  ServerId integer not null,
  Name varchar(256)@CI@ not null,
  Size bigint not null,
  FreeSpace bigint not null
)@END@;

-- A database file of a server. Its newest size is the EXDB_DBFILEHISTORY row with the highest number.
create table EXDB_DBFILE (
  DbFileId integer not null primary key,
  ServerId integer not null,
  PartitionId integer not null,                        -- the file system that it lies on
  DbFileString varchar(256)@CI@ not null,              -- the database component that it belongs to
  FileName varchar(256)@CI@,
  SortDirPath varchar(1024)@CI@,
  LastQuickScan @DT@
)@END@;

-- The size of a database file at one scan, in bytes, and how much of it is not in use.
create table EXDB_DBFILEHISTORY (
  DbFileHistoryId integer not null primary key,        -- ascends with time
  DbFileId integer not null,
  FileSize bigint not null,
  FreeSpace bigint
)@END@;

-- A mailbox, as its server's last detail scan found it.
create table EXDB_MAILBOX (
  MailboxId integer not null primary key,
  ServerId integer not null,
  MbName varchar(256)@CI@ not null,                    -- display name
  MbDistName varchar(512)@CI@ not null,                -- distinguished name
  MsgCount bigint not null,
  MsgSize bigint not null                              -- bytes, of all its messages
)@END@;

-- Which totals of a mailbox group are the current ones: at most one a group.
create table EXDB_RECIPIENTGROUPCURRENT (
  RecipientGroupId integer not null,
  HistoryType smallint not null,                       -- 1 totals
  HistoryRecord integer not null,                      -- RecipientGroupTotalsId
  primary key (RecipientGroupId, HistoryType, HistoryRecord)
)@END@;

-- What one scan found in the mailboxes of a group; space in bytes.
create table EXDB_RECIPIENTGROUPTOTALS (
  RecipientGroupTotalsId integer not null primary key,
  RecipientGroupId integer not null,
  Mailboxes bigint not null,
  MbMessages bigint not null,
  MBSpace bigint not null
)@END@;

-- A mailbox that has outgrown a quota and was disabled for it: one row for every quota.
create table EXDB_QUOTAVIOLATION (
  QuotaViolationId @B16@ not null primary key,
  ServerId integer not null,
  RecipientName varchar(256)@CI@ not null,             -- the mailbox's display name
  RecipientGroupId integer not null,                   -- the group whose policy it is
  QuotaType integer not null,                          -- = RMC_ALERTTYPE.AlertTypeCode
  Severity integer not null,                           -- = RMC_ALERTCONFIG.ConfigSequence
  Value double precision,                              -- messages or bytes, as the quota counts
  DiscoveryTime @DT@
)@END@;

-- The kinds of alerts.
create table RMC_ALERTTYPE (
  AlertTypeId integer not null primary key,
  AlertTypeCode integer not null,                      -- what the reports select by
  SubSystem varchar(64)@CI@ not null,                  -- 'Exchange Manager' for the alerts of this console
  DisplayName varchar(256)@CI@
)@END@;

-- A policy: the thresholds of one kind of alert for one group, in steps of rising severity.
create table RMC_ALERTCONFIG (
  AlertTypeId integer not null,
  Owner integer not null,                              -- EXDB_GROUP.GroupId
  ConfigSequence integer not null,                     -- 1, 2, ...
  ThresholdValue1 double precision,                    -- warning and notice levels, where the kind has them
  ThresholdValue2 double precision,
  ThresholdValue3 double precision,                    -- the limit: messages, bytes, percent; seconds for backups
  primary key (AlertTypeId, Owner, ConfigSequence)
)@END@;

-- An alert. The attributes are texts for people.
create table RMC_ALERT (
  AlertId @B16@ not null primary key,
  AlertTypeId integer not null,
  AlertTime @DT@,
  AlertedResource varchar(512)@CI@,                    -- mailbox, folder path, group, server or file system
  Attrib1 varchar(512)@CI@,                            -- domain
  Attrib2 varchar(512)@CI@,                            -- computer name, as EXDB_SERVER spells it
  Attrib3 varchar(512)@CI@,                            -- "Mailbox", "Mailbox Group", "Public folder", "Server Group",
                                                       -- "Server" or "File System"
  Attrib4 varchar(512)@CI@,                            -- the group whose policy it is
  Attrib5 varchar(512),                                -- identifier of a public folder
  Attrib6 varchar(512)@CI@,                            -- what is the matter
  Attrib7 varchar(512),                                -- messages count as old before this day
  Attrib8 varchar(512),                                -- the threshold, with its unit
  Attrib9 varchar(512)                                 -- the value found, with its unit
)@END@;

-- The Top-N reports add tables and columns of their own: topn_schema.sql beside this file, applied after the
-- tables above.

create unique index EXDB_SERVER_NAME on EXDB_SERVER (ComputerName);
create index EXDB_SERVER_GROUP on EXDB_SERVER (ServerGroupId);
create index EXDB_SERVER_SITE on EXDB_SERVER (DistOrgName, DistSiteName);
create index EXDB_GROUP_NAME on EXDB_GROUP (Name);
create index EXDB_SERVERCURRENT_RECORD on EXDB_SERVERCURRENT (HistoryRecord);
create index EXDB_SERVERTOTALS_SERVER on EXDB_SERVERTOTALS (ServerId);
create index EXDB_SERVERACTIVITY_SERVER on EXDB_SERVERACTIVITY (ServerId);
create index EXDB_SERVERBACKUP_LATEST on EXDB_SERVERBACKUP (ServerId, BackupType, BackupStart);
create index EXDB_PARTITION_SERVER on EXDB_PARTITION (ServerId);
create index EXDB_DBFILE_SERVER on EXDB_DBFILE (ServerId);
create index EXDB_DBFILE_PARTITION on EXDB_DBFILE (PartitionId);
create index EXDB_DBFILEHISTORY_NEWEST on EXDB_DBFILEHISTORY (DbFileId, DbFileHistoryId);
create index EXDB_MAILBOX_SERVER on EXDB_MAILBOX (ServerId, MbName);
-- The order in which charge-back reports begin. The other engines sort all the same.
@PG@create index EXDB_MAILBOX_NAME on EXDB_MAILBOX (MbName nulls first, ServerId);
create index EXDB_RECIPIENTGROUPTOTALS_GROUP on EXDB_RECIPIENTGROUPTOTALS (RecipientGroupId);
create index EXDB_QUOTAVIOLATION_NAME on EXDB_QUOTAVIOLATION (RecipientName);
create index RMC_ALERTTYPE_CODE on RMC_ALERTTYPE (AlertTypeCode);
create index RMC_ALERT_TYPE on RMC_ALERT (AlertTypeId);
create index RMC_ALERT_TIME on RMC_ALERT (AlertTime);
create index RMC_ALERT_COMPUTER on RMC_ALERT (Attrib2);
