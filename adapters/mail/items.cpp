#include "adapters/mail/items.h"

#include <utility>

#include "adapters/mail/shown_text.h"

namespace kalvo::mail {

namespace {

// clang-format off
enum FolderField : std::size_t { kFolderName, kFolderId, kFolderSize, kFolderMessages, kFolderCreated, kFolderModified };
constexpr ListingField kFolderFields[] = {
// name            totals       sorts
  {"Name",         Totals::No,  Sorts::Yes},
  {"ExchangeId",   Totals::No,  Sorts::No},
  {"FolderSize",   Totals::Yes, Sorts::Yes},
  {"MessageCount", Totals::Yes, Sorts::Yes},
  {"CreateDate",   Totals::No,  Sorts::Yes},
  {"ModifiedDate", Totals::No,  Sorts::Yes},
};

enum MessageListField : std::size_t { kSubject, kMessageId, kSender, kSize, kSent, kReceived, kHasAttachment };
constexpr ListingField kMessageFields[] = {
  {"Name",          Totals::No,  Sorts::Yes},
  {"ExchangeId",    Totals::No,  Sorts::No},
  {"Sender",        Totals::No,  Sorts::Yes},
  {"Size",          Totals::Yes, Sorts::Yes},
  {"CreateDate",    Totals::No,  Sorts::Yes},
  {"ModifiedDate",  Totals::No,  Sorts::Yes},
  {"HasAttachment", Totals::No,  Sorts::No},
};

enum AttachmentField : std::size_t { kFileName, kFileSize };
constexpr ListingField kAttachmentFields[] = {
  {"LongFileName", Totals::No,  Sorts::Yes},
  {"Size",         Totals::Yes, Sorts::Yes},
};

constexpr ListingField kAddressFields[] = {
  {"Address", Totals::No, Sorts::Yes},
};
// clang-format on

Value NumberValue(std::optional<std::int64_t> number) {
  if (!number) return Empty();
  return *number;
}

// Items that are all at hand.
template <typename Item>
class HeldItems : public ListingItems {
 public:
  HeldItems(std::span<const ListingField> fields, std::vector<Item> items)
      : fields_(fields), items_(std::move(items)) {}

  std::span<const ListingField> Fields() const override { return fields_; }
  std::int32_t Count() override { return static_cast<std::int32_t>(items_.size()); }
  Value Field(std::span<const std::int32_t> upcoming, std::size_t field) override {
    return FieldOf(items_[static_cast<std::size_t>(upcoming.front())], field);
  }

 protected:
  virtual Value FieldOf(Item& item, std::size_t field) = 0;

 private:
  std::span<const ListingField> fields_;
  std::vector<Item> items_;
};

class FolderItems : public HeldItems<FolderInfo> {
 public:
  FolderItems(KeptBinding binding, std::vector<FolderInfo> folders, AskDates datesOf)
      : HeldItems(kFolderFields, std::move(folders)), binding_(std::move(binding)), datesOf_(std::move(datesOf)) {}

 protected:
  Value FieldOf(FolderInfo& folder, std::size_t field) override {
    switch (field) {
      case kFolderName: return folder.name;
      case kFolderId: return FolderIdentifier(binding_.Bound(), folder.key);
      case kFolderSize: return NumberValue(folder.size);
      case kFolderMessages: return NumberValue(folder.messageCount);
      case kFolderCreated: return DateValue(DatesOf(folder).created);
      default: return DateValue(DatesOf(folder).modified);
    }
  }

 private:
  const FolderDates& DatesOf(FolderInfo& folder) const {
    if (!folder.knowsDates) folder.dates = datesOf_(folder.key);
    folder.knowsDates = true;
    return folder.dates;
  }

  KeptBinding binding_;
  AskDates datesOf_;
};

class AttachmentItems : public HeldItems<Attachment> {
 public:
  explicit AttachmentItems(std::vector<Attachment> attachments)
      : HeldItems(kAttachmentFields, std::move(attachments)) {}

 protected:
  Value FieldOf(Attachment& attachment, std::size_t field) override {
    if (field == kFileName) return attachment.name;
    return attachment.size;
  }
};

class AddressItems : public HeldItems<std::string> {
 public:
  explicit AddressItems(std::vector<std::string> addresses) : HeldItems(kAddressFields, std::move(addresses)) {}

 protected:
  Value FieldOf(std::string& address, std::size_t) override { return address; }
};

MessageField SortField(std::size_t field) {
  switch (field) {
    case kSubject: return MessageField::Subject;
    case kSender: return MessageField::Sender;
    case kSize: return MessageField::Size;
    case kSent: return MessageField::Sent;
    default: return MessageField::Received;
  }
}

// Messages are read row by row as they are shown; the current row serves all its fields.
class MessageItems : public ListingItems {
 public:
  MessageItems(KeptBinding binding, std::unique_ptr<MessageSource> source)
      : binding_(std::move(binding)), source_(std::move(source)) {}

  std::span<const ListingField> Fields() const override { return kMessageFields; }
  std::int32_t Count() override { return source_->Count(); }
  std::int64_t Total(std::size_t) override { return source_->TotalSize(); }

  Value Field(std::span<const std::int32_t> upcoming, std::size_t field) override {
    if (current_ != upcoming.front()) {
      current_ = -1;
      row_ = source_->Row(upcoming);
      current_ = upcoming.front();
    }
    switch (field) {
      case kSubject: return std::string(row_.subject);
      case kMessageId: return MessageIdentifier(binding_.Bound(), binding_.folder, row_.key);
      case kSender: return std::string(row_.sender);
      case kSize: return row_.size;
      case kSent: return DateValue(row_.sent);
      case kReceived: return DateValue(row_.received);
      default: return std::int32_t{row_.hasAttachment ? 1 : 0};
    }
  }

  std::optional<std::vector<std::int32_t>> Order(std::span<const SortKey> keys) override {
    std::vector<MessageSort> sorts;
    for (const SortKey& key : keys) sorts.push_back({SortField(key.field), key.descending});
    current_ = -1;  // the source may have read other rows for it
    return source_->Order(sorts);
  }

 private:
  KeptBinding binding_;
  std::unique_ptr<MessageSource> source_;
  MessageRow row_;
  std::int32_t current_ = -1;
};

}  // namespace

std::shared_ptr<ListingItems> MakeFolderItems(KeptBinding binding, std::vector<FolderInfo> folders, AskDates datesOf) {
  return std::make_shared<FolderItems>(std::move(binding), std::move(folders), std::move(datesOf));
}

std::shared_ptr<ListingItems> MakeMessageItems(KeptBinding binding, std::unique_ptr<MessageSource> source) {
  return std::make_shared<MessageItems>(std::move(binding), std::move(source));
}

std::shared_ptr<ListingItems> MakeAttachmentItems(std::vector<Attachment> attachments) {
  return std::make_shared<AttachmentItems>(std::move(attachments));
}

std::shared_ptr<ListingItems> MakeAddressItems(std::vector<std::string> addresses) {
  return std::make_shared<AddressItems>(std::move(addresses));
}

}  // namespace kalvo::mail
