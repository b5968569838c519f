#include <algorithm>
#include <optional>
#include <vector>

#include "database/sample/policies.h"
#include "database/sample/sample_steps.h"
#include "database/sample/storage.h"
#include "kalvo/codes.h"
#include "kalvo/platform/append.h"

namespace kalvo::sample {
namespace {

// Where the alerts go: each gets an identifier and a time of its own, the latest first.
class AlertBook {
 public:
  explicit AlertBook(SampleRun& run) : run_(run), random_(run.organization.RandomFor("alerts")) {}

  struct Alert {
    const AlertType& type;
    std::string_view resource;
    const Server* server = nullptr;
    std::string_view group = {};
    std::int64_t threshold = 0, value = 0;
    std::string folderIdentifier = "";
  };

  void Add(const Alert& alert) {
    const bool old = alert.type.measure == Measure::OldMessages || alert.type.measure == Measure::OldSpace;
    const Cell domain = alert.server ? Cell(alert.server->domain) : Cell(nullptr);
    const Cell computer = alert.server ? Cell(alert.server->computerName) : Cell(nullptr);
    Add(alert.type, alert.resource, domain, computer, alert.group, alert.folderIdentifier,
        old ? DayText(run_.organization.now.Before(90)) : "", MeasureText(alert.type.measure, alert.threshold),
        MeasureText(alert.type.measure, alert.value));
  }

  // An alert about a computer that is not in the database.
  void AddStranger(const AlertType& type, std::string_view domain, std::string_view computer) {
    Add(type, computer, Cell(domain), Cell(computer), "", "", "", "", "");
  }

 private:
  static std::string DayText(Moment moment) { return MomentText(moment).substr(0, 10); }
  static Cell OrNull(std::string_view text) { return text.empty() ? Cell(nullptr) : Cell(text); }

