#pragma once

#include <cstdint>

// The published enumerations. Each is one list of names and values that both the C++ enumeration and the
// constants of page scripts expand. Spellings are part of the published interface, odd ones too.

namespace kalvo {

#define KALVO_ENUMERATOR(name, value) name = value,

// clang-format off

// The report tables, and ids that only name a place in the console.
#define KALVO_TABLE_CONSTANTS(X)                              \
  X(TABLE_FIRSTTABLE, 0)                                      \
  X(TABLE_ALLMANAGEDCOMPUTERS, 1)                             \
  X(TABLE_CURRENTALERTS, 2)                                   \
  X(TABLE_TASK_RECOVERYMANAGEMENT_SucessfulBackups, 3)        \
  X(TABLE_TASK_RECOVERYMANAGEMENT_FAILEDBACKUPS, 4)           \
  X(TABLE_TASK_RECOVERYMANAGEMENT_SERVERSOVERBACKUPPOLICY, 5) \
  X(TABLE_TASK_RECOVERYMANAGEMENT_LONGESTBACKUPS, 6)          \
  X(TABLE_TASK_CAPACITYPLANNING_SUMMARY, 7)                   \
  X(TABLE_TASK_CAPACITYPLANNING_SINGLESERVER, 8)              \
  X(TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS, 9)         \
  X(TABLE_TASK_STORAGEADVISORY_DISABLEDSINGLERECIPIENT, 10)   \
  X(TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS, 11)            \
  X(TABLE_TASK_STORAGEADVISORY_NEWSERVERS, 12)                \
  X(TABLE_TASK_STORAGEADVISORY_MAILBOX_SPACEPOLICY, 13)       \
  X(TABLE_TASK_STORAGEADVISORY_PUBLICFOLDER_SPACEPOLICY, 14)  \
  X(TABLE_TASK_STORAGEADVISORY_MAILBOXGROUP_SPACEPOLICY, 15)  \
  X(TABLE_TASK_STORAGEADVISORY_FileSystemCapacity, 16)        \
  X(TABLE_PERFORMANCE_AVGMSGS_DESC, 17)                       \
  X(TABLE_PERFORMANCE_AVGMSGS_ASC, 18)                        \
  X(TABLE_PERFORMANCE_AVGMSGSIZE_DESC, 19)                    \
  X(TABLE_PERFORMANCE_AVGMSGSIZE_ASC, 20)                     \
  X(TABLE_PERFORMANCE_AVGDISKIO_DESC, 21)                     \
  X(TABLE_PERFORMANCE_AVGDISKIO_ASC, 22)                      \
  X(TABLE_PERFORMANCE_AVGMEMUSAGE_DESC, 23)                   \
  X(TABLE_PERFORMANCE_AVGMEMUSAGE_ASC, 24)                    \
  X(TABLE_RES_SERVERGROUPS_SUMMARY, 25)                       \
  X(TABLE_RES_SERVERGROUPS_MAILBOXESSUMMARY, 26)              \
  X(TABLE_RES_SERVERGROUPS_PUBLICFOLDERSSUMMARY, 27)          \
  X(TABLE_RES_MAILBOXGROUPS_SUMMARY, 28)                      \
  X(TABLE_RES_MAILBOXGROUPS_MAILBOXESSUMMARY, 29)             \
  X(TABLE_RES_SERVERGROUPMEMBERSHIP, 30)                      \
  X(TABLE_RES_ORGANIZATION_SERVERSUMMARY, 31)                 \
  X(TABLE_RES_ORGANIZATION_SITESERVERSUMMARY, 32)             \
  X(TABLE_RES_ORGANIZATION_ALLSERVERS, 33)                    \
  X(TABLE_RES_SERVERGROUP_SERVERSUMMARY, 34)                  \
  X(TABLE_SERVERGROUPSUMMARY, 35)                             \
  X(TABLE_MAILBOXGROUPSUMMARY, 36)                            \
  X(TABLE_SINGLESERVERGROUPMEMBERSHIP, 37)                    \
  X(TABLE_RES_SERVER_DBFILESUMMARY, 38)                       \
  X(TABLE_CHARGEBACK_Organization, 39)                        \
  X(TABLE_CHARGEBACK_Site, 40)                                \
  X(TABLE_CHARGEBACK_Server, 41)                              \
  X(TABLE_CHARGEBACK_ServerGroup, 42)                         \
  X(TABLE_AmbiguousAddressResolution, 43)                     \
  X(TABLE_TOPN_MBCNT, 44)                                     \
  X(TABLE_TOPN_MBSPACE, 45)                                   \
  X(TABLE_TOPN_MailboxAverageSize, 46)                        \
  X(TABLE_TOPN_MBOLDCNT, 47)                                  \
  X(TABLE_TOPN_MBOLDSPACE, 48)                                \
  X(TABLE_TOPN_PFMSGCNT, 49)                                  \
  X(TABLE_TOPN_PFSPACE, 50)                                   \
  X(TABLE_TOPN_PublicFolderAverageSize, 51)                   \
  X(TABLE_TOPN_PFOLDCNT, 52)                                  \
  X(TABLE_TOPN_PFOLDSPACE, 53)                                \
  X(TABLE_TOPN_MBSTALE, 54)                                   \
  X(TABLE_TOPN_PFSTALE, 55)                                   \
  X(TABLE_TOPN_OLDMBMSG, 56)                                  \
  X(TABLE_TOPN_OLDPFMSG, 57)                                  \
  X(TABLE_TOPN_LARGEMBMSG, 58)                                \
  X(TABLE_TOPN_LARGEPFMSG, 59)                                \
  X(TABLE_TOPN_LARGEOLDMBMSG, 60)                             \
  X(TABLE_TOPN_LARGEOLDPFMSG, 61)                             \
  X(TABLE_MAPI_MESSAGES, 62)                                  \
  X(TABLE_MAPI_FOLDERS, 63)                                   \
  X(TABLE_MAPI_PUBLICFOLDER_MESSAGES, 64)                     \
  X(TABLE_MAPI_PUBLICFOLDER_FOLDERS, 65)                      \
  X(TABLE_MAPI_ATTACHMENTS, 66)                               \
  X(TABLE_MAPI_PUBLICFOLDER_ATTACHMENTS, 67)                  \
  X(TABLE_TOTALTABLES, 68)                                    \
  X(TABLE_PSEUDO_SUMMARY, 69)                                 \
  X(TABLE_PSEUDO_DATABASE_FILES, 70)                          \
  X(TABLE_PSEUDO_NEW, 71)                                     \
  X(TABLE_PSEUDO_PROPERTIES, 72)                              \
  X(TABLE_PSEUDO_MEMBERSHIP, 73)                              \
  X(TABLE_PSEUDO_SCANS, 74)                                   \
  X(TABLE_PSEUDO_DELETE, 75)

// The columns. 0 and 128 are bounds.
#define KALVO_TABLE_COLUMNS_CONSTANTS(X)                  \
  X(COL_FIRSTCOLUMN, 0)                                   \
  X(COL_CURRENTALERTS_DELETE, 1)                          \
  X(COL_CURRENTALERTS_RESOURCETYPE, 2)                    \
  X(COL_CURRENTALERTS_ALERTEDRESOURCE, 3)                 \
  X(COL_CURRENTALERTS_ALERT, 4)                           \
  X(COL_CURRENTALERTS_OLDVALUE, 5)                        \
  X(COL_CURRENTALERTS_THRESHOLD, 6)                       \
  X(COL_CURRENTALERTS_THRESHOLD3_TIME, 7)                 \
  X(COL_CURRENTALERTS_NEWVALUE, 8)                        \
  X(COL_CURRENTALERTS_GROUP, 9)                           \
  X(COL_CURRENTALERTS_ALERTTIME, 10)                      \
  X(COL_CURRENTALERTS_DOMAIN, 11)                         \
  X(COL_CURRENTALERTS_NEWCOMPUTER, 12)                    \
  X(COL_CURRENTALERTS_COMPUTER, 13)                       \
  X(COL_CURRENTALERTS_MAILBOXGROUP, 14)                   \
  X(COL_SERVER_DOMAIN, 15)                                \
  X(COL_SERVER_COMPUTER, 16)                              \
  X(COL_SERVER_COMPUTER_MANAGED, 17)                      \
  X(COL_SERVER_DISTORG, 18)                               \
  X(COL_SERVER_DISTSITE, 19)                              \
  X(COL_SERVER_DISTCN, 20)                                \
  X(COL_SERVER_LASTQUICKSCAN, 21)                         \
  X(COL_SERVER_LASTDETAILSCAN, 22)                        \
  X(COL_SERVER_AGENTVERSION, 23)                          \
  X(COL_SERVER_SERVERSTATE, 24)                           \
  X(COL_SERVER_MESSAGECOUNT, 25)                          \
  X(COL_SERVER_DISKIOCOUNT, 26)                           \
  X(COL_SERVER_GROUPMEMBERSHIP, 27)                       \
  X(COL_SERVERTOTALS_MAILBOXES, 28)                       \
  X(COL_SERVERTOTALS_MAXMAILBOXES, 29)                    \
  X(COL_SERVERTOTALS_MBMESSAGES, 30)                      \
  X(COL_SERVERTOTALS_MAXMBMESSAGES, 31)                   \
  X(COL_SERVERTOTALS_MBSPACE, 32)                         \
  X(COL_SERVERTOTALS_MAXMBSPACE, 33)                      \
  X(COL_SERVERTOTALS_PBFOLDERS, 34)                       \
  X(COL_SERVERTOTALS_MAXPBFOLDERS, 35)                    \
  X(COL_SERVERTOTALS_PBMESSAGES, 36)                      \
  X(COL_SERVERTOTALS_MAXPBMESSAGES, 37)                   \
  X(COL_SERVERTOTALS_PBSPACE, 38)                         \
  X(COL_SERVERTOTALS_MAXPBSPACE, 39)                      \
  X(COL_SERVERBACKUP_BackupStart, 40)                     \
  X(COL_SERVERBACKUP_BACKUPSTATE, 41)                     \
  X(COL_SERVERBACKUP_BACKUPLENGTH, 42)                    \
  X(COL_SERVERBACKUP_TYPE, 43)                            \
  X(COL_MAILBOXGROUPTOTALS_MAILBOXES, 44)                 \
  X(COL_MAILBOXGROUPTOTALS_MAXMAILBOXES, 45)              \
  X(COL_MAILBOXGROUPTOTALS_MBMESSAGES, 46)                \
  X(COL_MAILBOXGROUPTOTALS_MAXMBMESSAGES, 47)             \
  X(COL_MAILBOXGROUPTOTALS_MBSPACE, 48)                   \
  X(COL_MAILBOXGROUPTOTALS_MAXMBSPACE, 49)                \
  X(COL_MAILBOXGROUPTOTALS_PBFOLDERS, 50)                 \
  X(COL_MAILBOXGROUPTOTALS_MAXPBFOLDERS, 51)              \
  X(COL_MAILBOXGROUPTOTALS_PBMESSAGES, 52)                \
  X(COL_MAILBOXGROUPTOTALS_MAXPBMESSAGES, 53)             \
  X(COL_MAILBOXGROUPTOTALS_PBSPACE, 54)                   \
  X(COL_MAILBOXGROUPTOTALS_MAXPBSPACE, 55)                \
  X(COL_DBFILE_DBFILETYPE, 56)                            \
  X(COL_DBFILE_LASTQUICKSCAN, 57)                         \
  X(COL_DBFILE_FILENAME, 58)                              \
  X(COL_DBFILE_SORTDIRPATH, 59)                           \
  X(COL_DBFILEHISTORY_FILESIZE, 60)                       \
  X(COL_DBFILEHISTORY_FREESPACE, 61)                      \
  X(COL_FILESYSTEM_SIZE, 62)                              \
  X(COL_MAILBOX_MailboxName, 63)                          \
  X(COL_MAILBOX_MessageCount, 64)                         \
  X(COL_MAILBOX_MessageSize, 65)                          \
  X(COL_MAILBOX_AverageMessageSize, 66)                   \
  X(COL_RES_SERVERGROUP_NAME, 67)                         \
  X(COL_CONFIG_SERVERGROUP_NAME, 68)                      \
  X(COL_RES_RECIPIENTGROUP_NAME, 69)                      \
  X(COL_CONFIG_RECIPIENTGROUP_NAME, 70)                   \
  X(COL_GROUP_DESCRIPTION, 71)                            \
  X(COL_GROUP_MEMBERCOUNT, 72)                            \
  X(COL_MAILBOXGROUP_PRIORITY, 73)                        \
  X(COL_QUOTAVIOLATION_SERVERNAME, 74)                    \
  X(COL_QUOTAVIOLATION_RECIPIENTNAME, 75)                 \
  X(COL_QUOTAVIOLATION_TYPE, 76)                          \
  X(COL_QUOTAVIOLATION_DISCOVERYTIME, 77)                 \
  X(COL_QUOTAVIOLATION_VALUE, 78)                         \
  X(COL_QUOTAVIOLATION_THRESHOLD, 79)                     \
  X(COL_QUOTAVIOLATION_ID, 80)                            \
  X(COL_CP_COMPUTER, 81)                                  \
  X(COL_CP_PERCENTUSED, 82)                               \
  X(COL_CP_NONEXCHANGESPACEUSED, 83)                      \
  X(COL_CP_FILESYSTEMFREESPACE, 84)                       \
  X(COL_CP_FILESIZE, 85)                                  \
  X(COL_CP_FILESYSTEM, 86)                                \
  X(COL_CP_FILESYSTEMSIZE, 87)                            \
  X(COL_TOPN_MAILBOXNAME, 88)                             \
  X(COL_TOPN_MAILBOXID, 89)                               \
  X(COL_TOPN_PUBLICFOLDERNAME, 90)                        \
  X(COL_TOPN_PUBLICFOLDERID, 91)                          \
  X(COL_TOPN_MSGID, 92)                                   \
  X(COL_TOPN_FOLDERID, 93)                                \
  X(COL_TOPN_MSGCOUNT, 94)                                \
  X(COL_TOPN_SPACE, 95)                                   \
  X(COL_TOPN_AverageSpace, 96)                            \
  X(COL_TOPN_MSGSIZE, 97)                                 \
  X(COL_TOPN_MBDateLastAaccess, 98)                       \
  X(COL_TOPN_PFDateLastAaccess, 99)                       \
  X(COL_TOPN_DateModified, 100)                           \
  X(COL_TOPN_SERVER, 101)                                 \
  X(COL_TOPN_MailboxFolder_ModifiedDateSort_Graphic, 102) \
  X(COL_TOPN_MailboxMessage_Graphic, 103)                 \
  X(COL_TOPN_PublicFolderMessage_Graphic, 104)            \
  X(COL_MAPI_MESSAGENAME, 105)                            \
  X(COL_MAPI_PUBLICFOLDERMESSAGENAME, 106)                \
  X(COL_MAPI_FOLDERNAME, 107)                             \
  X(COL_MAPI_PUBLICFOLDERNAME, 108)                       \
  X(COL_MAPI_CREATEDATE, 109)                             \
  X(COL_MAPI_MODIFIEDDATE, 110)                           \
  X(COL_MAPI_FOLDERSIZE, 111)                             \
  X(COL_MAPI_MESSAGECOUNT, 112)                           \
  X(COL_MAPI_SENDER, 113)                                 \
  X(COL_MAPI_SIZE, 114)                                   \
  X(COL_MAPI_FOLDERGRAPHIC, 115)                          \
  X(COL_MAPI_MESSAGEGRAPHIC, 116)                         \
  X(COL_MAPI_PUBLICFOLDERMESSAGEGRAPHIC, 117)             \
  X(COL_MAPI_ATTACHMENTFILENAME, 118)                     \
  X(COL_MAPI_ATTACHMENTSIZE, 119)                         \
  X(COL_MAPI_DeleteMailboxMessage, 120)                   \
  X(COL_MAPI_DeletePublicFolderMessage, 121)              \
  X(COL_PERFORMANCE_AVGMSGRATE_PERDAY, 122)               \
  X(COL_PERFORMANCE_AVGMSGSIZE_PERDAY, 123)               \
  X(COL_PERFORMANCE_AVGDISKIO_PERDAY, 124)                \
  X(COL_PERFORMANCE_DISKPERF, 125)                        \
  X(COL_PERFORMANCE_AVGMEM_PERDAY, 126)                   \
  X(COL_PERFORMANCE_COMPUTER, 127)                        \
  X(COL_TOTALCOLUMNS, 128)

// The control columns' own numbering; the column catalogue keys them by their column ids.
#define KALVO_TABLE_CONTROLS_CONSTANTS(X) \
  X(COL_CONTROLS_CURRENTALERTS_DELETE, 0) \
  X(COL_TOTALCONTROLCOLUMNS, 1)

// Which row source a table reads.
#define KALVO_TABLE_TYPES(X) \
  X(TABLETYPE_KALVODB, 0)    \
  X(TABLETYPE_TOPN, 1)       \
  X(TABLETYPE_MAPI, 2)

#define KALVO_TABLE_TOTALS_STATES(X) \
  X(table_ShowTotals, 0)             \
  X(table_NoTotals, 1)

// The Top-N loader's objects and load calls.
#define KALVO_TOPN_CODES(X)     \
  X(TOPNOBJECT_SERVER, 0)       \
  X(TOPNOBJECT_MAILBOXGROUP, 1) \
  X(TOPNLOADTYPE_LOAD, 2)       \
  X(TOPNLOADTYPE_LOADGROUP, 3)  \
  X(TOPNLOADTYPE_LOADSITE, 4)   \
  X(TOPNLOADTYPE_LOADORG, 5)    \
  X(TOPNLOADTYPE_LOADRG, 6)

// The scope of a Top-N table.
#define KALVO_TABLE_TOPN_SCOPES(X) \
  X(TOPN_UNDEFINED, 0)             \
  X(TOPN_ORGANIZATION, 1)          \
  X(TOPN_SITE, 2)                  \
  X(TOPN_SINGLESERVER, 3)          \
  X(TOPN_SERVERGROUP, 4)           \
  X(TOPN_MAILBOXGROUP, 5)

// Whether the totals row shows a column's sum.
#define KALVO_COLUMN_TOTAL_STATES(X) \
  X(column_KeepTotal, 0)             \
  X(column_NoTotal, 1)

// How a data cell shows its value.
#define KALVO_TABLE_FORMAT_TYPES(X)   \
  X(FORMATTYPE_FIRSTFORMAT, 0)        \
  X(FORMATTYPE_NOFORMATING, 1)        \
  X(FORMATTYPE_NUMERICVALUE, 2)       \
  X(FORMATTYPE_NUMBER, 3)             \
  X(FORMATTYPE_DATETIME, 4)           \
  X(FORMATTYPE_BackupDateTime, 5)     \
  X(FORMATTYPE_TIME, 6)               \
  X(FORMATTYPE_DATETIMEFLOAT, 7)      \
  X(FORMATTYPE_CHECKBOX, 8)           \
  X(FORMATTYPE_MEMBERSHIPCHECKBOX, 9) \
  X(FORMATTYPE_SERVERSTATE, 10)       \
  X(FORMATTYPE_GUID, 11)              \
  X(FORMATTYPE_IMAGE, 12)             \
  X(FORMATTYPE_STATUS, 13)            \
  X(FORMATTYPE_BACKUPTYPE, 14)        \
  X(FORMATTYPE_QUOTATYPE, 15)         \
  X(FORMATTYPE_QVCHECKBOX, 16)        \
  X(FORMATTYPE_ALERTEDRESOURCE, 17)

// The drill-down link of a data cell.
#define KALVO_TABLE_HYPERLINK_TYPES(X)                 \
  X(HYPERLINK_NONE, 0)                                 \
  X(HYPERLINK_SERVERGROUP, 1)                          \
  X(HYPERLINK_MAILBOXGROUP, 2)                         \
  X(HYPERLINK_SERVERGROUPCONFIG, 3)                    \
  X(HYPERLINK_MAILBOXGROUPCONFIG, 4)                   \
  X(HYPERLINK_SERVER, 5)                               \
  X(HYPERLINK_PUBLICFOLDER, 6)                         \
  X(HYPERLINK_DISABLEDSINGLEUSER, 7)                   \
  X(HYPERLINK_CAPACITYPLANNINGSERVER, 8)               \
  X(HYPERLINK_SERVER_MANAGED, 9)                       \
  X(HYPERLINK_ALERT_SERVER_MANAGED, 10)                \
  X(HYPERLINK_ALERT_MAILBOX, 11)                       \
  X(HYPERLINK_CHARGEBACK_MAILBOX, 12)                  \
  X(HYPERLINK_MAPI_FOLDERNAME, 13)                     \
  X(HYPERLINK_MAPI_PUBLICFOLDERNAME, 14)               \
  X(HYPERLINK_MAPI_MESSAGE, 15)                        \
  X(HYPERLINK_MAPI_PUBLICFOLDERMESSAGE, 16)            \
  X(HYPERLINK_TOPN_MAILBOX, 17)                        \
  X(HYPERLINK_TOPN_SERVER, 18)                         \
  X(HYPERLINK_TOPN_MailboxFolder_ModifiedDateSort, 19) \
  X(HYPERLINK_TOPN_MailboxMessage, 20)                 \
  X(HYPERLINK_TOPN_PublicFolderMessage, 21)
// clang-format on

enum KalvoTableConstants : std::int32_t { KALVO_TABLE_CONSTANTS(KALVO_ENUMERATOR) };
enum KalvoTableColumnsConstants : std::int32_t { KALVO_TABLE_COLUMNS_CONSTANTS(KALVO_ENUMERATOR) };
enum KalvoTableControlsConstants : std::int32_t { KALVO_TABLE_CONTROLS_CONSTANTS(KALVO_ENUMERATOR) };
enum KalvoTableType : std::int32_t { KALVO_TABLE_TYPES(KALVO_ENUMERATOR) };
enum TableTotalsState : std::int32_t { KALVO_TABLE_TOTALS_STATES(KALVO_ENUMERATOR) };
enum KalvoConst : std::int32_t { KALVO_TOPN_CODES(KALVO_ENUMERATOR) };
enum KalvoTableTopN : std::int32_t { KALVO_TABLE_TOPN_SCOPES(KALVO_ENUMERATOR) };
enum ColumnTotalState : std::int32_t { KALVO_COLUMN_TOTAL_STATES(KALVO_ENUMERATOR) };
enum KalvoTableFormatType : std::int32_t { KALVO_TABLE_FORMAT_TYPES(KALVO_ENUMERATOR) };
enum KalvoTableHyperlinkType : std::int32_t { KALVO_TABLE_HYPERLINK_TYPES(KALVO_ENUMERATOR) };

#undef KALVO_ENUMERATOR

// Every published enumeration, as a list of their lists.
#define KALVO_ALL_ENUMERATIONS(X)   \
  KALVO_TABLE_CONSTANTS(X)          \
  KALVO_TABLE_COLUMNS_CONSTANTS(X)  \
  KALVO_TABLE_CONTROLS_CONSTANTS(X) \
  KALVO_TABLE_TYPES(X)              \
  KALVO_TABLE_TOTALS_STATES(X)      \
  KALVO_TOPN_CODES(X)               \
  KALVO_TABLE_TOPN_SCOPES(X)        \
  KALVO_COLUMN_TOTAL_STATES(X)      \
  KALVO_TABLE_FORMAT_TYPES(X)       \
  KALVO_TABLE_HYPERLINK_TYPES(X)

}  // namespace kalvo
