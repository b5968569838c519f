#include "adapters/maildir/folder.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <ctime>
#include <iterator>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "adapters/mail/errors.h"
#include "adapters/mail/sizes.h"
#include "adapters/maildir/message_reader.h"
#include "base/fresh_file.h"

namespace kalvo::maildir {

namespace {

constexpr std::size_t kLongestIndex = std::size_t{1} << 30;
constexpr std::int64_t kSecond = 1'000'000'000;  // nanoseconds
constexpr std::int64_t kSettledAfter = 2 * kSecond;
constexpr std::int64_t kLargestMessage = std::int64_t{1} << 40;  // a name that tells a larger size is not believed

// The index is kept each time that so many messages were read, or such a part of all that are known, so that the next
// listing goes on where a process was stopped, and a large one is not written over and over.
constexpr std::size_t kKeptEvery = 500, kKeptPart = 16;

// Several processes may be at it at the same time; one is enough.
constexpr base::Writing kIndexWriting{.abandonedAfter = 60};

constexpr int kAttempts = 5;  // a file may be renamed while we look for it

std::int64_t Nanoseconds(const timespec& time) { return time.tv_sec * kSecond + time.tv_nsec; }

std::int64_t Now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return Nanoseconds(now);
}

std::int64_t SizeOf(std::string_view fileName, const struct stat& status) {
  return SizeFromName(fileName).value_or(status.st_size);
}

}  // namespace

std::string_view UniquePart(std::string_view fileName) { return fileName.substr(0, fileName.find(':')); }

std::optional<std::int64_t> SizeFromName(std::string_view fileName) {
  const std::string_view unique = UniquePart(fileName);
  const std::size_t at = unique.find(",S=");
  if (at == std::string::npos) return std::nullopt;
  std::int64_t size = -1;
  const auto end = std::from_chars(unique.data() + at + 3, unique.data() + unique.size(), size);
  const bool whole = end.ec == std::errc() && (end.ptr == unique.data() + unique.size() || *end.ptr == ',');
  return whole && size >= 0 && size <= kLargestMessage ? std::optional(size) : std::nullopt;
}

Snapshot::Snapshot(std::shared_ptr<const std::string> bytes, std::vector<Entry> entries, std::deque<std::string> texts)
    : bytes_(std::move(bytes)), texts_(std::move(texts)), entries_(std::move(entries)) {
  std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
    return a.received != b.received ? a.received > b.received : a.unique > b.unique;
  });
}

Folder::Folder(File folder, const File& indexes, std::string indexName, std::string identity, Work& work)
    : folder_(std::move(folder)),
      cur_(OpenFolder(folder_, "cur")),
      new_(OpenFolder(folder_, "new")),
      indexes_(indexes),
      indexName_(std::move(indexName)),
      identity_(std::move(identity)),
      work_(work) {}

Stamp Folder::StampNow() {
  const struct stat cur = base::StatusOf(cur_), fresh = base::StatusOf(new_);  // zeros for one that is not there
  return {static_cast<std::int64_t>(cur.st_ino), Nanoseconds(cur.st_mtim), static_cast<std::int64_t>(fresh.st_ino),
          Nanoseconds(fresh.st_mtim)};
}

// The files of "cur", then those of "new" that are not in "cur" as well: a reader that moves them may make the second
// name before it removes the first. "new" is read first, so that none that moves meanwhile is missed.
std::vector<Folder::FoundFile> Folder::Files() {
  std::vector<FoundFile> fresh, files;
  for (const bool isNew : {true, false}) {
    if (!ListOf(isNew)) continue;
    for (Name& name : NamesIn(ListOf(isNew))) {
      if (!name.isFolder && !name.text.starts_with('.'))
        (isNew ? fresh : files).push_back({std::move(name.text), isNew});
    }
  }
  std::move(fresh.begin(), fresh.end(), std::back_inserter(files));
  std::unordered_set<std::string_view> seen;
  seen.reserve(files.size());
  std::vector<std::size_t> doubled;
  for (std::size_t i = 0; i < files.size(); ++i) {
    if (!seen.insert(UniquePart(files[i].name)).second) doubled.push_back(i);
  }
  for (auto at = doubled.rbegin(); at != doubled.rend(); ++at)
    files.erase(files.begin() + static_cast<std::ptrdiff_t>(*at));
  return files;
}

std::shared_ptr<const std::string> Folder::IndexBytes() {
  if (!indexes_) return nullptr;
  const File file = OpenFile(indexes_, indexName_);
  if (!file) return nullptr;
  auto bytes = base::ReadAll(file, kLongestIndex);
  if (!bytes) return nullptr;
  work_.bytesRead += static_cast<std::int64_t>(bytes->size());
  return std::make_shared<const std::string>(std::move(*bytes));
}

std::shared_ptr<const Snapshot> Folder::Messages() {
  const std::int64_t started = Now();
  const Stamp stamp = StampNow();
  const auto bytes = IndexBytes();
  std::vector<Entry> known;
  if (bytes) {
    if (auto entries = ReadIndexEntries(*bytes, identity_)) known = std::move(*entries);
    const auto head = ReadIndexHead(*bytes, identity_);
    if (head && head->settled && head->stamp == stamp && known.size() == static_cast<std::size_t>(head->count)) {
      return std::make_shared<const Snapshot>(bytes, std::move(known), std::deque<std::string>());
    }
  }
  Gathered found;
  std::size_t keptAt = 0, read = 0;
  for (const FoundFile& file : TakeKnown(known, found)) {
    if (!ReadFile(file, found)) continue;
    if (++read < keptAt + std::max(kKeptEvery, found.entries.size() / kKeptPart)) continue;
    KeepIndex(stamp, false, found.entries);
    keptAt = read;
  }
  // What could not be read is tried again the next time.
  const bool settled = found.unreadable.empty() && started - std::max(stamp.curTime, stamp.newTime) >= kSettledAfter;
  KeepIndex(stamp, settled, found.entries);
  found.entries.insert(found.entries.end(), found.unreadable.begin(), found.unreadable.end());
  return std::make_shared<const Snapshot>(bytes, std::move(found.entries), std::move(found.texts));
}

