#pragma once

#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

#include "kalvo/enumerations.h"

// Every report table of the product: its settings and its columns, in display order.
namespace kalvo::tables {

// The groups in which the tables are made.
enum class Group : std::uint8_t { General, Task, Resource, Configuration, TopN, LiveMailbox };

enum class Totals : std::uint8_t { ShowTotals, NoTotals };
enum class LastScan : std::uint8_t { ShowScan, NoScan };
enum class Form : std::uint8_t { IsForm, NoForm };
enum class Entries : std::uint8_t { ShowEntries, NoEntries };

using Columns = std::span<const std::int16_t>;

struct TableRow {
  Group group;
  KalvoTableConstants id;
  std::string_view title;
  Totals totals;
  LastScan lastScan;
  Form form;
  Entries entries;
  std::string_view orderBy;
  std::string_view sortOrder;
  Columns columns;
};

using enum Totals;
using enum LastScan;
using enum Form;
using enum Entries;

// clang-format off

// ---- columns --------------------------------------------------------------------------------------------

inline constexpr std::int16_t kCurrentAlerts[] = {
  COL_CURRENTALERTS_DELETE, COL_CURRENTALERTS_RESOURCETYPE, COL_CURRENTALERTS_ALERTEDRESOURCE,
  COL_CURRENTALERTS_ALERT, COL_CURRENTALERTS_THRESHOLD, COL_CURRENTALERTS_NEWVALUE, COL_CURRENTALERTS_OLDVALUE,
  COL_CURRENTALERTS_GROUP, COL_CURRENTALERTS_ALERTTIME, COL_CURRENTALERTS_COMPUTER};
inline constexpr std::int16_t kLatestBackups[] = {
  COL_SERVER_DISTORG, COL_SERVER_DISTSITE, COL_SERVER_COMPUTER, COL_SERVERBACKUP_BackupStart,
  COL_SERVERBACKUP_TYPE};
inline constexpr std::int16_t kFailedBackups[] = {
  COL_SERVER_DISTORG, COL_SERVER_DISTSITE, COL_SERVER_COMPUTER, COL_SERVERBACKUP_TYPE};
inline constexpr std::int16_t kServersOverBackupPolicy[] = {
  COL_RES_SERVERGROUP_NAME, COL_SERVER_COMPUTER, COL_SERVERBACKUP_BACKUPLENGTH,
  COL_CURRENTALERTS_THRESHOLD3_TIME, COL_SERVERBACKUP_TYPE};
inline constexpr std::int16_t kLongestBackups[] = {
  COL_SERVER_DISTORG, COL_SERVER_DISTSITE, COL_SERVER_COMPUTER, COL_SERVERBACKUP_BACKUPLENGTH,
  COL_SERVERBACKUP_BACKUPSTATE, COL_SERVERBACKUP_TYPE};
inline constexpr std::int16_t kCapacityOfGroup[] = {
  COL_CP_COMPUTER, COL_CP_FILESYSTEM, COL_CP_FILESIZE, COL_CP_NONEXCHANGESPACEUSED, COL_CP_FILESYSTEMFREESPACE,
  COL_CP_PERCENTUSED};
inline constexpr std::int16_t kCapacityOfServer[] = {
  COL_CP_FILESYSTEM, COL_CP_FILESYSTEMSIZE, COL_CP_FILESIZE, COL_CP_NONEXCHANGESPACEUSED,
  COL_CP_FILESYSTEMFREESPACE, COL_CP_PERCENTUSED};
inline constexpr std::int16_t kDisabledRecipients[] = {
  COL_QUOTAVIOLATION_ID, COL_QUOTAVIOLATION_SERVERNAME, COL_QUOTAVIOLATION_RECIPIENTNAME,
  COL_QUOTAVIOLATION_TYPE};
inline constexpr std::int16_t kQuotaViolations[] = {
  COL_QUOTAVIOLATION_SERVERNAME, COL_QUOTAVIOLATION_VALUE, COL_QUOTAVIOLATION_THRESHOLD, COL_QUOTAVIOLATION_TYPE,
  COL_QUOTAVIOLATION_DISCOVERYTIME};
inline constexpr std::int16_t kMissingServers[] = {
  COL_SERVER_DISTORG, COL_SERVER_DISTSITE, COL_SERVER_COMPUTER, COL_SERVER_LASTQUICKSCAN};
inline constexpr std::int16_t kNewServers[] = {COL_CURRENTALERTS_NEWCOMPUTER, COL_CURRENTALERTS_ALERTTIME};
inline constexpr std::int16_t kSpacePolicyAlerts[] = {
  COL_CURRENTALERTS_COMPUTER, COL_CURRENTALERTS_ALERTEDRESOURCE, COL_CURRENTALERTS_ALERT,
  COL_CURRENTALERTS_ALERTTIME};
inline constexpr std::int16_t kMailboxGroupAlerts[] = {COL_CURRENTALERTS_MAILBOXGROUP, COL_CURRENTALERTS_ALERTTIME};
inline constexpr std::int16_t kMessageRate[] = {COL_PERFORMANCE_COMPUTER, COL_PERFORMANCE_AVGMSGRATE_PERDAY};
inline constexpr std::int16_t kMessageSize[] = {COL_PERFORMANCE_COMPUTER, COL_PERFORMANCE_AVGMSGSIZE_PERDAY};
inline constexpr std::int16_t kDiskIo[] = {
  COL_PERFORMANCE_COMPUTER, COL_PERFORMANCE_AVGDISKIO_PERDAY, COL_PERFORMANCE_DISKPERF};
inline constexpr std::int16_t kMemory[] = {COL_PERFORMANCE_COMPUTER, COL_PERFORMANCE_AVGMEM_PERDAY};
inline constexpr std::int16_t kServerGroups[] = {
  COL_RES_SERVERGROUP_NAME, COL_GROUP_DESCRIPTION, COL_GROUP_MEMBERCOUNT};
inline constexpr std::int16_t kServerGroupMailboxes[] = {
  COL_RES_SERVERGROUP_NAME, COL_SERVERTOTALS_MAILBOXES, COL_SERVERTOTALS_MBSPACE};
inline constexpr std::int16_t kServerGroupPublicFolders[] = {
  COL_RES_SERVERGROUP_NAME, COL_SERVERTOTALS_PBFOLDERS, COL_SERVERTOTALS_PBSPACE};
inline constexpr std::int16_t kMailboxGroups[] = {
  COL_RES_RECIPIENTGROUP_NAME, COL_GROUP_DESCRIPTION, COL_MAILBOXGROUP_PRIORITY};
inline constexpr std::int16_t kMailboxGroupMailboxes[] = {
  COL_RES_RECIPIENTGROUP_NAME, COL_MAILBOXGROUPTOTALS_MAILBOXES, COL_MAILBOXGROUPTOTALS_MBMESSAGES,
  COL_MAILBOXGROUPTOTALS_MBSPACE};
inline constexpr std::int16_t kGroupMembers[] = {
  COL_SERVER_DOMAIN, COL_SERVER_COMPUTER, COL_SERVERTOTALS_MAILBOXES, COL_SERVERTOTALS_MBMESSAGES,
  COL_SERVERTOTALS_MBSPACE, COL_SERVERTOTALS_PBFOLDERS, COL_SERVERTOTALS_PBMESSAGES, COL_SERVERTOTALS_PBSPACE};
inline constexpr std::int16_t kServerSummary[] = {
  COL_SERVER_DOMAIN, COL_SERVER_COMPUTER, COL_SERVERTOTALS_MAILBOXES, COL_SERVERTOTALS_MBSPACE,
  COL_SERVERTOTALS_PBFOLDERS, COL_SERVERTOTALS_PBSPACE};
inline constexpr std::int16_t kAllServers[] = {
  COL_SERVER_DOMAIN, COL_SERVER_COMPUTER_MANAGED, COL_SERVER_SERVERSTATE, COL_SERVER_AGENTVERSION};
inline constexpr std::int16_t kConfiguredServerGroups[] = {COL_CONFIG_SERVERGROUP_NAME, COL_GROUP_DESCRIPTION};
inline constexpr std::int16_t kConfiguredMailboxGroups[] = {
  COL_CONFIG_RECIPIENTGROUP_NAME, COL_GROUP_DESCRIPTION, COL_MAILBOXGROUP_PRIORITY};
inline constexpr std::int16_t kGroupMembership[] = {
  COL_SERVER_GROUPMEMBERSHIP, COL_SERVER_DOMAIN, COL_SERVER_COMPUTER, COL_SERVER_LASTQUICKSCAN,
  COL_SERVER_LASTDETAILSCAN};
inline constexpr std::int16_t kDatabaseFiles[] = {
  COL_DBFILE_DBFILETYPE, COL_DBFILE_SORTDIRPATH, COL_DBFILE_FILENAME, COL_DBFILEHISTORY_FILESIZE};
inline constexpr std::int16_t kChargeback[] = {
  COL_SERVER_COMPUTER, COL_MAILBOX_MailboxName, COL_MAILBOX_MessageCount, COL_MAILBOX_MessageSize,
  COL_MAILBOX_AverageMessageSize};
inline constexpr std::int16_t kChargebackOfServer[] = {
  COL_MAILBOX_MailboxName, COL_MAILBOX_MessageCount, COL_MAILBOX_MessageSize, COL_MAILBOX_AverageMessageSize};
inline constexpr std::int16_t kAmbiguousAddresses[] = {COL_MAILBOX_MailboxName};
inline constexpr std::int16_t kMailboxSizes[] = {
  COL_TOPN_SERVER, COL_TOPN_MAILBOXNAME, COL_TOPN_MSGCOUNT, COL_TOPN_SPACE, COL_TOPN_AverageSpace};
inline constexpr std::int16_t kMailboxOldSizes[] = {
  COL_TOPN_SERVER, COL_TOPN_MAILBOXNAME, COL_TOPN_MSGCOUNT, COL_TOPN_SPACE};
inline constexpr std::int16_t kPublicFolderSizes[] = {
  COL_TOPN_SERVER, COL_TOPN_PUBLICFOLDERNAME, COL_TOPN_MSGCOUNT, COL_TOPN_SPACE, COL_TOPN_AverageSpace};
inline constexpr std::int16_t kPublicFolderOldSizes[] = {
  COL_TOPN_SERVER, COL_TOPN_PUBLICFOLDERNAME, COL_TOPN_MSGCOUNT, COL_TOPN_SPACE};
inline constexpr std::int16_t kStaleMailboxes[] = {
  COL_TOPN_SERVER, COL_TOPN_MAILBOXNAME, COL_TOPN_MBDateLastAaccess, COL_TOPN_MSGCOUNT, COL_TOPN_SPACE};
inline constexpr std::int16_t kStalePublicFolders[] = {
  COL_TOPN_SERVER, COL_TOPN_PUBLICFOLDERNAME, COL_TOPN_PFDateLastAaccess, COL_TOPN_MSGCOUNT, COL_TOPN_SPACE};
inline constexpr std::int16_t kMailboxMessages[] = {
  COL_TOPN_SERVER, COL_TOPN_MAILBOXNAME, COL_TOPN_MSGSIZE, COL_TOPN_DateModified,
  COL_TOPN_MailboxMessage_Graphic, COL_TOPN_MailboxFolder_ModifiedDateSort_Graphic};
inline constexpr std::int16_t kPublicFolderMessages[] = {
  COL_TOPN_SERVER, COL_TOPN_PUBLICFOLDERNAME, COL_TOPN_MSGSIZE, COL_TOPN_DateModified,
  COL_TOPN_PublicFolderMessage_Graphic};
inline constexpr std::int16_t kLiveMessages[] = {
  COL_MAPI_DeleteMailboxMessage, COL_MAPI_MESSAGEGRAPHIC, COL_MAPI_MESSAGENAME, COL_MAPI_SENDER, COL_MAPI_SIZE,
  COL_MAPI_CREATEDATE, COL_MAPI_MODIFIEDDATE};
inline constexpr std::int16_t kLiveFolders[] = {
  COL_MAPI_FOLDERGRAPHIC, COL_MAPI_FOLDERNAME, COL_MAPI_FOLDERSIZE, COL_MAPI_MESSAGECOUNT, COL_MAPI_CREATEDATE,
  COL_MAPI_MODIFIEDDATE};
inline constexpr std::int16_t kLivePublicFolderMessages[] = {
  COL_MAPI_DeletePublicFolderMessage, COL_MAPI_PUBLICFOLDERMESSAGEGRAPHIC, COL_MAPI_PUBLICFOLDERMESSAGENAME,
  COL_MAPI_SENDER, COL_MAPI_SIZE, COL_MAPI_CREATEDATE, COL_MAPI_MODIFIEDDATE};
inline constexpr std::int16_t kLivePublicFolders[] = {
  COL_MAPI_FOLDERGRAPHIC, COL_MAPI_PUBLICFOLDERNAME, COL_MAPI_FOLDERSIZE, COL_MAPI_MESSAGECOUNT,
  COL_MAPI_CREATEDATE, COL_MAPI_MODIFIEDDATE};
inline constexpr std::int16_t kLiveAttachments[] = {COL_MAPI_ATTACHMENTFILENAME, COL_MAPI_ATTACHMENTSIZE};

// ---- tables ---------------------------------------------------------------------------------------------

// The tables of a group in the order in which they are made. Top-N and live mailbox tables take their row order
// from their row source.
inline constexpr TableRow kTables[] = {
// group                 id                                                     title                                                      totals      charts      last scan  form    entries      order by           order   columns
  {Group::General,       TABLE_CURRENTALERTS,                                   "Current Alerts",                                          NoTotals,     NoScan,    IsForm, ShowEntries, "AlertTime",       "DESC", kCurrentAlerts},

  {Group::Task,          TABLE_TASK_STORAGEADVISORY_DISABLEDSINGLERECIPIENT,    "Quota Violations: All Users",                             NoTotals,     ShowScan,  NoForm, ShowEntries, "RecipientName",   "ASC",  kQuotaViolations},
  {Group::Task,          TABLE_TASK_CAPACITYPLANNING_SUMMARY,                   "Capacity Planning: Group Summary",                        ShowTotals,   ShowScan,  NoForm, ShowEntries, "PercentUsed",     "DESC", kCapacityOfGroup},
  {Group::Task,          TABLE_TASK_CAPACITYPLANNING_SINGLESERVER,              "Capacity Planning: Single Server Detail",                 NoTotals,     ShowScan,  NoForm, ShowEntries, "PercentUsed",     "DESC", kCapacityOfServer},
  {Group::Task,          TABLE_TASK_RECOVERYMANAGEMENT_SucessfulBackups,        "Recovery Management: Most Recent Successful Backups",     NoTotals,     NoScan,    NoForm, ShowEntries, "BackupStart",     "ASC",  kLatestBackups},
  {Group::Task,          TABLE_TASK_RECOVERYMANAGEMENT_FAILEDBACKUPS,           "Recovery Management: Failed Backups",                     NoTotals,     NoScan,    NoForm, ShowEntries, "ComputerName",    "ASC",  kFailedBackups},
  {Group::Task,          TABLE_TASK_RECOVERYMANAGEMENT_SERVERSOVERBACKUPPOLICY, "Recovery Management: Servers Over Backup Policy",         NoTotals,     NoScan,    NoForm, ShowEntries, "ComputerName",    "ASC",  kServersOverBackupPolicy},
  {Group::Task,          TABLE_TASK_RECOVERYMANAGEMENT_LONGESTBACKUPS,          "Recovery Management: Longest Backups",                    NoTotals,     NoScan,    NoForm, ShowEntries, "sb.BackupLength", "DESC", kLongestBackups},
  {Group::Task,          TABLE_PERFORMANCE_AVGMSGS_DESC,                        "Performance: Busiest Servers by Average Messages",        NoTotals,     NoScan,    NoForm, ShowEntries, "",                "",     kMessageRate},
  {Group::Task,          TABLE_PERFORMANCE_AVGMSGS_ASC,                         "Performance: Least Busy Servers by Average Messages",     NoTotals,     NoScan,    NoForm, ShowEntries, "",                "",     kMessageRate},
  {Group::Task,          TABLE_PERFORMANCE_AVGMSGSIZE_DESC,                     "Performance: Busiest Servers by Average Message Size",    NoTotals,     NoScan,    NoForm, ShowEntries, "",                "",     kMessageSize},
  {Group::Task,          TABLE_PERFORMANCE_AVGMSGSIZE_ASC,                      "Performance: Least Busy Servers by Average Message Size", NoTotals,     NoScan,    NoForm, ShowEntries, "",                "",     kMessageSize},
  {Group::Task,          TABLE_PERFORMANCE_AVGDISKIO_DESC,                      "Performance: Busiest Servers by Average Disk I/O",        NoTotals,     NoScan,    NoForm, ShowEntries, "",                "",     kDiskIo},
  {Group::Task,          TABLE_PERFORMANCE_AVGDISKIO_ASC,                       "Performance: Least Busy Servers by Average Disk I/O",     NoTotals,     NoScan,    NoForm, ShowEntries, "",                "ASC",  kDiskIo},
  {Group::Task,          TABLE_PERFORMANCE_AVGMEMUSAGE_DESC,                    "Performance: Busiest Servers by Memory Usage",            NoTotals,     NoScan,    NoForm, ShowEntries, "",                "",     kMemory},
  {Group::Task,          TABLE_PERFORMANCE_AVGMEMUSAGE_ASC,                     "Performance: Least Busy Servers by Memory Usage",         NoTotals,     NoScan,    NoForm, ShowEntries, "",                "",     kMemory},
  {Group::Task,          TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS,         "Storage Advisory: Disabled Recipients",                   NoTotals,     NoScan,    IsForm, ShowEntries, "RecipientName",   "ASC",  kDisabledRecipients},
  {Group::Task,          TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS,             "Storage Advisory: Missing Servers",                       NoTotals,     NoScan,    NoForm, ShowEntries, "ComputerName",    "ASC",  kMissingServers},
  {Group::Task,          TABLE_TASK_STORAGEADVISORY_NEWSERVERS,                 "Storage Advisory: New Servers",                           NoTotals,     NoScan,    NoForm, ShowEntries, "Attrib2",         "ASC",  kNewServers},
  {Group::Task,          TABLE_TASK_STORAGEADVISORY_MAILBOX_SPACEPOLICY,        "Storage Advisory: Mailboxes exceeded space policy",       NoTotals,     NoScan,    NoForm, ShowEntries, "Attrib2",         "ASC",  kSpacePolicyAlerts},
  {Group::Task,          TABLE_TASK_STORAGEADVISORY_PUBLICFOLDER_SPACEPOLICY,   "Storage Advisory: Public folders exceeded space policy",  NoTotals,     NoScan,    NoForm, ShowEntries, "Attrib2",         "ASC",  kSpacePolicyAlerts},
  {Group::Task,          TABLE_TASK_STORAGEADVISORY_MAILBOXGROUP_SPACEPOLICY,   "Storage Advisory: Mailbox Groups exceeded space policy",  NoTotals,     NoScan,    NoForm, ShowEntries, "Attrib2",         "ASC",  kMailboxGroupAlerts},
  {Group::Task,          TABLE_TASK_STORAGEADVISORY_FileSystemCapacity,         "Storage Advisory: File System capacity policy",           NoTotals,     NoScan,    NoForm, ShowEntries, "Attrib2",         "ASC",  kSpacePolicyAlerts},

  {Group::Resource,      TABLE_RES_SERVERGROUPS_SUMMARY,                        "Configuration: Server Groups Summary",                    NoTotals,     NoScan,    NoForm, ShowEntries, "Name",            "ASC",  kServerGroups},
  {Group::Resource,      TABLE_RES_MAILBOXGROUPS_SUMMARY,                       "Configuration: Mailbox Groups Summary",                   NoTotals,     NoScan,    NoForm, ShowEntries, "Name",            "ASC",  kMailboxGroups},
  {Group::Resource,      TABLE_RES_SERVERGROUPS_MAILBOXESSUMMARY,               "Resources: Server Groups Mailboxes Summary",              NoTotals,     NoScan,    NoForm, NoEntries,   "Name",            "ASC",  kServerGroupMailboxes},
  {Group::Resource,      TABLE_RES_SERVERGROUPS_PUBLICFOLDERSSUMMARY,           "Resources: Server Groups Public folders Summary",         NoTotals,     NoScan,    NoForm, NoEntries,   "Name",            "ASC",  kServerGroupPublicFolders},
  {Group::Resource,      TABLE_RES_MAILBOXGROUPS_MAILBOXESSUMMARY,              "Resources: Mailbox Groups Mailboxes Summary",             ShowTotals,   NoScan,    NoForm, NoEntries,   "Name",            "ASC",  kMailboxGroupMailboxes},
  {Group::Resource,      TABLE_RES_SERVERGROUPMEMBERSHIP,                       "Resources: Single Server Group Membership",               ShowTotals, ShowScan,  NoForm, ShowEntries, "ComputerName",    "ASC",  kGroupMembers},
  {Group::Resource,      TABLE_RES_ORGANIZATION_SERVERSUMMARY,                  "Organization Site Server Summary",                        ShowTotals,   ShowScan,  NoForm, ShowEntries, "ComputerName",    "ASC",  kServerSummary},
  {Group::Resource,      TABLE_RES_ORGANIZATION_SITESERVERSUMMARY,              "Organization Site Server Summary",                        ShowTotals,   ShowScan,  NoForm, ShowEntries, "ComputerName",    "ASC",  kServerSummary},
  {Group::Resource,      TABLE_RES_ORGANIZATION_ALLSERVERS,                     "All Exchange Servers",                                    NoTotals,     ShowScan,  NoForm, ShowEntries, "ComputerName",    "ASC",  kAllServers},
  {Group::Resource,      TABLE_RES_SERVERGROUP_SERVERSUMMARY,                   "Server Group Server Summary",                             ShowTotals,   ShowScan,  NoForm, ShowEntries, "ComputerName",    "ASC",  kGroupMembers},
  {Group::Resource,      TABLE_RES_SERVER_DBFILESUMMARY,                        "Single Server DB File Summary",                           ShowTotals,   ShowScan,  NoForm, ShowEntries, "DbFileString",    "ASC",  kDatabaseFiles},
  {Group::Resource,      TABLE_CHARGEBACK_Organization,                         "Chargeback report by organization",                       ShowTotals,   ShowScan,  NoForm, ShowEntries, "MbName",          "ASC",  kChargeback},
  {Group::Resource,      TABLE_CHARGEBACK_Site,                                 "Chargeback report by site",                               ShowTotals,   ShowScan,  NoForm, ShowEntries, "MbName",          "ASC",  kChargeback},
  {Group::Resource,      TABLE_CHARGEBACK_Server,                               "Chargeback report by server",                             ShowTotals,   ShowScan,  NoForm, ShowEntries, "MbName",          "ASC",  kChargebackOfServer},
  {Group::Resource,      TABLE_CHARGEBACK_ServerGroup,                          "Chargeback report by server group",                       ShowTotals,   ShowScan,  NoForm, ShowEntries, "MbName",          "ASC",  kChargeback},
  {Group::Resource,      TABLE_AmbiguousAddressResolution,                      "Resolution of ambiguous addresses",                       NoTotals,     NoScan,    NoForm, NoEntries,   "MbName",          "ASC",  kAmbiguousAddresses},

  {Group::Configuration, TABLE_SERVERGROUPSUMMARY,                              "Configuration: Server Groups Summary",                    NoTotals,     NoScan,    NoForm, ShowEntries, "Name",            "ASC",  kConfiguredServerGroups},
  {Group::Configuration, TABLE_MAILBOXGROUPSUMMARY,                             "Configuration: Mailbox Groups Summary",                   NoTotals,     NoScan,    NoForm, ShowEntries, "Name",            "ASC",  kConfiguredMailboxGroups},
  {Group::Configuration, TABLE_SINGLESERVERGROUPMEMBERSHIP,                     "Configuration: Single Server Group Membership",           NoTotals,     NoScan,    IsForm, ShowEntries, "ComputerName",    "ASC",  kGroupMembership},

  {Group::TopN,          TABLE_TOPN_MBCNT,                                      "TopN Mailbox Count",                                      ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kMailboxSizes},
  {Group::TopN,          TABLE_TOPN_MBSPACE,                                    "TopN Mailbox Space",                                      ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "DESC", kMailboxSizes},
  {Group::TopN,          TABLE_TOPN_MailboxAverageSize,                         "TopN Average Mailbox Space",                              ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "DESC", kMailboxSizes},
  {Group::TopN,          TABLE_TOPN_MBOLDCNT,                                   "TopN Mailbox Old Message Count",                          ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kMailboxOldSizes},
  {Group::TopN,          TABLE_TOPN_MBOLDSPACE,                                 "TopN Mailbox Old Message Space",                          ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kMailboxOldSizes},
  {Group::TopN,          TABLE_TOPN_PFMSGCNT,                                   "TopN Public folder Message Count",                        ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderSizes},
  {Group::TopN,          TABLE_TOPN_PFSPACE,                                    "TopN Public folder Message Space",                        ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderSizes},
  {Group::TopN,          TABLE_TOPN_PublicFolderAverageSize,                    "TopN Public folder Average Message Space",                ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderSizes},
  {Group::TopN,          TABLE_TOPN_PFOLDCNT,                                   "TopN Public folder Old Message Count",                    ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderOldSizes},
  {Group::TopN,          TABLE_TOPN_PFOLDSPACE,                                 "TopN Public folder Old Message Space",                    ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderOldSizes},
  {Group::TopN,          TABLE_TOPN_MBSTALE,                                    "TopN Stale Mailboxes",                                    NoTotals,     ShowScan,  NoForm, ShowEntries, "",                "",     kStaleMailboxes},
  {Group::TopN,          TABLE_TOPN_PFSTALE,                                    "TopN Stale Public folders",                               NoTotals,     ShowScan,  NoForm, ShowEntries, "",                "",     kStalePublicFolders},
  {Group::TopN,          TABLE_TOPN_LARGEMBMSG,                                 "TopN Largest Mailbox Messages",                           ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kMailboxMessages},
  {Group::TopN,          TABLE_TOPN_OLDMBMSG,                                   "TopN Oldest Mailbox Messages",                            ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kMailboxMessages},
  {Group::TopN,          TABLE_TOPN_LARGEOLDMBMSG,                              "TopN Largest Old Mailbox Messages",                       ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kMailboxMessages},
  {Group::TopN,          TABLE_TOPN_LARGEPFMSG,                                 "TopN Largest Public folder Messages",                     ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderMessages},
  {Group::TopN,          TABLE_TOPN_OLDPFMSG,                                   "TopN Oldest Public folder Messages",                      ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderMessages},
  {Group::TopN,          TABLE_TOPN_LARGEOLDPFMSG,                              "TopN Largest Old Public folder Messages",                 ShowTotals,   ShowScan,  NoForm, ShowEntries, "",                "",     kPublicFolderMessages},

  {Group::LiveMailbox,   TABLE_MAPI_MESSAGES,                                   "MAPI Messages",                                           ShowTotals,   NoScan,    NoForm, ShowEntries, "",                "",     kLiveMessages},
  {Group::LiveMailbox,   TABLE_MAPI_FOLDERS,                                    "MAPI Folders",                                            ShowTotals,   NoScan,    NoForm, ShowEntries, "",                "",     kLiveFolders},
  {Group::LiveMailbox,   TABLE_MAPI_PUBLICFOLDER_MESSAGES,                      "MAPI Public folder Messages",                             ShowTotals,   NoScan,    NoForm, ShowEntries, "",                "",     kLivePublicFolderMessages},
  {Group::LiveMailbox,   TABLE_MAPI_PUBLICFOLDER_FOLDERS,                       "MAPI Public folder Folders",                              ShowTotals,   NoScan,    NoForm, ShowEntries, "",                "",     kLivePublicFolders},
  {Group::LiveMailbox,   TABLE_MAPI_ATTACHMENTS,                                "MAPI Mailbox Message Attachments",                        ShowTotals,   NoScan,    NoForm, ShowEntries, "",                "",     kLiveAttachments},
  {Group::LiveMailbox,   TABLE_MAPI_PUBLICFOLDER_ATTACHMENTS,                   "MAPI Public folder Message Attachments",                  ShowTotals,   NoScan,    NoForm, ShowEntries, "",                "",     kLiveAttachments},
};
// clang-format on

constexpr bool EveryTableOnce() {
  bool seen[TABLE_TOTALTABLES] = {};
  for (const TableRow& row : kTables) {
    if (row.id <= TABLE_ALLMANAGEDCOMPUTERS || row.id >= TABLE_TOTALTABLES || seen[row.id]) return false;
    seen[row.id] = true;
  }
  return std::size(kTables) == TABLE_TOTALTABLES - 2;
}
static_assert(EveryTableOnce());

}  // namespace kalvo::tables
