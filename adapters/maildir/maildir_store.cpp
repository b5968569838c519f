#include "adapters/maildir/maildir_store.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <set>

#include "adapters/mail/browser.h"
#include "adapters/mail/directory_file.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/named_folder.h"
#include "adapters/mail/shown_text.h"
#include "adapters/mail/sizes.h"
#include "adapters/maildir/folder.h"
#include "adapters/maildir/maildir_holding.h"
#include "adapters/maildir/message_reader.h"
#include "adapters/maildir/quota.h"
#include "base/fresh_file.h"
#include "base/random_bytes.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::maildir {

namespace {

constexpr std::string_view kInbox = "INBOX";  // its key; its files lie at the top of the tree
constexpr const char* kMailboxes = "mailboxes.txt";
constexpr const char* kOwnFolder = ".kalvo";
constexpr const char* kKeyFile = "key";

std::string ShownName(std::string_view raw, bool isInbox) {
  return isInbox ? "Inbox" : mail::FolderName(mail::FromModifiedUtf7(raw));
}

// The name of a folder's index: any bytes of location and key, made short.
std::string IndexName(const mail::IdentifierKey& key, std::string_view identity) {
  return Hexadecimal(mail::KeyedHash(key, identity));
}

// Notes what comes or goes before it does, so that nothing is moved that cannot be noted; taken back unless it is kept.
class QuotaNote {
 public:
  QuotaNote(const File& tree, std::int64_t bytes, int messages, std::string_view done)
      : quota_(tree), bytes_(bytes), messages_(messages) {
    if (quota_.Note(bytes, messages)) return;
    const char* why = std::strerror(errno);
    throw mail::StoreFailed(Built([&](std::string& out) {
      Append(out, "The message was not ", done,
             ": the mailbox is limited, and its count \"maildirsize\" cannot be written (", why, ").");
    }));
  }
  ~QuotaNote() {
    if (!kept_) quota_.Note(-bytes_, -messages_);
  }
  QuotaNote(const QuotaNote&) = delete;
  QuotaNote& operator=(const QuotaNote&) = delete;

  void Keep() { kept_ = true; }

 private:
  Quota quota_;
  std::int64_t bytes_;
  int messages_;
  bool kept_ = false;
};

// The messages of a snapshot.
class SnapshotSource : public mail::MessageSource {
 public:
  SnapshotSource(std::shared_ptr<const Snapshot> snapshot) : snapshot_(std::move(snapshot)) {}

  std::int32_t Count() override { return static_cast<std::int32_t>(snapshot_->Entries().size()); }

  mail::MessageRow Row(std::span<const std::int32_t> upcoming) override {
    const Entry& entry = snapshot_->Entries()[static_cast<std::size_t>(upcoming.front())];
    return {entry.unique, entry.subject, entry.sender, entry.size, entry.sent, entry.received, entry.hasAttachment};
  }

  std::int64_t TotalSize() override {
    std::int64_t total = 0;
    for (const Entry& entry : snapshot_->Entries()) total = mail::SizeSum(total, entry.size);
    return total;
  }

 private:
  std::shared_ptr<const Snapshot> snapshot_;
};

}  // namespace

// The trees of folders. A folder's key is its name as Maildir++ has it, without the leading point: "Sub.Folder".
class MaildirStore::Trees : public mail::MailStore {
 public:
  explicit Trees(const std::string& folder) : path_(folder) {
    top_ = base::Open(folder, O_RDONLY | O_DIRECTORY);
    if (!top_) throw mail::StoreFailed("There is no mail store in \"" + folder + "\".");
    mailboxes_ = std::make_shared<const mail::Directory>(mail::ReadDirectoryFile(DirectoryPath()));
    directoryTime_ = DirectoryTime();
    own_ = OwnFolder(top_, kOwnFolder);
    if (own_) indexes_ = OwnFolder(own_, "index");
    ReadKey();
  }

  std::shared_ptr<const mail::Directory> Mailboxes() override {
    const auto time = DirectoryTime();
    if (time != directoryTime_) {
      mailboxes_ = std::make_shared<const mail::Directory>(mail::ReadDirectoryFile(DirectoryPath()));
      directoryTime_ = time;
    }
    return mailboxes_;
  }

  const mail::IdentifierKey& Key() override { return key_; }

