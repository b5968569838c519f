#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adapters/mail/identifiers.h"
#include "adapters/mail/item_listing.h"
#include "adapters/mail/mail_store.h"

namespace kalvo::mail {

// The part of a binding that items keep for as long as they live.
struct KeptBinding {
  IdentifierKey key{};
  std::string server, mailbox;
  std::string folder;  // of messages

  Binding Bound() const { return {key, server, mailbox}; }
};

// `datesOf` is asked for the dates of a folder that does not know them, once.
using AskDates = std::function<FolderDates(const std::string& folder)>;
std::shared_ptr<ListingItems> MakeFolderItems(KeptBinding binding, std::vector<FolderInfo> folders, AskDates datesOf);
std::shared_ptr<ListingItems> MakeMessageItems(KeptBinding binding, std::unique_ptr<MessageSource> source);
std::shared_ptr<ListingItems> MakeAttachmentItems(std::vector<Attachment> attachments);
std::shared_ptr<ListingItems> MakeAddressItems(std::vector<std::string> addresses);

}  // namespace kalvo::mail
