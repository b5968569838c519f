#include "adapters/ranking/brute_force.h"

#include <algorithm>
#include <functional>
#include <set>
#include <stdexcept>
#include <tuple>

#include "kalvo/platform/conversion.h"

namespace kalvo::test {
namespace {

using namespace ranking;

using Texts = std::vector<std::string>;

void Read(const std::string& file, const char* sql, const std::function<void(const Texts&)>& row) {
  sqlite3* database = nullptr;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK ||
      sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database));
  }
  while (sqlite3_step(statement) == SQLITE_ROW) {
    Texts texts;
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
      texts.emplace_back(text ? text : "");
    }
    row(texts);
  }
  sqlite3_finalize(statement);
  sqlite3_close(database);
}

std::optional<double> Serial(const std::string& text) {
  if (text.empty()) return std::nullopt;
  return ParseDate(text, kEnglishUnitedStates).value().serial;
}

std::string TextOf(const std::optional<double>& serial) { return serial ? ToText(Value(*serial)) : ""; }

enum class Measure { Count, Space, Average, OldCount, OldSpace, Newest, Date, Size, OldSize };

struct Asked {
  bool ofMailboxes;
  Measure measure;
};

Asked Meaning(std::int16_t kind) {
  switch (kind) {
    case 1: return {true, Measure::Count};
    case 2: return {true, Measure::Space};
    case 21: return {true, Measure::Average};
    case 8: return {true, Measure::OldCount};
    case 9: return {true, Measure::OldSpace};
    case 13: return {true, Measure::Newest};
    case 6: return {true, Measure::Date};
    case 17: return {true, Measure::Size};
    case 18: return {true, Measure::OldSize};
    case 4: return {false, Measure::Count};
    case 5: return {false, Measure::Space};
    case 22: return {false, Measure::Average};
    case 11: return {false, Measure::OldCount};
    case 12: return {false, Measure::OldSpace};
    case 14: return {false, Measure::Newest};
    case 7: return {false, Measure::Date};
    case 19: return {false, Measure::Size};
    case 20: return {false, Measure::OldSize};
    default: throw std::runtime_error("no such kind");
  }
}

bool IsOfMessages(Measure measure) {
  return measure == Measure::Date || measure == Measure::Size || measure == Measure::OldSize;
}
bool IsByDate(Measure measure) { return measure == Measure::Date || measure == Measure::Newest; }

}  // namespace

struct BruteForce::Candidate {
  const Owner* owner = nullptr;
  const Message* message = nullptr;
  std::int64_t amount = 0, number = 0;
  std::int64_t count = 0, space = 0;  // of all of the owner's messages
  std::optional<double> date;
};

BruteForce::BruteForce(const std::string& file) {
  Read(file,
       "select s.ServerId, s.ComputerName, g.Name, s.DistSiteName, s.DistOrgName, s.ServerState, s.LastDetailScan "
       "from EXDB_SERVER s left join EXDB_GROUP g on g.GroupId = s.ServerGroupId",
       [&](const Texts& row) {
         servers_[std::stoll(row[0])] = {row[1], row[2], row[3], row[4], row[5] == "2", Serial(row[6])};
       });
  Read(file,
       "select m.MailboxId, m.ServerId, d.ExchangeId, m.MbName, m.MbDistName from EXDB_MAILBOX m left join "
       "EXDB_MAILBOXDETAIL d on d.MailboxId = m.MailboxId",
       [&](const Texts& row) {
         mailboxes_[std::stoll(row[0])] = {std::stoll(row[0]), std::stoll(row[1]), row[2], row[3], row[4], {}, {}};
       });
  Read(file, "select PublicFolderId, ServerId, ExchangeId, FolderPath from EXDB_PUBLICFOLDER", [&](const Texts& row) {
    folders_[std::stoll(row[0])] = {std::stoll(row[0]), std::stoll(row[1]), row[2], row[3], row[3], {}, {}};
  });
  Read(file,
       "select p.MailboxId, g.Name from EXDB_RECIPIENTGROUPMEMBER p, EXDB_GROUP g where g.GroupId = p.RecipientGroupId",
       [&](const Texts& row) { mailboxes_.at(std::stoll(row[0])).groups.push_back(row[1]); });
  Read(file, "select g.Name from EXDB_RECIPIENTGROUP r, EXDB_GROUP g where g.GroupId = r.RecipientGroupId",
       [&](const Texts& row) { mailboxGroups_.push_back(row[0]); });
  Read(file,
       "select e.MessageId, e.MailboxId, e.PublicFolderId, e.ExchangeId, f.ExchangeId, e.MsgSize, e.ModifiedDate, "
       "e.HasAttachment from EXDB_MESSAGE e left join EXDB_FOLDER f on f.FolderId = e.FolderId",
       [&](const Texts& row) {
         Owner& owner = row[1].empty() ? folders_.at(std::stoll(row[2])) : mailboxes_.at(std::stoll(row[1]));
         const std::string& folder = row[1].empty() ? owner.id : row[4];
         owner.messages.push_back({row[3], folder, std::stoll(row[5]), Serial(row[6]), row[7], std::stoll(row[0])});
       });
}