  void Add(const AlertType& type, std::string_view resource, const Cell& domain, const Cell& computer,
           std::string_view group, std::string_view folder, std::string_view oldBefore, std::string_view threshold,
           std::string_view value) {
    Identifier identifier;
    for (std::uint8_t& byte : identifier) byte = static_cast<std::uint8_t>(random_.Below(256));
    time_ = time_.Before(0, random_.Between(40, 2'400));
    run_.rows.Add(identifier, type.id, time_, resource, domain, computer, SubjectText(type.subject), OrNull(group),
                  OrNull(folder), type.text, OrNull(oldBefore), OrNull(threshold), OrNull(value));
  }

  SampleRun& run_;
  Random random_;
  Moment time_ = run_.organization.now;
};

std::vector<const AlertType*> TypesOf(Subject subject) {
  std::vector<const AlertType*> types;
  for (const AlertType& type : AlertTypes()) {
    if (type.subject == subject) types.push_back(&type);
  }
  return types;
}

const AlertType& TypeOf(std::int32_t code) { return *std::ranges::find(AlertTypes(), code, &AlertType::code); }

int AlertsAServer(SampleSize size) { return size == SampleSize::Small ? 1 : size == SampleSize::Medium ? 3 : 10; }

void AddMailboxAlert(const Organization& organization, AlertBook& book, const Server& server, const AlertType& type) {
  const Mailbox* worst = nullptr;
  std::int64_t most = 0;
  for (std::size_t i = server.firstMailbox; i < server.firstMailbox + server.mailboxCount; ++i) {
    const Mailbox& mailbox = organization.mailboxes[i];
    const std::int64_t over = Measured(type.measure, mailbox.messages, mailbox.space, mailbox.person) * 1'000 /
                              MailboxLimit(type, mailbox.group, 1);
    if (over > std::max<std::int64_t>(most, 1'000)) most = over, worst = &mailbox;
  }
  if (!worst) return;
  book.Add({type, DisplayName(*worst), &server, organization.mailboxGroups[worst->group].name,
            MailboxLimit(type, worst->group, 1), Measured(type.measure, worst->messages, worst->space, worst->person)});
}

void AddFolderAlert(const Organization& organization, AlertBook& book, const Server& server, const AlertType& type) {
  const ServerGroup& group = organization.serverGroups[server.group];
  for (std::size_t i = 0; i < server.publicFolderCount; ++i) {
    const PublicFolder& folder = organization.publicFolders[server.firstPublicFolder + i];
    const std::int64_t value =
        Measured(type.measure, folder.messages, folder.space, static_cast<std::uint64_t>(server.id) + i);
    if (value <= ServerLimit(type, group, 1)) continue;
    book.Add({type, folder.path, &server, group.name, ServerLimit(type, group, 1), value,
              PublicFolderIdentifier(organization, folder)});
    return;
  }
}

std::optional<std::int64_t> FileSystemValue(const AlertType& type, const FileSystem& system, std::uint64_t key) {
  std::int64_t files = 0;
  for (const DbFile& file : system.files) files += file.size;
  switch (type.measure) {
    case Measure::PercentUsed: return system.PercentUsed();
    case Measure::FreeSpace: return system.free;
    case Measure::OtherSpace: return system.size - system.free - files;
    case Measure::DaysLeft: return system.free / (files / 200 + 1);
    default: return Measured(type.measure, 0, 0, key);
  }
}

void AddFileSystemAlert(const Organization& organization, AlertBook& book, const Server& server,
                        const AlertType& type) {
  const ServerGroup& group = organization.serverGroups[server.group];
  const bool below = type.measure == Measure::FreeSpace || type.measure == Measure::DaysLeft;
  const std::int64_t limit = ServerLimit(type, group, 1);
  for (const FileSystem& system : FileSystemsOf(organization, server)) {
    const std::int64_t value = *FileSystemValue(type, system, static_cast<std::uint64_t>(server.id));
    if (below ? value >= limit : value <= limit) continue;
    book.Add({type, system.name, &server, group.name, limit, value});
    return;
  }
}

void AddBackupAlert(const Organization& organization, AlertBook& book, const Server& server) {
  const ServerGroup& group = organization.serverGroups[server.group];
  const std::int64_t policy = BackupPolicy(group), length = BackupsOf(organization, server, 1).back().seconds;
  if (policy > 0 && length > policy)
    book.Add({TypeOf(alerts::kBackupLength), server.computerName, &server, group.name, policy, length});
}

void AddGroupAlerts(const Organization& organization, AlertBook& book) {
  std::vector<std::int64_t> mailboxSpace(organization.mailboxGroups.size()),
      serverSpace(organization.serverGroups.size());
  for (const Mailbox& mailbox : organization.mailboxes) mailboxSpace[mailbox.group] += mailbox.space;
  for (const Server& server : organization.servers) serverSpace[server.group] += server.space;
  for (std::size_t i = 0; i < mailboxSpace.size(); ++i) {
    const std::int64_t limit = MailboxLimit(TypeOf(5016), i, 1);
    const std::string_view name = organization.mailboxGroups[i].name;
    if (mailboxSpace[i] > limit) book.Add({TypeOf(5016), name, nullptr, name, limit, mailboxSpace[i]});
  }
  for (std::size_t i = 0; i < serverSpace.size(); ++i) {
    const std::int64_t limit = ServerLimit(TypeOf(5025), organization.serverGroups[i], 1);
    const std::string_view name = organization.serverGroups[i].name;
    if (serverSpace[i] > limit) book.Add({TypeOf(5025), name, nullptr, name, limit, serverSpace[i]});
  }
}

void AddServerAlerts(SampleRun& run, AlertBook& book, const Server& server) {
  const Organization& organization = run.organization;
  static const auto kMailbox = TypesOf(Subject::Mailbox), kFolder = TypesOf(Subject::PublicFolder),
                    kFileSystem = TypesOf(Subject::FileSystem);
  const std::size_t turn = static_cast<std::size_t>(server.id - 1);
  if (!server.managed) return book.Add({TypeOf(alerts::kNewServer), server.computerName, &server});
  if (server.missing)
    book.Add(
        {TypeOf(alerts::kSilentServer), server.computerName, &server, organization.serverGroups[server.group].name});
  if (server.agentVersion.starts_with("1.")) book.Add({TypeOf(5024), server.computerName, &server});
  if (!server.scanned) return;
  for (std::size_t i = 0; i < static_cast<std::size_t>(AlertsAServer(organization.size)); ++i) {
    AddMailboxAlert(organization, book, server, *kMailbox[(turn + i) % kMailbox.size()]);
    AddFolderAlert(organization, book, server, *kFolder[(turn + i) % kFolder.size()]);
    AddFileSystemAlert(organization, book, server, *kFileSystem[(turn + i) % kFileSystem.size()]);
  }
  // The inbox has no report of its own, so a server may have several.
  AddMailboxAlert(organization, book, server, TypeOf(5003));
  AddBackupAlert(organization, book, server);
  if (server.id % 9 == 4) book.Add({TypeOf(7001), server.computerName, &server});
}

void WritePolicies(SampleRun& run) {
  run.rows.Table("RMC_ALERTCONFIG",
                 {"AlertTypeId", "Owner", "ConfigSequence", "ThresholdValue1", "ThresholdValue2", "ThresholdValue3"});
  const auto add = [&](const AlertType& type, std::int32_t owner, int step, std::int64_t limit) {
    const auto part = [&](std::int64_t percent) { return static_cast<double>(limit * percent / 100); };
    run.rows.Add(type.id, owner, step, part(50), part(80), static_cast<double>(limit));
  };
  for (const AlertType& type : AlertTypes()) {
    if (type.measure == Measure::None) continue;
    const bool mailboxes = type.subject == Subject::Mailbox || type.subject == Subject::MailboxGroup;
    for (int step = 1; step <= (type.measure == Measure::Duration ? 1 : kPolicySteps); ++step) {
      if (mailboxes) {
        for (std::size_t i = 0; i < run.organization.mailboxGroups.size(); ++i) {
          add(type, run.organization.mailboxGroups[i].id, step, MailboxLimit(type, i, step));
        }
      } else {
        for (const ServerGroup& group : run.organization.serverGroups) {
          if (ServerLimit(type, group, step) > 0) add(type, group.id, step, ServerLimit(type, group, step));
        }
      }
    }
  }
}

}  // namespace

void WriteAlerts(SampleRun& run) {
  run.rows.Table("RMC_ALERTTYPE", {"AlertTypeId", "AlertTypeCode", "SubSystem", "DisplayName"});
  for (const AlertType& type : AlertTypes()) run.rows.Add(type.id, type.code, type.subsystem, type.name);
  WritePolicies(run);
  run.rows.Table("RMC_ALERT", {"AlertId", "AlertTypeId", "AlertTime", "AlertedResource", "Attrib1", "Attrib2",
                               "Attrib3", "Attrib4", "Attrib5", "Attrib6", "Attrib7", "Attrib8", "Attrib9"});
  AlertBook book(run);
  for (const Server& server : run.organization.servers) AddServerAlerts(run, book, server);
  AddGroupAlerts(run.organization, book);
  book.AddStranger(TypeOf(alerts::kNewServer), "NORD", "ZRH-TEST<1>");
  book.AddStranger(TypeOf(alerts::kNewServer), "COTE", "PARIS & CIE");
}

// The mailboxes that have gone far beyond a quota are disabled, and stay so for every quota that they broke.
void WriteViolations(SampleRun& run) {
  const Organization& organization = run.organization;
  Random random = organization.RandomFor("violations");
  run.rows.Table("EXDB_QUOTAVIOLATION", {"QuotaViolationId", "ServerId", "RecipientName", "RecipientGroupId",
                                         "QuotaType", "Severity", "Value", "DiscoveryTime"});
  for (const Mailbox& mailbox : organization.mailboxes) {
    if (organization.size == SampleSize::Large && mailbox.person % 10 != 0) continue;
    for (const std::int32_t code : {5001, 5002}) {
      const AlertType& type = TypeOf(code);
      const std::int64_t value = Measured(type.measure, mailbox.messages, mailbox.space, mailbox.person);
      int step = kPolicySteps;
      while (step > 0 && value <= MailboxLimit(type, mailbox.group, step)) --step;
      if (step < kPolicySteps) continue;
      Identifier identifier;
      for (std::uint8_t& byte : identifier) byte = static_cast<std::uint8_t>(random.Below(256));
      const Server& server = organization.servers[mailbox.server];
      run.rows.Add(identifier, server.id, DisplayName(mailbox), organization.mailboxGroups[mailbox.group].id, code,
                   step, static_cast<double>(value), server.lastDetailScan.Before(0, random.Below(5'000)));
    }
  }
}

}  // namespace kalvo::sample
