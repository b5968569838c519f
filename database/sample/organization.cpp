#include "database/sample/organization.h"

#include <algorithm>

#include "database/sample/people.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::sample {
namespace {

constexpr std::int64_t kKiB = 1024;
constexpr Moment kNow{1791184500};  // 2026-10-05 07:15:00

struct Division {
  std::string_view organization, domain;
};
struct Site {
  std::size_t division;
  std::string_view name, prefix;  // the prefix of its servers' names
};
struct SizeRow {
  SampleSize size;
  std::string_view name;
  std::int64_t servers, mailboxes, publicFoldersAServer;
  std::int64_t mailboxMessages, folderMessages;  // in a typical mailbox and public folder
};

// clang-format off
constexpr SizeRow kSizes[] = {
// size                 name      servers  mailboxes  public folders a server  messages in a mailbox, in a folder
  {SampleSize::Small,   "small",  28,      420,       4,                       60,                    90},
  {SampleSize::Medium,  "medium", 120,     20'000,    8,                       15,                    60},
  {SampleSize::Large,   "large",  1'000,   1'000'000, 10,                      5,                     60},
};
constexpr Division kDivisions[] = {
  {"Meridian",    "KALVO"},
  {"Côte & Fils", "COTE"},
  {"Nordlicht",   "NORD"},
};
constexpr Site kSites[] = {
  {0, "Seattle", "SEA"}, {0, "Belém", "BEL"}, {0, "O'Fallon", "OFA"}, {0, "東京", "TYO"},
  {1, "Paris 1<sup>er</sup>", "PAR"}, {1, "Lyon", "LYS"},
  {2, "München", "MUC"}, {2, "Zürich", "ZRH"}, {2, "Москва", "MOW"},
};
constexpr ServerGroup kServerGroups[] = {
  {1, "Default Servers",       "Servers that nobody has put into a group of their own", true},
  {2, "Branch Offices",        "Small servers behind slow lines", false},
  {3, "Production",            "The servers that must not stop", false},
  {4, "R&D <Lab>",             "Experiments; \"may break at any time\"", false},
  {5, "Spare Servers",         "", false},
};
constexpr MailboxGroup kMailboxGroups[] = {
  {6, "Everybody",             "Mailboxes in no other group", 40},
  {7, "Executives",            "No limits worth the name", 10},
  {8, "Sales & Marketing",     "Large attachments are their trade", 20},
  {9, "Support 24x7",          "Shared mailboxes of the \"hot line\"", 30},
  {10, "Temporary <Staff>",    "Für Aushilfen: kleine Postfächer", 35},
};
constexpr std::string_view kAgentVersions[] = {"2.1.0.348", "2.1.0.351", "2.0.3.290", "1.1.0.77"};
constexpr std::string_view kFolders[] = {
  "Announcements", "Sales\\Orders", "Sales\\Price lists", "Support\\Cases & Calls",
  "Projects\\Übersicht", "Projects\\2026 \"Aurora\"", "Human Resources\\Forms", "Library",
  "Archive\\100% done", "Отдел\\Документы",
};
// clang-format on

const SizeRow& RowOf(SampleSize size) {
  return *std::find_if(std::begin(kSizes), std::end(kSizes), [&](const SizeRow& row) { return row.size == size; });
}

// Most servers stand in the group of their kind; every eighth is left in the default group, and no server at all
// is spare.
std::size_t GroupOf(std::size_t number) {
  if (number % 8 == 7) return 0;
  return number % 7 == 3 ? 3 : number % 3 == 1 ? 1 : 2;
}

void AddServers(Organization& organization, const SizeRow& row) {
  Random random = organization.RandomFor("servers");
  for (std::int64_t i = 0; i < row.servers; ++i) {
    const std::size_t number = static_cast<std::size_t>(i);
    const Site& site = kSites[number % std::size(kSites)];
    Server server;
    server.id = static_cast<std::int32_t>(i + 1);
    server.group = GroupOf(number);
    server.organization = kDivisions[site.division].organization;
    server.domain = kDivisions[site.division].domain;
    server.site = site.name;
    const std::int64_t inSite = i / static_cast<std::int64_t>(std::size(kSites)) + 1;
    server.computerName =
        Built([&](std::string& out) { Append(out, site.prefix, "-EX", inSite < 10 ? "0" : "", inSite); });
    server.managed = number % 14 != 12;
    server.missing = server.managed && number % 9 == 5;
    server.scanned = server.managed && number % 13 != 11;
    // The scans of a night follow one another; a missing server was last seen some days ago.
    const Moment scan = organization.now.Before(server.missing ? 3 + random.Below(9) : 0, i * 97 % 25'000);
    if (server.scanned) server.lastQuickScan = scan, server.lastDetailScan = scan.Before(random.Below(5), 5'417);
    if (server.managed) server.agentVersion = kAgentVersions[number % 11 == 4 ? 3 : number % 3];
    organization.servers.push_back(std::move(server));
  }
}

std::int64_t Scaled(std::int64_t typical, Random& random) { return typical * random.SkewedThousandths() / 1000; }

Mailbox MakeMailbox(std::uint32_t person, std::uint32_t server, std::int64_t typicalMessages, Random& random) {
  Mailbox mailbox;
  mailbox.person = person;
  mailbox.server = server;
  mailbox.group = static_cast<std::uint8_t>(random.OneIn(3) ? 1 + random.Below(4) : 0);
  if (random.OneIn(30)) return mailbox;  // nobody has used it yet
  mailbox.messages = static_cast<std::int32_t>(1 + Scaled(typicalMessages, random));
  mailbox.space = mailbox.messages * (kKiB + Scaled(22 * kKiB, random)) + random.Below(kKiB);
  return mailbox;
}

// Mailboxes are spread unevenly over the scanned servers, and counted out to the last.
void AddMailboxes(Organization& organization, const SizeRow& row, Progress& progress) {
  Random random = organization.RandomFor("mailboxes");
  std::vector<std::int64_t> shares(organization.servers.size(), 0);
  std::int64_t sum = 0, given = 0;
  for (std::size_t i = 0; i < shares.size(); ++i) {
    if (organization.servers[i].scanned) sum += shares[i] = random.Between(40, 160);
  }
  organization.mailboxes.reserve(static_cast<std::size_t>(row.mailboxes));
  std::int64_t shareSoFar = 0;
  for (std::size_t i = 0; i < shares.size(); ++i) {
    Server& server = organization.servers[i];
    server.firstMailbox = organization.mailboxes.size();
    shareSoFar += shares[i];
    for (; given < row.mailboxes * shareSoFar / sum; ++given) {
      const auto person = static_cast<std::uint32_t>(given);
      const Mailbox& mailbox = organization.mailboxes.emplace_back(
          MakeMailbox(person, static_cast<std::uint32_t>(i), row.mailboxMessages, random));
      server.messages += mailbox.messages;
      server.space += mailbox.space;
      if (given % 100'000 == 0) progress.Rows(given, row.mailboxes);
    }
    server.mailboxCount = organization.mailboxes.size() - server.firstMailbox;
  }
}

void AddPublicFolders(Organization& organization, const SizeRow& row) {
  Random random = organization.RandomFor("public folders");
  for (std::size_t i = 0; i < organization.servers.size(); ++i) {
    Server& server = organization.servers[i];
    server.firstPublicFolder = organization.publicFolders.size();
    const std::int64_t count = server.scanned ? random.Between(0, row.publicFoldersAServer) : 0;
    for (std::int64_t k = 0; k < count; ++k) {
      PublicFolder folder;
      folder.server = i;
      folder.path = kFolders[(i + static_cast<std::size_t>(k)) % std::size(kFolders)];
      folder.messages = static_cast<std::int32_t>(Scaled(row.folderMessages, random));
      folder.space = folder.messages * (kKiB + Scaled(40 * kKiB, random));
      server.publicMessages += folder.messages;
      server.publicSpace += folder.space;
      organization.publicFolders.push_back(std::move(folder));
    }
    server.publicFolderCount = organization.publicFolders.size() - server.firstPublicFolder;
  }
}

}  // namespace

SampleSize SampleSizeFromName(std::string_view name) {
  for (const SizeRow& row : kSizes) {
    if (row.name == name) return row.size;
  }
  throw Error(codes::kFailed, Built([&](std::string& out) {
                Append(out, "There is no sample of size \"", name, "\"; the sizes are small, medium and large.");
              }));
}

Organization MakeOrganization(SampleSize size, std::uint64_t seed, Progress& progress) {
  progress.Step("the organization");
  const SizeRow& row = RowOf(size);
  Organization organization;
  organization.size = size;
  organization.seed = seed;
  organization.now = kNow;
  organization.serverGroups.assign(std::begin(kServerGroups), std::end(kServerGroups));
  organization.mailboxGroups.assign(std::begin(kMailboxGroups), std::end(kMailboxGroups));
  AddServers(organization, row);
  AddMailboxes(organization, row, progress);
  AddPublicFolders(organization, row);
  return organization;
}

std::string DisplayName(const Mailbox& mailbox) { return PersonName(mailbox.person); }

std::string Alias(const Mailbox& mailbox) { return PersonAccount(mailbox.person); }

std::string DistinguishedName(const Organization& organization, const Mailbox& mailbox) {
  const Server& server = organization.servers[mailbox.server];
  return Built([&](std::string& out) {
    Append(out, "/O=", server.organization, "/OU=", server.site, "/CN=Recipients/CN=", Alias(mailbox));
  });
}

std::string OwnerAccount(const Organization& organization, const Mailbox& mailbox) {
  return Built(
      [&](std::string& out) { Append(out, organization.servers[mailbox.server].domain, "\\", Alias(mailbox)); });
}

}  // namespace kalvo::sample