std::vector<std::string> BruteForce::Names(Scope scope) const {
  if (scope == Scope::MailboxGroup) return mailboxGroups_;
  std::set<std::string> names;
  for (const auto& [id, server] : servers_) {
    names.insert(scope == Scope::Server        ? server.name
                 : scope == Scope::ServerGroup ? server.group
                 : scope == Scope::Site        ? server.site
                                               : server.organization);
  }
  return {names.begin(), names.end()};
}

bool BruteForce::InScope(const Owner& owner, Scope scope, std::string_view name) const {
  const Server& server = servers_.at(owner.server);
  if (!server.managed) return false;
  switch (scope) {
    case Scope::Server: return server.name == name;
    case Scope::ServerGroup: return server.group == name;
    case Scope::Site: return server.site == name;
    case Scope::Organization: return server.organization == name;
    case Scope::MailboxGroup: return std::find(owner.groups.begin(), owner.groups.end(), name) != owner.groups.end();
  }
  return false;
}

std::vector<BruteForce::Candidate> BruteForce::Candidates(std::int16_t kind, const Owner& owner, double oldDays) const {
  const Measure measure = Meaning(kind).measure;
  const std::optional<double> scan = servers_.at(owner.server).lastDetailScan;
  const double kHalfASecond = 0.5 / 86'400;
  const auto isOld = [&](const Message& message) {
    return message.modified && scan && *message.modified <= *scan - oldDays + kHalfASecond;
  };
  Candidate whole{&owner, nullptr, 0, owner.number, 0, 0, std::nullopt};
  std::int64_t oldCount = 0, oldSpace = 0;
  std::vector<Candidate> candidates;
  for (const Message& message : owner.messages) {
    ++whole.count, whole.space += message.size;
    if (isOld(message)) ++oldCount, oldSpace += message.size;
    if (message.modified && (!whole.date || *whole.date < *message.modified)) whole.date = message.modified;
    if (!IsOfMessages(measure) || (measure == Measure::OldSize && !isOld(message))) continue;
    const std::int64_t amount = measure == Measure::Date ? 0 : message.size;
    candidates.push_back({&owner, &message, amount, message.number, 0, 0, message.modified});
  }
  if (IsOfMessages(measure)) return candidates;
  switch (measure) {
    case Measure::Count: whole.amount = whole.count; break;
    case Measure::Space: whole.amount = whole.space; break;
    case Measure::Average: whole.amount = whole.count ? whole.space / whole.count : 0; break;
    case Measure::OldCount: whole.amount = oldCount; break;
    case Measure::OldSpace: whole.amount = oldSpace; break;
    default: break;
  }
  if (whole.amount > 0 || IsByDate(measure)) candidates.push_back(whole);
  return candidates;
}

ExpectedRow BruteForce::Shown(std::int16_t kind, const Candidate& candidate) const {
  const auto [ofMailboxes, measure] = Meaning(kind);
  const Owner& owner = *candidate.owner;
  ExpectedRow row{{kServer, servers_.at(owner.server).name}, {kMailbox, owner.address}};
  row[ofMailboxes ? kMailboxName : kPublicFolderName] = owner.name;
  if (!ofMailboxes) row[kPublicFolderId] = owner.id;
  if (const Message* message = candidate.message) {
    row[kMessageId] = message->id;
    row[kFolderId] = message->folderId;
    row[kMessageModified] = TextOf(message->modified);
    row[kMessageSize] = std::to_string(message->size);
    row[kHasAttachment] = message->hasAttachment;
    return row;
  }
  if (ofMailboxes) row[kMailboxId] = owner.id;
  row[kMessages] = std::to_string(measure == Measure::OldCount ? candidate.amount : candidate.count);
  row[kSpace] = std::to_string(measure == Measure::OldSpace ? candidate.amount : candidate.space);
  row[kModified] = TextOf(candidate.date);
  if (candidate.count) row[kAverageSize] = std::to_string(candidate.space / candidate.count);
  return row;
}

std::vector<ExpectedRow> BruteForce::Rank(std::int16_t kind, Scope scope, std::string_view name, std::size_t rows,
                                          double oldDays) const {
  const auto [ofMailboxes, measure] = Meaning(kind);
  std::vector<Candidate> all;
  if (scope != Scope::MailboxGroup || ofMailboxes) {
    for (const auto& [id, owner] : ofMailboxes ? mailboxes_ : folders_) {
      if (!InScope(owner, scope, name)) continue;
      const auto some = Candidates(kind, owner, oldDays);
      all.insert(all.end(), some.begin(), some.end());
    }
  }
  const bool byDate = IsByDate(measure);
  const auto key = [&](const Candidate& c) {
    const std::int64_t undated = byDate && !c.date ? 1 : 0;
    return std::tuple(undated, byDate && c.date ? *c.date : 0.0, byDate ? 0 : -c.amount, c.owner->server, c.number);
  };
  std::sort(all.begin(), all.end(), [&](const Candidate& a, const Candidate& b) { return key(a) < key(b); });
  if (all.size() > rows) all.resize(rows);
  std::vector<ExpectedRow> shown;
  for (const Candidate& candidate : all) shown.push_back(Shown(kind, candidate));
  return shown;
}

}  // namespace kalvo::test