  std::string FindFolder(const mail::Tree& tree, const mail::FolderPath& path) override {
    const std::set<std::string> keys = KeysOf(tree);
    const auto found = mail::FolderAt(path, [&](const std::string& folder) {
      std::vector<mail::NamedFolder> named;
      for (const std::string& key : Below(keys, folder)) named.push_back({key, NameOf(key)});
      return named;
    });
    if (!found) throw mail::NoSuchFolder("There is no such folder in the mailbox.");
    return *found;
  }

  mail::FolderPath PathOf(const mail::Tree& tree, std::string_view folder) override {
    mail::FolderPath path;
    if (folder.empty()) return path;
    if (!KeysOf(tree).contains(std::string(folder))) throw mail::NoSuchFolder("The folder does not exist any more.");
    for (std::size_t end = 0; end != std::string::npos;) {
      end = folder.find('.', end == 0 ? 0 : end + 1);
      path.push_back(NameOf(folder.substr(0, end)));
    }
    return path;
  }

  std::vector<mail::FolderInfo> Folders(const mail::Tree& tree, std::string_view folder) override {
    std::vector<mail::FolderInfo> folders;
    for (const std::string& key : Below(KeysOf(tree), folder)) {
      Folder at = OpenKey(tree, key);
      const FolderTotals totals = at.Totals();
      folders.push_back({key, NameOf(key), totals.size, totals.count, {at.Created(), at.Modified()}});
    }
    std::stable_sort(folders.begin(), folders.end(), [](const mail::FolderInfo& a, const mail::FolderInfo& b) {
      return ToLower(a.name) < ToLower(b.name);
    });
    return folders;
  }

  std::unique_ptr<mail::MessageSource> Messages(const mail::Tree& tree, std::string_view folder) override {
    static const auto none = std::make_shared<const Snapshot>(nullptr, std::vector<Entry>(), std::deque<std::string>());
    return std::make_unique<SnapshotSource>(folder.empty() ? none : OpenKey(tree, folder).Messages());
  }

  mail::MessageDetails Message(const mail::Tree& tree, std::string_view folder, std::string_view message) override {
    return Details(tree, folder, message, Read::Attachments);
  }

  std::string Remove(const mail::Tree& tree, std::string_view folder, std::string_view message,
                     const mail::Deletion& deletion) override {
    mail::MessageDetails details = Details(tree, folder, message, Read::Listing);
    const mail::HeldMessage held =
        mail::ToHold(tree, {PathOf(tree, folder), std::string(folder)}, std::move(details), deletion);
    Folder from = OpenKey(tree, folder);
    const File top = OpenTree(tree);
    QuotaNote note(top, -held.size, -1, "deleted");
    if (!holding_.Take(HoldingName(tree), from, message, held)) throw mail::NoSuchMessage();
    note.Keep();
    return held.id;
  }

  std::vector<mail::HeldMessage> Held(const mail::Tree* tree) override {
    auto held = tree ? holding_.Held(HoldingName(*tree)) : holding_.All();
    std::erase_if(held, [&](const mail::HeldMessage& message) { return tree && !mail::CameFrom(message, *tree); });
    mail::LastDeletedFirst(held);
    return held;
  }

  mail::FolderPath Restore(const mail::Tree& tree, std::string_view id,
                           const std::optional<mail::FolderPath>& into) override {
    const auto held = holding_.Find(HoldingName(tree), id);
    if (!held || !mail::CameFrom(*held, tree)) throw mail::NotHeld();
    const std::string key = into ? FindFolder(tree, *into) : held->folderKey;
    if (!into && !KeysOf(tree).contains(key)) throw mail::FolderOfHeldIsGone(held->folder);
    if (key.empty()) throw mail::NoSuchFolder("A mailbox's top has no messages; name a folder.");
    Folder folder = OpenKey(tree, key);
    const File top = OpenTree(tree);
    QuotaNote note(top, held->size, 1, "restored");
    if (!holding_.Give(HoldingName(tree), *held, folder)) throw mail::NotHeld();
    note.Keep();
    return PathOf(tree, key);
  }

  std::int32_t Sweep(std::int64_t before) override { return holding_.Sweep(before); }

  const Work& Done() const { return work_; }

 private:
  mail::MessageDetails Details(const mail::Tree& tree, std::string_view folder, std::string_view message, Read what) {
    const File file = OpenKey(tree, folder).OpenMessage(message);
    if (!file && errno == ENOENT) throw mail::NoSuchMessage();
    const struct stat status = base::StatusOf(file);  // zeros where it cannot be read
    MessageContent content = ReadMessage(file, what);
    ++work_.messagesParsed;
    work_.bytesRead += status.st_size;
    return {std::move(content.subject),
            std::move(content.sender),
            SizeFromName(message).value_or(status.st_size),
            content.sent,
            file ? std::optional<std::int64_t>(status.st_mtim.tv_sec) : std::nullopt,
            std::move(content.attachments)};
  }

