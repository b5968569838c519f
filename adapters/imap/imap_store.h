#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "adapters/imap/connection_pool.h"
#include "adapters/imap/folder_cache.h"
#include "adapters/imap/imap_holding.h"
#include "adapters/imap/message_source.h"
#include "adapters/mail/directory.h"
#include "adapters/mail/mail_store.h"

namespace kalvo::imap {

// Mailboxes on IMAP servers, reached with delegated access; who has which mailbox stands in the directory's file.
// Made once for a process: it keeps connections and what it knows of folders. Folder keys are the server's names,
// message keys the folder's validity and the message's UID.
class ImapStore : public mail::MailStore {
 public:
  explicit ImapStore(Settings settings);

  std::shared_ptr<const mail::Directory> Mailboxes() override;
  const mail::IdentifierKey& Key() override { return key_; }
  std::string FindFolder(const mail::Tree& tree, const mail::FolderPath& path) override;
  mail::FolderPath PathOf(const mail::Tree& tree, std::string_view folder) override;
  std::vector<mail::FolderInfo> Folders(const mail::Tree& tree, std::string_view folder) override;
  mail::FolderDates DatesOf(const mail::Tree& tree, std::string_view folder) override;
  std::unique_ptr<mail::MessageSource> Messages(const mail::Tree& tree, std::string_view folder) override;
  mail::MessageDetails Message(const mail::Tree& tree, std::string_view folder, std::string_view message) override;
  std::string Remove(const mail::Tree& tree, std::string_view folder, std::string_view message,
                     const mail::Deletion& deletion) override;
  std::vector<mail::HeldMessage> Held(const mail::Tree* tree) override;
  mail::FolderPath Restore(const mail::Tree& tree, std::string_view id,
                           const std::optional<mail::FolderPath>& into) override;
  std::int32_t Sweep(std::int64_t before) override;

  // What has been read from servers since the store was made.
  const Traffic& Cost() const { return pool_->Cost(); }

 private:
  // The folders of a tree below one of its folders, as the server has them.
  struct Root {
    std::string prefix;                 // of every name in the tree
    std::vector<std::string> excluded;  // prefixes that belong to other trees
  };

  std::string UserOf(const mail::Tree& tree) const;
  std::vector<std::string> Servers();
  mail::MessageDetails Details(const mail::Tree& tree, std::string_view folder, const MessageNumber& number,
                               Connection::Parts parts);
  Root RootOf(const mail::Tree& tree, Connection& connection);
  enum class States : bool { No, Yes };
  std::vector<Folder> Below(const mail::Tree& tree, Connection& connection, std::string_view folder, States states);
  mail::FolderInfo InfoOf(const Place& place, const Folder& folder, const Deadline& deadline);
  static mail::FolderInfo InfoOf(const KnownFolder& known);
  mail::FolderInfo Describe(const Place& place, const Deadline& deadline);
  template <typename Step>
  auto Learn(const Place& place, const Deadline& deadline, Step&& step);

  std::shared_ptr<ConnectionPool> pool_;
  FolderCache cache_;
  mail::IdentifierKey key_;
  Holding holding_{*pool_, key_};
  std::shared_ptr<const mail::Directory> directory_;
  std::filesystem::file_time_type directoryWritten_;
};

}  // namespace kalvo::imap
