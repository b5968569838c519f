-- What the Top-N reports read: mailboxes' and public folders' messages, and who ranks first in what. Same words
-- between "@" signs as schema.sql, applied after its tables.
--
-- A report reads the rankings and the few items that they name, never all mailboxes or all messages. So a scanner
-- has to write every row of EXDB_TOPN and EXDB_TOPNGROUP, and of the other tables at least the rows that these
-- name. Identifiers are those of the live mailbox component: links of the reports hand them back to it.

-- What a detail scan found out about a mailbox beyond its totals.
create table EXDB_MAILBOXDETAIL (
  MailboxId integer not null primary key,              -- EXDB_MAILBOX
  ExchangeId varchar(512),                             -- the mailbox's identifier
  LastModified @DT@                                    -- the newest of its messages; null: it has none
)@END@;

-- Which mailboxes are in which mailbox group.
create table EXDB_RECIPIENTGROUPMEMBER (
  RecipientGroupId integer not null,                   -- EXDB_RECIPIENTGROUP
  MailboxId integer not null,
  primary key (RecipientGroupId, MailboxId)
)@END@;

-- A public folder, as its server's last detail scan found it.
create table EXDB_PUBLICFOLDER (
  PublicFolderId integer not null primary key,
  ServerId integer not null,
  FolderPath varchar(1024)@CI@ not null,               -- its names from the root, one backslash between two
  ExchangeId varchar(512) not null,                    -- the folder's identifier
  MsgCount bigint not null,
  MsgSize bigint not null,                             -- bytes, of all its messages
  LastModified @DT@                                    -- the newest of its messages; null: it has none
)@END@;

-- A folder of a mailbox.
create table EXDB_FOLDER (
  FolderId bigint not null primary key,
  MailboxId integer not null,
  ExchangeId varchar(512) not null                     -- the folder's identifier
)@END@;

-- A message: of a mailbox, or of a public folder.
create table EXDB_MESSAGE (
  MessageId bigint not null primary key,
  ServerId integer not null,
  MailboxId integer,                                   -- null for a public folder's
  FolderId bigint,                                     -- EXDB_FOLDER; null for a public folder's
  PublicFolderId integer,                              -- null for a mailbox's
  ExchangeId varchar(512) not null,                    -- the message's identifier
  MsgSize bigint not null,                             -- bytes
  ModifiedDate @DT@,                                   -- null: unknown
  HasAttachment smallint not null
)@END@;

-- The first of each kind on each server, as its last detail scan found them. Kind by kind:
--
--   Kind                     ItemId is a                                   ranked by
--   1, 2, 21                 mailbox                                       Amount: messages, bytes, bytes a message
--   8, 9                     mailbox                                       Amount: old messages, bytes of old messages
--   13                       mailbox                                       Modified: the newest of its messages
--   4, 5, 22, 11, 12, 14     public folder                                 the same six, in this order
--   6, 7                     message of a mailbox, of a public folder      Modified
--   17, 19                   message of a mailbox, of a public folder      Amount: bytes
--   18, 20                   old message of a mailbox, of a public folder  Amount: bytes
--
-- The largest amount ranks first, and one of 0 not at all; an average has its fraction dropped. The oldest date
-- ranks first, an unknown one last. Equal ones rank by the lower ItemId. Places count from 1 without a gap. Old is
-- what was last modified OldDays days or more before the server's last detail scan; in the rows of kinds that ask
-- for no age (all but 8, 9, 11, 12, 18, 20) OldDays is 0.
create table EXDB_TOPN (
  ServerId integer not null,
  Kind smallint not null,
  OldDays smallint not null,
  Place smallint not null,
  ItemId bigint not null,                              -- MailboxId, PublicFolderId or MessageId
  Amount bigint,                                       -- null for kinds that rank by date
  Modified @DT@,                                       -- null for all others
  primary key (ServerId, Kind, OldDays, Place)
)@END@;

-- The same of the mailboxes of each mailbox group, whatever their server. Kinds of public folders have no rows.
-- Equal ones rank by the lower ServerId, then by the lower ItemId.
create table EXDB_TOPNGROUP (
  RecipientGroupId integer not null,
  Kind smallint not null,
  OldDays smallint not null,
  Place smallint not null,
  ServerId integer not null,                           -- where the mailbox is
  ItemId bigint not null,                              -- MailboxId or MessageId
  Amount bigint,                                       -- null for kinds that rank by date
  Modified @DT@,                                       -- null for all others
  primary key (RecipientGroupId, Kind, OldDays, Place)
)@END@;

create index EXDB_SERVER_SITENAME on EXDB_SERVER (DistSiteName);