  // The folder of a tree's held messages: its location, made short.
  std::string HoldingName(const mail::Tree& tree) const { return IndexName(key_, Location(tree)); }

  std::string DirectoryPath() const { return path_ + "/" + kMailboxes; }

  std::pair<std::int64_t, std::int64_t> DirectoryTime() const {
    struct stat status {};
    if (fstatat(top_.Handle(), kMailboxes, &status, 0) != 0) return {0, 0};
    return {status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
  }

  // The key is written once, by whoever comes first, and read back by all.
  void ReadKey() {
    const auto read = [&] {
      const File file = own_ ? OpenFile(own_, kKeyFile) : File();
      const auto bytes = file ? base::ReadAll(file, key_.size()) : std::nullopt;
      if (!bytes || bytes->size() != key_.size()) return false;
      std::copy(bytes->begin(), bytes->end(), key_.begin());
      return true;
    };
    if (read()) return;
    if (own_) {
      mail::IdentifierKey fresh{};
      base::FillRandom(fresh);
      base::MakeOnce(own_, kKeyFile, {reinterpret_cast<const char*>(fresh.data()), fresh.size()});
    }
    if (!read()) throw mail::StoreFailed("The mail store's key \"" + path_ + "/.kalvo/key\" cannot be read or made.");
  }

  std::string Location(const mail::Tree& tree) const {
    if (tree.mailbox) return tree.mailbox->location;
    return mailboxes_->Server(tree.server).publicFolders;
  }

  File OpenTree(const mail::Tree& tree) const {
    const std::string location = Location(tree);
    File folder = location.empty() ? File() : OpenFolder(top_, location);
    if (!folder) {
      throw mail::NoSuchFolder(tree.IsPublic() ? "The server has no public folders." : "The mailbox has no folders.");
    }
    return folder;
  }

  // Every folder of a tree, and the folders above them even where they have no files of their own.
  std::set<std::string> KeysOf(const mail::Tree& tree) const {
    std::set<std::string> keys;
    if (!tree.IsPublic()) keys.emplace(kInbox);
    for (const Name& name : NamesIn(OpenTree(tree))) {
      const std::string_view key = std::string_view(name.text).substr(1);
      if (!name.isFolder || name.text[0] != '.' || key.empty() || key.front() == '.' || key.back() == '.' ||
          key.find("..") != std::string::npos || name.text == kOwnFolder) {
        continue;
      }
      for (std::size_t end = key.find('.'); end != std::string::npos; end = key.find('.', end + 1)) {
        keys.emplace(key.substr(0, end));
      }
      keys.emplace(key);
    }
    return keys;
  }

  static std::vector<std::string> Below(const std::set<std::string>& keys, std::string_view folder) {
    const std::string before = folder.empty() ? "" : std::string(folder) + ".";
    std::vector<std::string> below;
    for (const std::string& key : keys) {
      if (key.starts_with(before) && key.find('.', before.size()) == std::string::npos) below.push_back(key);
    }
    return below;
  }

  static std::string NameOf(std::string_view key) { return ShownName(key.substr(key.rfind('.') + 1), key == kInbox); }

  // Keys come from identifiers that we issued; a folder that is gone is an empty one here.
  Folder OpenKey(const mail::Tree& tree, std::string_view key) {
    const File top = OpenTree(tree);
    File folder = OpenFolder(top, key == kInbox && !tree.IsPublic() ? "" : "." + std::string(key));
    std::string identity = Location(tree);
    identity += '\0';
    identity += key;
    return Folder(std::move(folder), indexes_, IndexName(key_, identity), identity, work_);
  }

  std::string path_;
  File top_, own_, indexes_;
  Holding holding_{own_};
  mail::IdentifierKey key_{};
  std::shared_ptr<const mail::Directory> mailboxes_;
  std::pair<std::int64_t, std::int64_t> directoryTime_;
  Work work_;
};

MaildirStore::MaildirStore(const std::string& folder) : trees_(std::make_shared<Trees>(folder)) {}
MaildirStore::~MaildirStore() = default;

std::shared_ptr<LiveContainer> MaildirStore::Open() { return std::make_shared<mail::Browser>(trees_); }

std::shared_ptr<mail::MailStore> MaildirStore::Store() { return trees_; }

const Work& MaildirStore::Done() const { return trees_->Done(); }

}  // namespace kalvo::maildir
