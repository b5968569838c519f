#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "database/sample/random.h"
#include "database/sample/row_writer.h"
#include "database/sample/sample.h"

namespace kalvo::sample {

// The organization that the sample is about, as a scanner would find it: who is where and how much each has.
// Made once, from size and seed alone; every step of the sample, and the makers of sample mail stores, read it
// and nothing else, so what they write agrees. Members refer to each other by their place in the lists.

struct ServerGroup {
  std::int32_t id;
  std::string_view name, description;
  bool isDefault;
};

struct MailboxGroup {
  std::int32_t id;
  std::string_view name, description;
  std::int32_t priority;
};

struct Server {
  std::int32_t id = 0;
  std::size_t group = 0;                  // in serverGroups
  std::string_view organization, domain;  // "Meridian", "KALVO"
  std::string_view site;
  std::string computerName;  // "SEA-EX01": unique
  bool managed = true;
  bool missing = false;
  bool scanned = true;  // false: it has no mailboxes, figures or backups yet
  Moment lastQuickScan, lastDetailScan;
  std::string_view agentVersion;                   // "" where there is no agent
  std::size_t firstMailbox = 0, mailboxCount = 0;  // its mailboxes stand together
  std::size_t firstPublicFolder = 0, publicFolderCount = 0;
  std::int64_t messages = 0, space = 0;              // sums of its mailboxes, space in bytes
  std::int64_t publicMessages = 0, publicSpace = 0;  // sums of its public folders
};

struct Mailbox {
  std::uint32_t person = 0;  // which name it has; unique
  std::uint32_t server = 0;  // in servers
  std::uint8_t group = 0;    // in mailboxGroups
  std::int32_t messages = 0;
  std::int64_t space = 0;  // bytes
};

struct PublicFolder {
  std::size_t server = 0;  // in servers
  std::string path;        // "Sales\Orders": no leading backslash, one between the names
  std::int32_t messages = 0;
  std::int64_t space = 0;  // bytes
};

struct Organization {
  SampleSize size = SampleSize::Small;
  std::uint64_t seed = 1;
  std::optional<SampleKey> key;             // as in the options
  Moment now;                               // the moment of the last scan of all
  std::vector<ServerGroup> serverGroups;    // ids 1, 2, ...
  std::vector<MailboxGroup> mailboxGroups;  // ids go on from the server groups'
  std::vector<Server> servers;              // ids 1, 2, ...
  std::vector<Mailbox> mailboxes;           // MailboxId = place + 1
  std::vector<PublicFolder> publicFolders;

  Random RandomFor(std::string_view step) const { return Random(seed, step); }
};

Organization MakeOrganization(SampleSize size, std::uint64_t seed, Progress& progress);

// "Kathleen O'Brien"; unique in the organization.
std::string DisplayName(const Mailbox& mailbox);

// "kathleen.obrien": ASCII letters, digits and points; unique. The local part of an address and of an account.
std::string Alias(const Mailbox& mailbox);

// "/O=Meridian/OU=Seattle/CN=Recipients/CN=kathleen.obrien"
std::string DistinguishedName(const Organization& organization, const Mailbox& mailbox);

// "KALVO\kathleen.obrien": who owns the mailbox, as a logon name.
std::string OwnerAccount(const Organization& organization, const Mailbox& mailbox);

// The identifier by which alerts, rankings and the sample's mail store name a public folder.
std::string PublicFolderIdentifier(const Organization& organization, const PublicFolder& folder);

}  // namespace kalvo::sample