// The entries of the files that the index knows; the others are answered.
std::vector<Folder::FoundFile> Folder::TakeKnown(const std::vector<Entry>& known, Gathered& found) {
  std::unordered_map<std::string_view, const Entry*> byUnique;
  byUnique.reserve(known.size());
  for (const Entry& entry : known) byUnique.emplace(entry.unique, &entry);
  std::vector<FoundFile> others;
  for (FoundFile& file : Files()) {
    const auto at = byUnique.find(UniquePart(file.name));
    if (at == byUnique.end()) {
      others.push_back(std::move(file));
      continue;
    }
    Entry entry = *at->second;
    entry.fileName = found.Keep(std::move(file.name));
    found.entries.push_back(entry);
  }
  return others;
}

// False where the file is gone again, or was renamed: the next listing has it.
bool Folder::ReadFile(const FoundFile& file, Gathered& found) {
  struct stat status {};
  const File open = OpenFile(ListOf(file.isNew), file.name);
  if (!open && errno == ENOENT) return false;
  if (fstatat(ListOf(file.isNew).Handle(), file.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) return false;
  MessageContent content = ReadMessage(open, Read::Listing);
  ++work_.messagesParsed;
  work_.bytesRead += status.st_size;
  Entry entry;
  entry.fileName = found.Keep(file.name);
  entry.unique = UniquePart(entry.fileName);
  entry.size = SizeOf(file.name, status);
  entry.sent = content.sent;
  entry.received = status.st_mtim.tv_sec;
  entry.hasAttachment = content.hasAttachment;
  entry.subject = found.Keep(std::move(content.subject));
  entry.sender = found.Keep(std::move(content.sender));
  (content.isReadable ? found.entries : found.unreadable).push_back(entry);
  return true;
}

void Folder::KeepIndex(const Stamp& stamp, bool settled, const std::vector<Entry>& entries) {
  if (!indexes_) return;
  IndexHead head{stamp, settled, static_cast<std::int32_t>(entries.size()), 0};
  for (const Entry& entry : entries) head.totalSize = mail::SizeSum(head.totalSize, entry.size);
  base::ReplaceFile(indexes_, indexName_, WriteIndex(identity_, head, entries), kIndexWriting);
}

FolderTotals Folder::Totals() {
  if (const File file = indexes_ ? OpenFile(indexes_, indexName_) : File()) {
    const std::string bytes = base::ReadPiece(file, IndexHeadLength(identity_)).value_or("");
    work_.bytesRead += static_cast<std::int64_t>(bytes.size());
    const auto head = ReadIndexHead(bytes, identity_);
    if (head && head->settled && head->stamp == StampNow()) return {head->count, head->totalSize};
  }
  FolderTotals totals;
  for (const FoundFile& file : Files()) {
    auto size = SizeFromName(file.name);
    struct stat status {};
    if (!size && fstatat(ListOf(file.isNew).Handle(), file.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
      size = status.st_size;
    }
    ++totals.count;
    totals.size = mail::SizeSum(totals.size, size.value_or(0));
  }
  return totals;
}

std::optional<Folder::FoundFile> Folder::Find(std::string_view unique) {
  for (FoundFile& file : Files()) {
    if (UniquePart(file.name) == unique) return std::move(file);
  }
  return std::nullopt;
}

File Folder::OpenMessage(std::string_view unique) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto found = Find(unique);
    if (!found) break;
    File file = OpenFile(ListOf(found->isNew), found->name);
    if (file || errno != ENOENT) return file;
  }
  errno = ENOENT;
  return File();
}

Moved Folder::MoveOut(std::string_view unique, const File& into, const std::string& as, const Announce& announce) {
  for (int attempt = 0; attempt < kAttempts; ++attempt) {
    const auto found = Find(unique);
    if (!found) return Moved::Gone;
    const File& list = ListOf(found->isNew);
    if (!OpenFile(list, found->name) && errno == ENOENT) continue;  // renamed meanwhile, or no message at all
    announce(found->name, found->isNew);
    const Moved moved = MoveFile(list, found->name, into, as);
    if (moved != Moved::Gone) return moved;
  }
  errno = EAGAIN;
  return Find(unique) ? Moved::No : Moved::Gone;
}

Moved Folder::MoveIn(const File& from, const std::string& name, const std::string& as, bool toNew) {
  errno = EEXIST;
  if (Find(UniquePart(as))) return Moved::No;
  errno = ENOTDIR;
  const File& list = ListOf(toNew && new_);
  return list ? MoveFile(from, name, list, as) : Moved::No;
}

std::optional<std::int64_t> Folder::Created() {
  const File marker = OpenFile(folder_, "maildirfolder");
  if (!marker) return std::nullopt;
  return base::StatusOf(marker).st_mtim.tv_sec;
}

std::optional<std::int64_t> Folder::Modified() {
  const Stamp stamp = StampNow();
  if (!cur_ && !new_) return std::nullopt;
  return std::max(stamp.curTime, stamp.newTime) / kSecond;
}

}  // namespace kalvo::maildir
