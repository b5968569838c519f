#include "adapters/ranking/kinds.h"

#include "kalvo/codes.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"

namespace kalvo::ranking {
namespace {

// clang-format off
constexpr Kind kKinds[] = {
// kind                               of                             ranked by         age       amount
  {kinds::kMailboxMessages,            Subject::Mailboxes,            RankedBy::Amount},
  {kinds::kMailboxSpace,               Subject::Mailboxes,            RankedBy::Amount},
  {kinds::kFolderMessages,             Subject::PublicFolders,        RankedBy::Amount},
  {kinds::kFolderSpace,                Subject::PublicFolders,        RankedBy::Amount},
  {kinds::kOldestMailboxMessages,      Subject::MailboxMessages,      RankedBy::Date},
  {kinds::kOldestFolderMessages,       Subject::PublicFolderMessages, RankedBy::Date},
  {kinds::kMailboxOldMessages,         Subject::Mailboxes,            RankedBy::Amount, Age::Old, Amount::OldMessages},
  {kinds::kMailboxOldSpace,            Subject::Mailboxes,            RankedBy::Amount, Age::Old, Amount::OldSpace},
  {kinds::kFolderOldMessages,          Subject::PublicFolders,        RankedBy::Amount, Age::Old, Amount::OldMessages},
  {kinds::kFolderOldSpace,             Subject::PublicFolders,        RankedBy::Amount, Age::Old, Amount::OldSpace},
  {kinds::kStaleMailboxes,             Subject::Mailboxes,            RankedBy::Date},
  {kinds::kStaleFolders,               Subject::PublicFolders,        RankedBy::Date},
  {kinds::kLargestMailboxMessages,     Subject::MailboxMessages,      RankedBy::Amount},
  {kinds::kLargestOldMailboxMessages,  Subject::MailboxMessages,      RankedBy::Amount, Age::Old},
  {kinds::kLargestFolderMessages,      Subject::PublicFolderMessages, RankedBy::Amount},
  {kinds::kLargestOldFolderMessages,   Subject::PublicFolderMessages, RankedBy::Amount, Age::Old},
  {kinds::kMailboxAverageSize,         Subject::Mailboxes,            RankedBy::Amount},
  {kinds::kFolderAverageSize,          Subject::PublicFolders,        RankedBy::Amount},
};

constexpr FieldSource kMailboxFields[] = {
  {kMailboxId,       FieldType::Text,       "d.ExchangeId"},
  {kMailboxName,     FieldType::Text,       "m.MbName"},
  {kMessages,        FieldType::Integer,    "m.MsgCount"},
  {kSpace,           FieldType::Integer,    "m.MsgSize"},
  {kModified,        FieldType::DateSerial, "d.LastModified"},
  {kServer,          FieldType::Text,       "r.ComputerName"},
  {kMailbox,         FieldType::Text,       "m.MbDistName"},
};

constexpr FieldSource kPublicFolderFields[] = {
  {kPublicFolderId,   FieldType::Text,       "f.ExchangeId"},
  {kPublicFolderName, FieldType::Text,       "f.FolderPath"},
  {kMessages,         FieldType::Integer,    "f.MsgCount"},
  {kSpace,            FieldType::Integer,    "f.MsgSize"},
  {kModified,         FieldType::DateSerial, "f.LastModified"},
  {kServer,           FieldType::Text,       "r.ComputerName"},
  {kMailbox,          FieldType::Text,       "f.FolderPath"},
};

constexpr FieldSource kMailboxMessageFields[] = {
  {kMailboxName,     FieldType::Text,       "m.MbName"},
  {kMessageId,       FieldType::Text,       "e.ExchangeId"},
  {kFolderId,        FieldType::Text,       "f.ExchangeId"},
  {kMessageModified, FieldType::DateSerial, "e.ModifiedDate"},
  {kMessageSize,     FieldType::Integer,    "e.MsgSize"},
  {kServer,          FieldType::Text,       "r.ComputerName"},
  {kMailbox,         FieldType::Text,       "m.MbDistName"},
  {kHasAttachment,   FieldType::Integer,    "e.HasAttachment"},
};

constexpr FieldSource kPublicFolderMessageFields[] = {
  {kPublicFolderId,   FieldType::Text,       "f.ExchangeId"},
  {kPublicFolderName, FieldType::Text,       "f.FolderPath"},
  {kMessageId,        FieldType::Text,       "e.ExchangeId"},
  {kFolderId,         FieldType::Text,       "f.ExchangeId"},
  {kMessageModified,  FieldType::DateSerial, "e.ModifiedDate"},
  {kMessageSize,      FieldType::Integer,    "e.MsgSize"},
  {kServer,           FieldType::Text,       "r.ComputerName"},
  {kMailbox,          FieldType::Text,       "f.FolderPath"},
  {kHasAttachment,    FieldType::Integer,    "e.HasAttachment"},
};
// clang-format on

struct SubjectRow {
  std::span<const FieldSource> fields;
  std::string_view tables;
};

// In the order of `Subject`.
constexpr SubjectRow kSubjects[] = {
    {kMailboxFields,
     "inner join EXDB_MAILBOX m on m.MailboxId = r.ItemId "
     "left join EXDB_MAILBOXDETAIL d on d.MailboxId = m.MailboxId"},
    {kPublicFolderFields, "inner join EXDB_PUBLICFOLDER f on f.PublicFolderId = r.ItemId"},
    {kMailboxMessageFields,
     "inner join EXDB_MESSAGE e on e.MessageId = r.ItemId "
     "inner join EXDB_MAILBOX m on m.MailboxId = e.MailboxId "
     "left join EXDB_FOLDER f on f.FolderId = e.FolderId"},
    {kPublicFolderMessageFields,
     "inner join EXDB_MESSAGE e on e.MessageId = r.ItemId "
     "inner join EXDB_PUBLICFOLDER f on f.PublicFolderId = e.PublicFolderId"},
};

const SubjectRow& RowOf(Subject subject) { return kSubjects[static_cast<std::size_t>(subject)]; }

}  // namespace

const Kind& FindKind(std::int16_t number) {
  for (const Kind& kind : kKinds) {
    if (kind.number == number) return kind;
  }
  throw Error(codes::kFailed,
              Built([&](std::string& out) { Append(out, "The Top-N loader has no kind ", number, "."); }));
}

std::span<const Kind> AllKinds() { return kKinds; }

std::span<const FieldSource> FieldsOf(Subject subject) { return RowOf(subject).fields; }

std::string_view TablesOf(Subject subject) { return RowOf(subject).tables; }

}  // namespace kalvo::ranking
