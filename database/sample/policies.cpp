#include "database/sample/policies.h"

#include "database/sample/storage.h"
#include "kalvo/codes.h"
#include "kalvo/platform/append.h"

namespace kalvo::sample {
namespace {

constexpr std::string_view kManager = "Exchange Manager";

// clang-format off
constexpr AlertType kTypes[] = {
// id  code                    subsystem  subject                measure               limit        name                                   text
  {1,  5001,                   kManager,  Subject::Mailbox,      Measure::Messages,    80,          "Mailbox message count",               "More messages than allowed"},
  {2,  5002,                   kManager,  Subject::Mailbox,      Measure::Space,       2 * kMiB,    "Mailbox space",                       "Space > quota"},
  {3,  5003,                   kManager,  Subject::Mailbox,      Measure::Messages,    60,          "Mailbox messages in the inbox",       "Inbox is not tidied up"},
  {4,  5006,                   kManager,  Subject::Mailbox,      Measure::OldMessages, 25,          "Mailbox old message count",           "Too many old messages"},
  {5,  5008,                   kManager,  Subject::Mailbox,      Measure::OldSpace,    kMiB / 2,    "Mailbox old message space",           "Old messages take too much space"},
  {6,  5009,                   kManager,  Subject::Mailbox,      Measure::Growth,      15,          "Mailbox growth",                      "Grows too fast"},
  {7,  5013,                   kManager,  Subject::Mailbox,      Measure::Idle,        60,          "Stale mailbox",                       "Nobody has used the mailbox"},
  {8,  5036,                   kManager,  Subject::Mailbox,      Measure::AverageSize, 10 * 1'024,  "Mailbox average message size",        "Messages are large on average"},
  {9,  5004,                   kManager,  Subject::PublicFolder, Measure::Messages,    50,          "Public folder message count",         "More messages than allowed"},
  {10, 5005,                   kManager,  Subject::PublicFolder, Measure::Space,       kMiB,        "Public folder space",                 "Space > limit"},
  {11, 5007,                   kManager,  Subject::PublicFolder, Measure::OldMessages, 20,          "Public folder old message count",     "Too many old messages"},
  {12, 5011,                   kManager,  Subject::PublicFolder, Measure::OldSpace,    kMiB / 4,    "Public folder old message space",     "Old messages take too much space"},
  {13, 5012,                   kManager,  Subject::PublicFolder, Measure::Growth,      10,          "Public folder growth",                "Grows too fast"},
  {14, 5014,                   kManager,  Subject::PublicFolder, Measure::Idle,        30,          "Stale public folder",                 "Nobody has written to the folder"},
  {15, 5042,                   kManager,  Subject::PublicFolder, Measure::AverageSize, 4 * 1'024,   "Public folder average message size",  "Messages are large on average"},
  {16, 5016,                   kManager,  Subject::MailboxGroup, Measure::Space,       60 * kMiB,   "Mailbox group space",                 "The group's mailboxes > its share"},
  {17, alerts::kNewServer,     kManager,  Subject::NewServer,    Measure::None,        0,           "New server",                          "A server was found that is not managed"},
  {18, alerts::kBackupLength,  kManager,  Subject::Server,       Measure::Duration,    14'400,      "Backup length",                       "The backup took longer than the policy"},
  {19, alerts::kSilentServer,  kManager,  Subject::Server,       Measure::None,        0,           "Server does not answer",              "No answer from the server's agent"},
  {20, 5024,                   kManager,  Subject::Server,       Measure::None,        0,           "Agent out of date",                   "The agent's version is < 2.1"},
  {21, 5025,                   kManager,  Subject::ServerGroup,  Measure::Space,       300 * kMiB,   "Server group space",                 "The group's mailboxes > its share"},
  {22, 5030,                   kManager,  Subject::FileSystem,   Measure::PercentUsed, 40,          "File system used",                    "Filling up"},
  {23, 5031,                   kManager,  Subject::FileSystem,   Measure::FreeSpace,   3 * kGiB,    "File system free space",              "Little space left"},
  {24, 5032,                   kManager,  Subject::FileSystem,   Measure::PercentUsed, 50,          "File system nearly full",             "Nearly full"},
  {25, 5033,                   kManager,  Subject::FileSystem,   Measure::Growth,      5,           "File system growth",                  "Fills too fast"},
  {26, 5034,                   kManager,  Subject::FileSystem,   Measure::OtherSpace,  100 * kMiB,  "Other files on the file system",      "Other files > their share"},
  {27, 5035,                   kManager,  Subject::FileSystem,   Measure::DaysLeft,    4'000,       "File system forecast",                "Will be full soon"},
  {28, 7001,                   "Backup Manager", Subject::Server, Measure::None,       0,           "Tape drive",                          "The tape drive wants cleaning"},
};
// clang-format on

std::string BytesText(std::int64_t bytes) {
  const std::int64_t tenths = bytes * 10 / kMiB;
  return Built([&](std::string& out) { Append(out, tenths / 10, ".", tenths % 10, " MB"); });
}

}  // namespace

std::span<const AlertType> AlertTypes() { return kTypes; }

std::int64_t MailboxLimit(const AlertType& type, std::size_t mailboxGroup, int step) {
  static constexpr std::int64_t kPercentOfLimit[] = {100, 300, 200, 120, 50};
  const std::int64_t limit = type.limit * kPercentOfLimit[mailboxGroup] / 100;
  return limit << (step - 1);  // every step allows twice as much as the one before
}

std::int64_t ServerLimit(const AlertType& type, const ServerGroup& group, int step) {
  if (type.measure == Measure::Duration) return BackupPolicy(group);
  return type.limit << (step - 1);
}

std::int64_t Measured(Measure measure, std::int64_t messages, std::int64_t space, std::uint64_t key) {
  switch (measure) {
    case Measure::Messages: return messages;
    case Measure::Space: return space;
    case Measure::OldMessages: return messages * 2 / 5;
    case Measure::OldSpace: return space * 3 / 10;
    case Measure::Growth: return static_cast<std::int64_t>(8 + key * 31 % 70);
    case Measure::Idle: return static_cast<std::int64_t>(20 + key * 67 % 600);
    case Measure::AverageSize: return messages == 0 ? 0 : space / messages;
    default: return 0;
  }
}

std::string MeasureText(Measure measure, std::int64_t value) {
  return Built([&](std::string& out) {
    switch (measure) {
      case Measure::Messages:
      case Measure::OldMessages: Append(out, value, " messages"); break;
      case Measure::Space:
      case Measure::OldSpace:
      case Measure::FreeSpace:
      case Measure::OtherSpace: out = BytesText(value); break;
      case Measure::Growth:
      case Measure::PercentUsed: Append(out, value, "%"); break;
      case Measure::Idle:
      case Measure::DaysLeft: Append(out, value, " days"); break;
      case Measure::AverageSize: Append(out, value / 1'024, " KB"); break;
      case Measure::Duration: Append(out, value / 3'600, " h ", value / 60 % 60, " min"); break;
      case Measure::None: break;
    }
  });
}

std::string_view SubjectText(Subject subject) {
  switch (subject) {
    case Subject::Mailbox: return "Mailbox";
    case Subject::PublicFolder: return "Public folder";
    case Subject::FileSystem: return "File System";
    case Subject::MailboxGroup: return "Mailbox Group";
    case Subject::ServerGroup: return "Server Group";
    case Subject::Server:
    case Subject::NewServer: return "Server";
  }
  return "";
}

}  // namespace kalvo::sample
