// The step of the Top-N reports: what a scanner makes of all messages of the organization. The large sample keeps
// the messages that rank and no others.

#include <map>

#include "database/sample/ranked_list.h"
#include "database/sample/sample_steps.h"
#include "kalvo/codes.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::sample {
namespace {

enum class Ranks : std::uint8_t {
  Messages,
  Space,
  Average,
  OldMessages,
  OldSpace,
  Modified,
  MessageDate,
  MessageSize,
  OldMessageSize
};

struct KindRow {
  Ranks ranks;
  std::int16_t ofMailboxes, ofPublicFolders;  // the kind's number for each
};

// clang-format off
constexpr KindRow kKinds[] = {
// ranks by               mailboxes                           public folders
  {Ranks::Messages,        kinds::kMailboxMessages,            kinds::kFolderMessages},
  {Ranks::Space,           kinds::kMailboxSpace,               kinds::kFolderSpace},
  {Ranks::Average,         kinds::kMailboxAverageSize,         kinds::kFolderAverageSize},
  {Ranks::OldMessages,     kinds::kMailboxOldMessages,         kinds::kFolderOldMessages},
  {Ranks::OldSpace,        kinds::kMailboxOldSpace,            kinds::kFolderOldSpace},
  {Ranks::Modified,        kinds::kStaleMailboxes,             kinds::kStaleFolders},
  {Ranks::MessageDate,     kinds::kOldestMailboxMessages,      kinds::kOldestFolderMessages},
  {Ranks::MessageSize,     kinds::kLargestMailboxMessages,     kinds::kLargestFolderMessages},
  {Ranks::OldMessageSize,  kinds::kLargestOldMailboxMessages,  kinds::kLargestOldFolderMessages},
};
// clang-format on

bool RanksOldOnes(Ranks ranks) {
  return ranks == Ranks::OldMessages || ranks == Ranks::OldSpace || ranks == Ranks::OldMessageSize;
}
bool RanksByDate(Ranks ranks) { return ranks == Ranks::Modified || ranks == Ranks::MessageDate; }
bool RanksMessages(Ranks ranks) { return ranks >= Ranks::MessageDate; }

// The rankings of one server's mailboxes, of its public folders, or of a mailbox group.
class Rankings {
 public:
  Rankings() {
    for (const KindRow& kind : kKinds) {
      lists_.emplace_back(RanksByDate(kind.ranks) ? Order::OldestFirst : Order::LargestFirst);
    }
  }

  void Offer(Ranks ranks, Candidate candidate, std::int64_t amount) {
    if (amount == 0 && !RanksByDate(ranks)) return;
    candidate.amount = amount;
    lists_[static_cast<std::size_t>(ranks)].Offer(candidate);
  }

  const std::vector<Candidate>& Places(Ranks ranks) { return lists_[static_cast<std::size_t>(ranks)].Places(); }

 private:
  std::vector<RankedList> lists_;  // in the order of `Ranks`
};

struct OwnerFigures {
  std::int64_t messages = 0, space = 0, oldMessages = 0, oldSpace = 0;
  std::optional<Moment> newest;
};

template <typename Id>
std::string Identifier(char kind, Id number) {
  std::string text(13, '0');
  text[0] = kind;
  for (std::size_t at = text.size(); number != 0 && at > 1; number /= 16)
    text[--at] = HexDigit(static_cast<unsigned>(number % 16), HexLetters::Capital);
  return text;
}

class TopNWriter {
 public:
  explicit TopNWriter(SampleRun& run)
      : run_(run),
        organization_(run.organization),
        keepsAll_(organization_.size != SampleSize::Large),
        ofMailboxes_(organization_.servers.size()),
        ofFolders_(organization_.servers.size()),
        ofGroups_(organization_.mailboxGroups.size()) {}

  void Write() {
    BeginMessages();
    ScanMailboxes();
    ScanPublicFolders();
    if (!keepsAll_) WriteRankedMessages();
    WriteDetails();
    WriteFolders();
    WritePublicFolders();
    WriteServerRankings();
    WriteGroupRankings();
  }

 private:
  void BeginMessages() {
    run_.rows.Table("EXDB_MESSAGE", {"MessageId", "ServerId", "MailboxId", "FolderId", "PublicFolderId", "ExchangeId",
                                     "MsgSize", "ModifiedDate", "HasAttachment"});
  }

  void WriteMessage(const Candidate& candidate, bool ofMailbox) {
    const Message& message = candidate.message;
    const Cell none = nullptr;
    const std::int64_t folder = FolderId(candidate.owner, message.folder);
    run_.rows.Add(candidate.item, candidate.server, ofMailbox ? Cell(std::int64_t{candidate.owner}) : none,
                  ofMailbox ? Cell(folder) : none, ofMailbox ? none : Cell(std::int64_t{candidate.owner}),
                  Identifier('M', candidate.item), message.size, DateOf(message.modified),
                  message.hasAttachment ? 1 : 0);
  }

