#include <algorithm>

#include "database/sample/sample_steps.h"
#include "database/sample/storage.h"
#include "kalvo/codes.h"

namespace kalvo::sample {
namespace {

constexpr int kDaysOfHistory = 9;

enum HistoryType { kTotals = 1, kActivity = 2, kBackup = 3 };

// A share of a figure that shrinks with every day back, so that the organization grows.
std::int64_t DaysBack(std::int64_t figure, int days) { return figure - figure * days * 7 / 2'000; }

void WriteTotals(SampleRun& run, std::vector<std::int32_t>& current) {
  run.rows.Table("EXDB_SERVERTOTALS", {"ServerTotalsId", "ServerId", "Mailboxes", "MbMessages", "MBSpace", "PBFolders",
                                       "PbMessages", "PbSpace"});
  for (const Server& server : run.organization.servers) {
    if (!server.scanned) continue;
    for (int day = kDaysOfHistory - 1; day >= 0; --day) {
      current[static_cast<std::size_t>(server.id - 1)] = run.NextHistoryRecord();
      run.rows.Add(run.lastHistoryRecord, server.id, server.mailboxCount, DaysBack(server.messages, day),
                   DaysBack(server.space, day), server.publicFolderCount, DaysBack(server.publicMessages, day),
                   DaysBack(server.publicSpace, day));
    }
  }
}

// What the agents measured over the week before each scan: a server works as much as it has mailboxes.
void WriteActivity(SampleRun& run, std::vector<std::int32_t>& current) {
  Random random = run.organization.RandomFor("activity");
  run.rows.Table("EXDB_SERVERACTIVITY", {"ServerActivityId", "ServerId", "AvgMsgRate", "AvgMsgSize", "AvgDiskIO",
                                         "AvgMemory", "DiskPerfEnabled"});
  for (const Server& server : run.organization.servers) {
    if (!server.scanned) continue;
    const auto mailboxes = static_cast<std::int64_t>(server.mailboxCount);
    const bool measuresDisks = !random.OneIn(4);
    for (int day = kDaysOfHistory - 1; day >= 0; --day) {
      const double rate = static_cast<double>(mailboxes * random.Between(15'000, 22'000)) / 1000.0;
      const double size = static_cast<double>(random.Between(9'000, 46'000)) + 0.25 * static_cast<double>(day);
      const double disk = static_cast<double>(40'960 + mailboxes * random.Between(400, 2'600));
      const double memory = static_cast<double>(96 * kMiB + mailboxes * random.Between(90'000, 260'000));
      current[static_cast<std::size_t>(server.id - 1)] = run.NextHistoryRecord();
      run.rows.Add(run.lastHistoryRecord, server.id, rate, size, measuresDisks ? Cell(disk) : Cell(nullptr), memory,
                   measuresDisks ? "Enabled" : "Disabled");
    }
  }
}

struct Current {
  std::int32_t server, record;
};

// A backup of each store every night. Most succeed; some fail, some take far longer than they should.
void WriteBackups(SampleRun& run, std::vector<Current>& current) {
  run.rows.Table("EXDB_SERVERBACKUP",
                 {"ServerBackupId", "ServerId", "BackupType", "BackupState", "BackupStart", "BackupLength"});
  for (const Server& server : run.organization.servers) {
    if (!server.scanned) continue;
    for (int type = 1; type <= 2; ++type) {
      for (const Backup& backup : BackupsOf(run.organization, server, type)) {
        run.rows.Add(run.NextHistoryRecord(), server.id, type, backup.succeeded ? 2 : 3, backup.start, backup.seconds);
      }
      current.push_back({server.id, run.lastHistoryRecord});
    }
  }
}

}  // namespace

void WriteGroups(SampleRun& run) {
  const Organization& organization = run.organization;
  run.rows.Table("EXDB_GROUP", {"GroupId", "Name", "Description"});
  const auto described = [](std::string_view text) { return text.empty() ? Cell(nullptr) : Cell(text); };
  for (const ServerGroup& group : organization.serverGroups)
    run.rows.Add(group.id, group.name, described(group.description));
  for (const MailboxGroup& group : organization.mailboxGroups)
    run.rows.Add(group.id, group.name, described(group.description));
  run.rows.Table("EXDB_SERVERGROUP", {"ServerGroupId", "DefaultGroup"});
  for (const ServerGroup& group : organization.serverGroups) run.rows.Add(group.id, group.isDefault ? 1 : 0);
  run.rows.Table("EXDB_RECIPIENTGROUP", {"RecipientGroupId", "PriorityValue"});
  for (const MailboxGroup& group : organization.mailboxGroups) run.rows.Add(group.id, group.priority);
}

void WriteServers(SampleRun& run) {
  const Organization& organization = run.organization;
  run.rows.Table("EXDB_SERVER",
                 {"ServerId", "ServerGroupId", "DomainName", "ComputerName", "DistOrgName", "DistSiteName",
                  "DistCnName", "Missing", "ServerState", "LastQuickScan", "LastDetailScan", "AgentVersion"});
  for (const Server& server : organization.servers) {
    const auto scan = [&](Moment moment) { return server.scanned ? Cell(moment) : Cell(nullptr); };
    run.rows.Add(server.id, organization.serverGroups[server.group].id, server.domain, server.computerName,
                 server.organization, server.site, server.computerName, server.missing ? 1 : 0,
                 server.managed ? kServerManaged : 1, scan(server.lastQuickScan), scan(server.lastDetailScan),
                 server.agentVersion.empty() ? Cell(nullptr) : Cell(server.agentVersion));
  }
}

void WriteHistory(SampleRun& run) {
  const std::size_t servers = run.organization.servers.size();
  std::vector<std::int32_t> totals(servers, 0), activity(servers, 0);
  std::vector<Current> backups;
  WriteTotals(run, totals);
  WriteActivity(run, activity);
  WriteBackups(run, backups);
  run.rows.Table("EXDB_SERVERCURRENT", {"ServerId", "HistoryType", "HistoryRecord"});
  for (const Server& server : run.organization.servers) {
    if (!server.scanned) continue;
    run.rows.Add(server.id, static_cast<int>(kTotals), totals[static_cast<std::size_t>(server.id - 1)]);
    run.rows.Add(server.id, static_cast<int>(kActivity), activity[static_cast<std::size_t>(server.id - 1)]);
  }
  for (const Current& backup : backups) run.rows.Add(backup.server, static_cast<int>(kBackup), backup.record);
}

void WriteMailboxes(SampleRun& run) {
  const Organization& organization = run.organization;
  run.rows.Table("EXDB_MAILBOX", {"MailboxId", "ServerId", "MbName", "MbDistName", "MsgCount", "MsgSize"});
  const auto count = static_cast<std::int64_t>(organization.mailboxes.size());
  for (std::int64_t i = 0; i < count; ++i) {
    const Mailbox& mailbox = organization.mailboxes[static_cast<std::size_t>(i)];
    run.rows.Add(i + 1, organization.servers[mailbox.server].id, DisplayName(mailbox),
                 DistinguishedName(organization, mailbox), mailbox.messages, mailbox.space);
    if (i % 50'000 == 0) run.progress.Rows(i, count);
  }
}

void WriteGroupTotals(SampleRun& run) {
  const Organization& organization = run.organization;
  struct Sum {
    std::int64_t mailboxes = 0, messages = 0, space = 0;
  };
  std::vector<Sum> sums(organization.mailboxGroups.size());
  for (const Mailbox& mailbox : organization.mailboxes) {
    Sum& sum = sums[mailbox.group];
    ++sum.mailboxes, sum.messages += mailbox.messages, sum.space += mailbox.space;
  }
  const std::int32_t before = run.lastHistoryRecord;
  run.rows.Table("EXDB_RECIPIENTGROUPTOTALS",
                 {"RecipientGroupTotalsId", "RecipientGroupId", "Mailboxes", "MbMessages", "MBSpace"});
  for (std::size_t i = 0; i < sums.size(); ++i) {
    run.rows.Add(run.NextHistoryRecord(), organization.mailboxGroups[i].id, sums[i].mailboxes, sums[i].messages,
                 sums[i].space);
  }
  run.rows.Table("EXDB_RECIPIENTGROUPCURRENT", {"RecipientGroupId", "HistoryType", "HistoryRecord"});
  for (std::size_t i = 0; i < sums.size(); ++i) {
    run.rows.Add(organization.mailboxGroups[i].id, static_cast<int>(kTotals),
                 before + static_cast<std::int32_t>(i) + 1);
  }
}

}  // namespace kalvo::sample
