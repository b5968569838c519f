#include "golden/reports/report_cases.h"

namespace kalvo::test {
namespace {

constexpr bool kAdministrator = true, kUser = false;
constexpr std::string_view kServer = "OFA-EX01", kGroup = "R&D <Lab>", kOrganization = "Meridian", kSite = "O'Fallon";

// clang-format off
constexpr ReportCase kCases[] = {
  {TABLE_CURRENTALERTS,                                    "",      "",            "",    "",   kAdministrator},
  {TABLE_TASK_RECOVERYMANAGEMENT_SucessfulBackups,         "",      "",            "",    "",   kUser},
  {TABLE_TASK_RECOVERYMANAGEMENT_FAILEDBACKUPS,            "",      "",            "",    "",   kUser},
  {TABLE_TASK_RECOVERYMANAGEMENT_SERVERSOVERBACKUPPOLICY,  "",      "",            "",    "",   kUser},
  {TABLE_TASK_RECOVERYMANAGEMENT_LONGESTBACKUPS,           "",      "",            "",    "",   kUser},
  {TABLE_TASK_CAPACITYPLANNING_SUMMARY,                    kGroup,  "",            "",    "",   kUser},
  {TABLE_TASK_CAPACITYPLANNING_SINGLESERVER,               kServer, "",            "",    "",   kUser},
  {TABLE_TASK_STORAGEADVISORY_DISABLEDRECIPIENTS,          "",      "",            "",    "",   kAdministrator},
  {TABLE_TASK_STORAGEADVISORY_DISABLEDSINGLERECIPIENT,     "",      "",            "",    "",   kUser},
  {TABLE_TASK_STORAGEADVISORY_MISSINGSERVERS,              "",      "",            "",    "",   kUser},
  {TABLE_TASK_STORAGEADVISORY_NEWSERVERS,                  "",      "",            "",    "",   kUser},
  {TABLE_TASK_STORAGEADVISORY_MAILBOX_SPACEPOLICY,         "",      "",            "",    "",   kUser},
  {TABLE_TASK_STORAGEADVISORY_PUBLICFOLDER_SPACEPOLICY,    "",      "",            "",    "",   kUser},
  {TABLE_TASK_STORAGEADVISORY_MAILBOXGROUP_SPACEPOLICY,    "",      "",            "",    "",   kUser},
  {TABLE_TASK_STORAGEADVISORY_FileSystemCapacity,          "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGMSGS_DESC,                         "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGMSGS_ASC,                          "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGMSGSIZE_DESC,                      "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGMSGSIZE_ASC,                       "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGDISKIO_DESC,                       "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGDISKIO_ASC,                        "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGMEMUSAGE_DESC,                     "",      "",            "",    "",   kUser},
  {TABLE_PERFORMANCE_AVGMEMUSAGE_ASC,                      "",      "",            "",    "",   kUser},
  {TABLE_RES_SERVERGROUPS_SUMMARY,                         "",      "",            "",    "",   kUser},
  {TABLE_RES_SERVERGROUPS_MAILBOXESSUMMARY,                "",      "",            "",    "",   kUser},
  {TABLE_RES_SERVERGROUPS_PUBLICFOLDERSSUMMARY,            "",      "",            "",    "",   kUser},
  {TABLE_RES_MAILBOXGROUPS_SUMMARY,                        "",      "",            "",    "",   kUser},
  {TABLE_RES_MAILBOXGROUPS_MAILBOXESSUMMARY,               "",      "",            "",    "",   kUser},
  {TABLE_RES_SERVERGROUPMEMBERSHIP,                        kGroup,  "",            "",    "",   kUser},
  {TABLE_RES_ORGANIZATION_SERVERSUMMARY,                   "",      kOrganization, "",    "",   kUser},
  {TABLE_RES_ORGANIZATION_SITESERVERSUMMARY,               "",      kOrganization, kSite, "",   kUser},
  {TABLE_RES_ORGANIZATION_ALLSERVERS,                      "",      "",            "",    "",   kUser},
  {TABLE_RES_SERVERGROUP_SERVERSUMMARY,                    kGroup,  "",            "",    "",   kUser},
  {TABLE_SERVERGROUPSUMMARY,                               "",      "",            "",    "",   kUser},
  {TABLE_MAILBOXGROUPSUMMARY,                              "",      "",            "",    "",   kUser},
  {TABLE_SINGLESERVERGROUPMEMBERSHIP,                      "Default Servers", "",  "",    "",   kAdministrator},
  {TABLE_RES_SERVER_DBFILESUMMARY,                         kServer, "",            "",    "",   kUser},
  {TABLE_CHARGEBACK_Organization,                          "",      kOrganization, "",    "",   kUser},
  {TABLE_CHARGEBACK_Site,                                  "",      kOrganization, kSite, "",   kUser},
  {TABLE_CHARGEBACK_Server,                                kServer, "",            "",    "",   kUser},
  {TABLE_CHARGEBACK_ServerGroup,                           kGroup,  "",            "",    "",   kUser},
  {TABLE_AmbiguousAddressResolution,                       kServer, "",            "",    "%a%", kUser},
};
// clang-format on

static_assert(std::size(kCases) == TABLE_AmbiguousAddressResolution - TABLE_CURRENTALERTS + 1);

}  // namespace

std::span<const ReportCase> ReportCases() { return kCases; }

}  // namespace kalvo::test