  static Cell DateOf(const std::optional<Moment>& moment) { return moment ? Cell(*moment) : Cell(nullptr); }

  static std::int64_t FolderId(std::int64_t mailbox, std::size_t folder) {
    return mailbox * static_cast<std::int64_t>(kFoldersAMailbox) + static_cast<std::int64_t>(folder);
  }

  // Offers the messages made last for their own places and adds up what their owner is ranked by.
  OwnerFigures Scan(const Server& server, std::int32_t owner, bool ofMailbox, Rankings& rankings, Rankings* group) {
    const Moment old = server.lastDetailScan.Before(ranking::kOldDays);
    OwnerFigures figures;
    for (const Message& message : messages_) {
      Candidate candidate{++lastMessage_, 0, message.modified, server.id, owner, message};
      const bool isOld = message.modified && *message.modified <= old;
      ++figures.messages, figures.space += message.size;
      if (isOld) ++figures.oldMessages, figures.oldSpace += message.size;
      if (message.modified && (!figures.newest || *figures.newest < *message.modified))
        figures.newest = message.modified;
      for (Rankings* target : {&rankings, group}) {
        if (!target) continue;
        target->Offer(Ranks::MessageDate, candidate, 0);
        target->Offer(Ranks::MessageSize, candidate, message.size);
        if (isOld) target->Offer(Ranks::OldMessageSize, candidate, message.size);
      }
      if (keepsAll_) WriteMessage(candidate, ofMailbox);
    }
    return figures;
  }

  static void OfferOwner(Rankings& rankings, const Server& server, std::int32_t owner, const OwnerFigures& figures) {
    const Candidate candidate{owner, 0, figures.newest, server.id, owner, {}};
    rankings.Offer(Ranks::Messages, candidate, figures.messages);
    rankings.Offer(Ranks::Space, candidate, figures.space);
    rankings.Offer(Ranks::Average, candidate, figures.messages == 0 ? 0 : figures.space / figures.messages);
    rankings.Offer(Ranks::OldMessages, candidate, figures.oldMessages);
    rankings.Offer(Ranks::OldSpace, candidate, figures.oldSpace);
    rankings.Offer(Ranks::Modified, candidate, 0);
  }

