#pragma once

#include <cstdint>
#include <string_view>

#include "kalvo/enumerations.h"

// The product's whole column vocabulary.
namespace kalvo::columns {

// The groups in which the columns are made.
enum class Group : std::uint8_t {
  Alert,
  Server,
  ServerTotals,
  ServerBackup,
  Group,
  MailboxGroup,
  MailboxGroupTotals,
  QuotaViolation,
  DbFile,
  DbFileHistory,
  DbFileSystem,
  Mailbox,
  TopN,
  LiveMailbox,
  Task,
};

enum class Total : std::uint8_t { Keep, NoTotal };
enum class Align : std::uint8_t { Left, Right, Center };
enum class Wrap : std::uint8_t { Wraps, NoWrap };
enum class Sort : std::uint8_t { Sorts, Plain };

// The unit that a cell's number is shown in.
enum Scale : std::int32_t { KiB = 1024, MiB = 1024 * 1024, Hour = 3600 };

struct ColumnRow {
  Group group;
  KalvoTableColumnsConstants id;
  std::string_view header;
  std::string_view field;  // a field name, or a Top-N field number
  KalvoTableHyperlinkType link;
  Total total;
  KalvoTableFormatType format;
  std::int32_t scale;
  std::string_view units;
  Align align;
  Wrap wrap;
  Sort sort;
};

struct ControlColumnRow {
  Group group;
  KalvoTableColumnsConstants id;
  std::string_view name;
  std::string_view value;
  std::string_view field;
  KalvoTableFormatType format;
};

using enum Total;
using enum Align;
using enum Wrap;
using enum Sort;

// clang-format off
inline constexpr ControlColumnRow kControlColumns[] = {
// group                  id                       name      value               field               format
  {Group::Alert,          COL_CURRENTALERTS_DELETE, "Delete", "AlertId",          "AlertId",          FORMATTYPE_CHECKBOX},
  {Group::QuotaViolation, COL_QUOTAVIOLATION_ID,    "Select", "QuotaViolationId", "QuotaViolationId", FORMATTYPE_QVCHECKBOX},
};

// Kept: "DistCn?", the lower-case "computerName", and the "<br>" of four performance headers, which pages show as
// it stands because headers are encoded.
inline constexpr ColumnRow kColumns[] = {
// group                      id                                               header                                               field                  link                                           total    format                         scale  units     align   wrap    sort
  {Group::Alert,              COL_CURRENTALERTS_RESOURCETYPE,                  "Resource Type",                                     "Attrib3",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_ALERTEDRESOURCE,               "Alerted Resource",                                  "AlertedResource",     HYPERLINK_NONE,                                NoTotal, FORMATTYPE_ALERTEDRESOURCE,    0,     "",       Left,   Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_ALERT,                         "Alert",                                             "Attrib6",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_OLDVALUE,                      "Messages considered old before",                    "Attrib7",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Plain},
  {Group::Alert,              COL_CURRENTALERTS_THRESHOLD,                     "Threshold Value",                                   "Attrib8",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Plain},
  {Group::Alert,              COL_CURRENTALERTS_THRESHOLD3_TIME,               "Policy",                                            "ThresholdValue3",     HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMERICVALUE,       Hour,  " Hours", Right,  Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_NEWVALUE,                      "Scanned Value",                                     "Attrib9",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Plain},
  {Group::Alert,              COL_CURRENTALERTS_GROUP,                         "Group Name",                                        "Attrib4",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_ALERTTIME,                     "Time of Alert",                                     "AlertTime",           HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIME,           0,     "",       Left,   NoWrap, Sorts},
  {Group::Alert,              COL_CURRENTALERTS_DOMAIN,                        "Domain Name",                                       "Attrib1",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_NEWCOMPUTER,                   "Server Name",                                       "Attrib2",             HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_COMPUTER,                      "Server Name",                                       "Attrib2",             HYPERLINK_ALERT_SERVER_MANAGED,                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Alert,              COL_CURRENTALERTS_MAILBOXGROUP,                  "Mailbox Group",                                     "AlertedResource",     HYPERLINK_MAILBOXGROUP,                        NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},

  {Group::Server,             COL_SERVER_DOMAIN,                               "Domain Name",                                       "DomainName",          HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_COMPUTER,                             "Server Name",                                       "ComputerName",        HYPERLINK_SERVER,                              NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_COMPUTER_MANAGED,                     "Server Name",                                       "ComputerName",        HYPERLINK_SERVER_MANAGED,                      NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_DISTORG,                              "Organization",                                      "DistOrgName",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_DISTSITE,                             "Site",                                              "DistSiteName",        HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_DISTCN,                               "DistCn?",                                           "DistCnName",          HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_LASTQUICKSCAN,                        "Last Quick Scan",                                   "LastQuickScan",       HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIME,           0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_LASTDETAILSCAN,                       "Last Detail Scan",                                  "LastDetailScan",      HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIME,           0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_AGENTVERSION,                         "Agent Version",                                     "AgentVersion",        HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_SERVERSTATE,                          "Server State",                                      "ServerState",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_SERVERSTATE,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Server,             COL_SERVER_MESSAGECOUNT,                         "Message Count",                                     "MessageCount",        HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::Server,             COL_SERVER_DISKIOCOUNT,                          "Disk IO Count",                                     "DiskIoCount",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::Server,             COL_SERVER_GROUPMEMBERSHIP,                      "Include in this Group",                             "NotInGroup",          HYPERLINK_NONE,                                NoTotal, FORMATTYPE_MEMBERSHIPCHECKBOX, 0,     "",       Center, Wraps,  Sorts},

  {Group::ServerTotals,       COL_SERVERTOTALS_MAILBOXES,                      "Mailboxes",                                         "Mailboxes",           HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::ServerTotals,       COL_SERVERTOTALS_MBMESSAGES,                     "Mailbox Messages",                                  "MbMessages",          HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::ServerTotals,       COL_SERVERTOTALS_MBSPACE,                        "Mailbox Space",                                     "MBSpace",             HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::ServerTotals,       COL_SERVERTOTALS_PBFOLDERS,                      "Public Folders",                                    "PBFolders",           HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::ServerTotals,       COL_SERVERTOTALS_PBMESSAGES,                     "Public Folder Messages",                            "PbMessages",          HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::ServerTotals,       COL_SERVERTOTALS_PBSPACE,                        "Public Folder Space",                               "PbSpace",             HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},

  {Group::ServerBackup,       COL_SERVERBACKUP_BackupStart,                    "Backup Start",                                      "BackupStart",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_BackupDateTime,     0,     "",       Left,   Wraps,  Sorts},
  {Group::ServerBackup,       COL_SERVERBACKUP_BACKUPSTATE,                    "Backup State",                                      "BackupState",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_STATUS,             0,     "",       Left,   Wraps,  Sorts},
  {Group::ServerBackup,       COL_SERVERBACKUP_BACKUPLENGTH,                   "Backup Duration",                                   "BackupLength",        HYPERLINK_NONE,                                Keep,    FORMATTYPE_TIME,               0,     " Hours", Left,   Wraps,  Sorts},
  {Group::ServerBackup,       COL_SERVERBACKUP_TYPE,                           "Backup Type",                                       "BackupType",          HYPERLINK_NONE,                                NoTotal, FORMATTYPE_BACKUPTYPE,         0,     "",       Left,   Wraps,  Sorts},

  {Group::Group,              COL_RES_SERVERGROUP_NAME,                        "Server Group Name",                                 "Name",                HYPERLINK_SERVERGROUP,                         NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Group,              COL_CONFIG_SERVERGROUP_NAME,                     "Server Group Name",                                 "Name",                HYPERLINK_SERVERGROUPCONFIG,                   NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Group,              COL_RES_RECIPIENTGROUP_NAME,                     "Mailbox Group Name",                                "Name",                HYPERLINK_MAILBOXGROUP,                        NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Group,              COL_CONFIG_RECIPIENTGROUP_NAME,                  "Mailbox Group Name",                                "Name",                HYPERLINK_MAILBOXGROUPCONFIG,                  NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Group,              COL_GROUP_DESCRIPTION,                           "Description",                                       "Description",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Group,              COL_GROUP_MEMBERCOUNT,                           "Number of Members",                                 "MemberCount",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},

  {Group::MailboxGroup,       COL_MAILBOXGROUP_PRIORITY,                       "Priority",                                          "PriorityValue",       HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},

  {Group::MailboxGroupTotals, COL_MAILBOXGROUPTOTALS_MAILBOXES,                "Mailboxes",                                         "Mailboxes",           HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::MailboxGroupTotals, COL_MAILBOXGROUPTOTALS_MBMESSAGES,               "Mailbox Messages",                                  "MbMessages",          HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::MailboxGroupTotals, COL_MAILBOXGROUPTOTALS_MBSPACE,                  "Mailbox Space",                                     "MBSpace",             HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},

  {Group::QuotaViolation,     COL_QUOTAVIOLATION_SERVERNAME,                   "Server Name",                                       "computerName",        HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Plain},
  {Group::QuotaViolation,     COL_QUOTAVIOLATION_RECIPIENTNAME,                "Mailbox Name",                                      "RecipientName",       HYPERLINK_DISABLEDSINGLEUSER,                  NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::QuotaViolation,     COL_QUOTAVIOLATION_TYPE,                         "Reason",                                            "DisplayName",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Plain},
  {Group::QuotaViolation,     COL_QUOTAVIOLATION_DISCOVERYTIME,                "Discovered",                                        "DiscoveryTime",       HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIME,           0,     "",       Left,   Wraps,  Plain},
  {Group::QuotaViolation,     COL_QUOTAVIOLATION_VALUE,                        "Value",                                             "Value",               HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       1,     "",       Right,  Wraps,  Plain},
  {Group::QuotaViolation,     COL_QUOTAVIOLATION_THRESHOLD,                    "Threshold Value",                                   "ThresholdValue3",     HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       1,     "",       Right,  Wraps,  Plain},

  {Group::DbFile,             COL_DBFILE_DBFILETYPE,                           "Database Component",                                "DbFileString",        HYPERLINK_NONE,                                Keep,    FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::DbFile,             COL_DBFILE_LASTQUICKSCAN,                        "Last Quick Scan",                                   "LastQuickScan",       HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIME,           0,     "",       Left,   Wraps,  Sorts},
  {Group::DbFile,             COL_DBFILE_FILENAME,                             "Database File Type",                                "FileName",            HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::DbFile,             COL_DBFILE_SORTDIRPATH,                          "Path",                                              "SortDirPath",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},

  {Group::DbFileHistory,      COL_DBFILEHISTORY_FILESIZE,                      "Size",                                              "FileSize",            HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},

  {Group::DbFileSystem,       COL_FILESYSTEM_SIZE,                             "File System Size",                                  "Size",                HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},

  {Group::Mailbox,            COL_MAILBOX_MailboxName,                         "Mailbox Name",                                      "MbName",              HYPERLINK_CHARGEBACK_MAILBOX,                  NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Mailbox,            COL_MAILBOX_MessageCount,                        "Message Count",                                     "MsgCount",            HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::Mailbox,            COL_MAILBOX_MessageSize,                         "Message Space",                                     "MsgSize",             HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::Mailbox,            COL_MAILBOX_AverageMessageSize,                  "Average Message Size",                              "AverageMsgSize",      HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMERICVALUE,       KiB,   "KB",     Right,  Wraps,  Sorts},

  {Group::TopN,               COL_TOPN_MAILBOXNAME,                            "Mailbox Name",                                      "2",                   HYPERLINK_TOPN_MAILBOX,                        NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_MAILBOXID,                              "Exchange Mailbox ID",                               "1",                   HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_PUBLICFOLDERNAME,                       "Public Folder Name",                                "4",                   HYPERLINK_PUBLICFOLDER,                        NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_PUBLICFOLDERID,                         "Exchange Public Folder ID",                         "3",                   HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_MSGID,                                  "Exchange Message ID",                               "11",                  HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_FOLDERID,                               "Exchange Folder ID",                                "12",                  HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_MSGCOUNT,                               "Message Count",                                     "7",                   HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_SPACE,                                  "Message Space",                                     "8",                   HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_AverageSpace,                           "Average Message Size",                              "17",                  HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMERICVALUE,       KiB,   "KB",     Right,  Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_MSGSIZE,                                "Message Size",                                      "14",                  HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       KiB,   "KB",     Right,  Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_MBDateLastAaccess,                      "Last Modified",                                     "10",                  HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIMEFLOAT,      0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_PFDateLastAaccess,                      "Last Modified",                                     "10",                  HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIMEFLOAT,      0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_DateModified,                           "Date Modified",                                     "13",                  HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIMEFLOAT,      0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_SERVER,                                 "Server Name",                                       "15",                  HYPERLINK_TOPN_SERVER,                         NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::TopN,               COL_TOPN_MailboxFolder_ModifiedDateSort_Graphic, "Folder Containing Message",                         "13",                  HYPERLINK_TOPN_MailboxFolder_ModifiedDateSort, NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},
  {Group::TopN,               COL_TOPN_MailboxMessage_Graphic,                 "Message",                                           "13",                  HYPERLINK_TOPN_MailboxMessage,                 NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},
  {Group::TopN,               COL_TOPN_PublicFolderMessage_Graphic,            "Message",                                           "13",                  HYPERLINK_TOPN_PublicFolderMessage,            NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},

  {Group::LiveMailbox,        COL_MAPI_MESSAGENAME,                            "Message Subject",                                   "Name",                HYPERLINK_MAPI_MESSAGE,                        NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_PUBLICFOLDERMESSAGENAME,                "Message Subject",                                   "Name",                HYPERLINK_MAPI_PUBLICFOLDERMESSAGE,            NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_FOLDERNAME,                             "Folder Name",                                       "Name",                HYPERLINK_MAPI_FOLDERNAME,                     NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_PUBLICFOLDERNAME,                       "Public Folder Name",                                "Name",                HYPERLINK_MAPI_PUBLICFOLDERNAME,               NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_CREATEDATE,                             "Creation Date",                                     "CreateDate",          HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIMEFLOAT,      0,     "",       Left,   Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_MODIFIEDDATE,                           "Modification Date",                                 "ModifiedDate",        HYPERLINK_NONE,                                NoTotal, FORMATTYPE_DATETIMEFLOAT,      0,     "",       Right,  Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_FOLDERSIZE,                             "Folder Size",                                       "FolderSize",          HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_MESSAGECOUNT,                           "Message Count",                                     "MessageCount",        HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_SENDER,                                 "Sender",                                            "Sender",              HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_SIZE,                                   "Message Size",                                      "Size",                HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       KiB,   "KB",     Right,  Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_FOLDERGRAPHIC,                          "",                                                  "",                    HYPERLINK_NONE,                                NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},
  {Group::LiveMailbox,        COL_MAPI_MESSAGEGRAPHIC,                         "Message",                                           "",                    HYPERLINK_MAPI_MESSAGE,                        NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},
  {Group::LiveMailbox,        COL_MAPI_PUBLICFOLDERMESSAGEGRAPHIC,             "Message",                                           "",                    HYPERLINK_MAPI_PUBLICFOLDERMESSAGE,            NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},
  {Group::LiveMailbox,        COL_MAPI_ATTACHMENTFILENAME,                     "File Name",                                         "LongFileName",        HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_ATTACHMENTSIZE,                         "Attachment Size",                                   "Size",                HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       KiB,   "KB",     Right,  Wraps,  Sorts},
  {Group::LiveMailbox,        COL_MAPI_DeleteMailboxMessage,                   "",                                                  "",                    HYPERLINK_NONE,                                NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},
  {Group::LiveMailbox,        COL_MAPI_DeletePublicFolderMessage,              "",                                                  "",                    HYPERLINK_NONE,                                NoTotal, FORMATTYPE_IMAGE,              0,     "",       Center, Wraps,  Plain},

  {Group::Task,               COL_CP_COMPUTER,                                 "Server Name",                                       "ComputerName",        HYPERLINK_CAPACITYPLANNINGSERVER,              NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Sorts},
  {Group::Task,               COL_CP_PERCENTUSED,                              "Percent Used",                                      "PercentUsed",         HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMBER,             2,     "",       Right,  Wraps,  Sorts},
  {Group::Task,               COL_CP_NONEXCHANGESPACEUSED,                     "Other Space Used",                                  "OtherUsed",           HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::Task,               COL_CP_FILESYSTEMFREESPACE,                      "File System Free Space",                            "FileSystemFreeSpace", HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::Task,               COL_CP_FILESIZE,                                 "Exchange Space Used",                               "ExchangeSpaceUsed",   HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::Task,               COL_CP_FILESYSTEM,                               "File System Name",                                  "Name",                HYPERLINK_NONE,                                NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Plain},
  {Group::Task,               COL_CP_FILESYSTEMSIZE,                           "Size",                                              "FileSystemSize",      HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Sorts},
  {Group::Task,               COL_PERFORMANCE_AVGMSGRATE_PERDAY,               "Average Messages per Day<br>(for past 7 days)",     "AvgMsgRate",          HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMBER,             0,     "",       Right,  Wraps,  Plain},
  {Group::Task,               COL_PERFORMANCE_AVGMSGSIZE_PERDAY,               "Average Message Size per Day<br>(for past 7 days)", "AvgMsgSize",          HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       KiB,   "KB",     Right,  Wraps,  Plain},
  {Group::Task,               COL_PERFORMANCE_AVGDISKIO_PERDAY,                "Average Disk IO Rate<br>over the past 7 days",      "AvgDiskIO",           HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       KiB,   "KB/sec", Right,  Wraps,  Plain},
  {Group::Task,               COL_PERFORMANCE_DISKPERF,                        "Disk Perf Status",                                  "DiskPerfEnabled",     HYPERLINK_NONE,                                Keep,    FORMATTYPE_NOFORMATING,        0,     "",       Center, Wraps,  Plain},
  {Group::Task,               COL_PERFORMANCE_AVGMEM_PERDAY,                   "Average Memory per Day<br>(for past 7 days)",       "AvgMemory",           HYPERLINK_NONE,                                Keep,    FORMATTYPE_NUMERICVALUE,       MiB,   "MB",     Right,  Wraps,  Plain},
  {Group::Task,               COL_PERFORMANCE_COMPUTER,                        "Server Name",                                       "ComputerName",        HYPERLINK_SERVER,                              NoTotal, FORMATTYPE_NOFORMATING,        0,     "",       Left,   Wraps,  Plain},
};
// clang-format on

constexpr bool IdsAreUniqueAndInRange() {
  bool seen[COL_TOTALCOLUMNS] = {};
  for (const ColumnRow& row : kColumns) {
    if (row.id <= COL_FIRSTCOLUMN || row.id >= COL_TOTALCOLUMNS || seen[row.id]) return false;
    seen[row.id] = true;
  }
  return true;
}
static_assert(IdsAreUniqueAndInRange());

}  // namespace kalvo::columns