  void ScanMailboxes() {
    Random random = organization_.RandomFor("messages");
    newestOfMailboxes_.reserve(organization_.mailboxes.size());
    for (std::size_t i = 0; i < organization_.mailboxes.size(); ++i) {
      const Mailbox& mailbox = organization_.mailboxes[i];
      const Server& server = organization_.servers[mailbox.server];
      const auto id = static_cast<std::int32_t>(i + 1);
      MakeMessages(random, mailbox.messages, mailbox.space, server.lastDetailScan, messages_);
      Rankings& rankings = ofMailboxes_[mailbox.server];
      Rankings& group = ofGroups_[mailbox.group];
      const OwnerFigures figures = Scan(server, id, true, rankings, &group);
      OfferOwner(rankings, server, id, figures);
      OfferOwner(group, server, id, figures);
      newestOfMailboxes_.push_back(figures.newest);
      if (i % 20'000 == 0)
        run_.progress.Rows(static_cast<std::int64_t>(i), static_cast<std::int64_t>(organization_.mailboxes.size()));
    }
  }

  void ScanPublicFolders() {
    Random random = organization_.RandomFor("public messages");
    for (std::size_t i = 0; i < organization_.publicFolders.size(); ++i) {
      const PublicFolder& folder = organization_.publicFolders[i];
      const Server& server = organization_.servers[folder.server];
      const auto id = static_cast<std::int32_t>(i + 1);
      MakeMessages(random, folder.messages, folder.space, server.lastDetailScan, messages_);
      for (Message& message : messages_) message.folder = 0;
      const OwnerFigures figures = Scan(server, id, false, ofFolders_[folder.server], nullptr);
      OfferOwner(ofFolders_[folder.server], server, id, figures);
      newestOfFolders_.push_back(figures.newest);
    }
  }

  // A message may rank by several kinds, on its server and in its group.
  void WriteRankedMessages() {
    std::map<std::int64_t, std::pair<const Candidate*, bool>> ranked;
    const auto collect = [&](std::vector<Rankings>& all, bool ofMailbox) {
      for (Rankings& rankings : all) {
        for (const KindRow& kind : kKinds) {
          if (!RanksMessages(kind.ranks)) continue;
          for (const Candidate& candidate : rankings.Places(kind.ranks))
            ranked[candidate.item] = {&candidate, ofMailbox};
        }
      }
    };
    collect(ofMailboxes_, true);
    collect(ofGroups_, true);
    collect(ofFolders_, false);
    for (const auto& [id, message] : ranked) {
      WriteMessage(*message.first, message.second);
      if (message.second)
        rankedFolders_[FolderId(message.first->owner, message.first->message.folder)] = message.first->owner;
    }
  }

  void WriteDetails() {
    run_.rows.Table("EXDB_MAILBOXDETAIL", {"MailboxId", "ExchangeId", "LastModified"});
    for (std::size_t i = 0; i < newestOfMailboxes_.size(); ++i) {
      run_.rows.Add(i + 1, Identifier('B', i + 1), DateOf(newestOfMailboxes_[i]));
    }
    run_.rows.Table("EXDB_RECIPIENTGROUPMEMBER", {"RecipientGroupId", "MailboxId"});
    for (std::size_t group = 0; group < organization_.mailboxGroups.size(); ++group) {
      for (std::size_t i = 0; i < organization_.mailboxes.size(); ++i) {
        if (organization_.mailboxes[i].group == group) run_.rows.Add(organization_.mailboxGroups[group].id, i + 1);
      }
    }
  }

  void WriteFolders() {
    run_.rows.Table("EXDB_FOLDER", {"FolderId", "MailboxId", "ExchangeId"});
    for (const auto& [folder, mailbox] : rankedFolders_) run_.rows.Add(folder, mailbox, Identifier('F', folder));
    if (!keepsAll_) return;
    for (std::int64_t mailbox = 1; mailbox <= static_cast<std::int64_t>(organization_.mailboxes.size()); ++mailbox) {
      for (std::size_t k = 0; k < kFoldersAMailbox; ++k) {
        run_.rows.Add(FolderId(mailbox, k), mailbox, Identifier('F', FolderId(mailbox, k)));
      }
    }
  }

  void WritePublicFolders() {
    run_.rows.Table("EXDB_PUBLICFOLDER",
                    {"PublicFolderId", "ServerId", "FolderPath", "ExchangeId", "MsgCount", "MsgSize", "LastModified"});
    for (std::size_t i = 0; i < organization_.publicFolders.size(); ++i) {
      const PublicFolder& folder = organization_.publicFolders[i];
      run_.rows.Add(i + 1, organization_.servers[folder.server].id, folder.path,
                    PublicFolderIdentifier(organization_, folder), folder.messages, folder.space,
                    DateOf(newestOfFolders_[i]));
    }
  }

  // One cell for the amount and one for the date: a kind has either.
  static std::pair<Cell, Cell> RankedValue(Ranks ranks, const Candidate& candidate) {
    if (RanksByDate(ranks)) return {nullptr, DateOf(candidate.modified)};
    return {candidate.amount, nullptr};
  }

  static std::int32_t OldDaysOf(Ranks ranks) { return RanksOldOnes(ranks) ? ranking::kOldDays : 0; }

  void WriteServerRanking(const Server& server, Ranks ranks, std::int16_t kind, Rankings& rankings) {
    std::int64_t place = 0;
    for (const Candidate& candidate : rankings.Places(ranks)) {
      const auto [amount, modified] = RankedValue(ranks, candidate);
      run_.rows.Add(server.id, kind, OldDaysOf(ranks), ++place, candidate.item, amount, modified);
    }
  }

  void WriteServerRankings() {
    run_.rows.Table("EXDB_TOPN", {"ServerId", "Kind", "OldDays", "Place", "ItemId", "Amount", "Modified"});
    for (std::size_t i = 0; i < organization_.servers.size(); ++i) {
      for (const KindRow& kind : kKinds) {
        WriteServerRanking(organization_.servers[i], kind.ranks, kind.ofMailboxes, ofMailboxes_[i]);
        WriteServerRanking(organization_.servers[i], kind.ranks, kind.ofPublicFolders, ofFolders_[i]);
      }
    }
  }

  void WriteGroupRankings() {
    run_.rows.Table("EXDB_TOPNGROUP",
                    {"RecipientGroupId", "Kind", "OldDays", "Place", "ServerId", "ItemId", "Amount", "Modified"});
    for (std::size_t i = 0; i < organization_.mailboxGroups.size(); ++i) {
      for (const KindRow& kind : kKinds) {
        std::int64_t place = 0;
        for (const Candidate& candidate : ofGroups_[i].Places(kind.ranks)) {
          const auto [amount, modified] = RankedValue(kind.ranks, candidate);
          run_.rows.Add(organization_.mailboxGroups[i].id, kind.ofMailboxes, OldDaysOf(kind.ranks), ++place,
                        candidate.server, candidate.item, amount, modified);
        }
      }
    }
  }

  SampleRun& run_;
  const Organization& organization_;
  const bool keepsAll_;
  std::int64_t lastMessage_ = 0;
  std::vector<Message> messages_;  // of the mailbox or folder that is being scanned
  std::vector<Rankings> ofMailboxes_, ofFolders_, ofGroups_;
  std::vector<std::optional<Moment>> newestOfMailboxes_, newestOfFolders_;
  std::map<std::int64_t, std::int32_t> rankedFolders_;  // FolderId, its MailboxId
};

}  // namespace

void WriteTopN(SampleRun& run) { TopNWriter(run).Write(); }

}  // namespace kalvo::sample
