#include "adapters/imap/folder_cache.h"

#include <algorithm>
#include <numeric>

namespace kalvo::imap {

namespace {

constexpr std::size_t kKeptFolders = 200;
constexpr int kDamagedAtMost = 100;  // if there are more, it is the server
constexpr std::size_t kKeptMessages = 1'000'000;

// So many messages' sizes are asked for at once: their answer stays far below what one answer may have.
constexpr std::size_t kSummariesAtOnce = 50'000;

using Summaries = std::vector<Summary>;

// The messages that are left of the known ones, by UID.
Summaries Remaining(const Summaries& known, const std::vector<std::uint32_t>& uids) {
  Summaries left;
  left.reserve(uids.size());
  for (const auto& summary : known) {
    if (std::binary_search(uids.begin(), uids.end(), summary.uid)) left.push_back(summary);
  }
  return left;
}

}  // namespace

FolderCache::Learning::Learning() : atOnce(kSummariesAtOnce) {}

// Asks for all that is new among the folder's messages. What was told stays learned when the server breaks off.
void FolderCache::Learning::Ask(Connection& connection, const std::vector<std::uint32_t>& uids) {
  summaries = Remaining(summaries, uids);
  std::uint32_t known = 0;
  for (const auto& summary : summaries) known = std::max(known, summary.uid);
  auto first = std::upper_bound(uids.begin(), uids.end(), known);
  while (first != uids.end()) {
    const auto count = std::min<std::ptrdiff_t>(uids.end() - first, static_cast<std::ptrdiff_t>(atOnce));
    asked.assign(first, first + count);
    connection.FetchSummaries(asked.front(), asked.back(), sizes, summaries);
    first += count;
    asked.clear();
    sizes = Connection::Sizes::Yes;
    atOnce = std::min(atOnce * 2, kSummariesAtOnce);
  }
}

std::int64_t KnownFolder::TotalSize() const {
  return std::accumulate(messages->begin(), messages->end(), std::int64_t{0},
                         [](std::int64_t sum, const Summary& summary) { return sum + summary.size; });
}

std::shared_ptr<KnownFolder> FolderCache::Use(const std::string& place) {
  const auto found =
      std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.place == place; });
  if (found == entries_.end()) return nullptr;
  entries_.splice(entries_.begin(), entries_, found);
  return entries_.front().folder;
}

std::shared_ptr<KnownFolder> FolderCache::Find(const std::string& place, const FolderState& state) {
  auto known = Use(place);
  return known && known->state == state && state.uidNext != 0 ? known : nullptr;
}

std::shared_ptr<KnownFolder> FolderCache::Update(const std::string& place, const FolderState& state,
                                                 Connection& connection) {
  if (auto current = Find(place, state)) return current;
  auto known = Use(place);
  if (known && known->state.uidValidity != state.uidValidity) known.reset();
  Learning& learning = learning_[place];
  if (learning.uidValidity != state.uidValidity) {
    learning = Learning();
    learning.uidValidity = state.uidValidity;
    if (known) learning.summaries = *known->messages;
  }
  std::vector<std::uint32_t> uids;
  if (state.messages > 0) uids = connection.AllUids();
  std::sort(uids.begin(), uids.end());
  learning.Ask(connection, uids);
  Summaries summaries = std::move(learning.summaries);
  learning_.erase(place);
  std::sort(summaries.begin(), summaries.end(), [](const Summary& a, const Summary& b) {
    return a.received != b.received ? a.received > b.received : a.uid > b.uid;
  });
  auto fresh = std::make_shared<KnownFolder>();
  fresh->state = state;
  fresh->messages = std::make_shared<const Summaries>(std::move(summaries));
  if (known) fresh->rows = std::move(known->rows), fresh->texts = std::move(known->texts);
  entries_.remove_if([&](const Entry& entry) { return entry.place == place; });
  entries_.push_front({place, fresh});
  Trim();
  return fresh;
}

bool FolderCache::Narrow(const std::string& place) {
  const auto found = learning_.find(place);
  if (found == learning_.end() || found->second.asked.empty()) return false;
  Learning& learning = found->second;
  const std::vector<std::uint32_t> asked = std::move(learning.asked);
  learning.asked.clear();
  learning.atOnce = std::max<std::size_t>(1, asked.size() / 2);
  if (asked.size() > 1) return true;
  // Where it does not even tell when a message came, it is the server.
  const bool isTheServer = learning.sizes == Connection::Sizes::No || ++learning.damaged > kDamagedAtMost;
  learning.sizes = Connection::Sizes::No;
  if (isTheServer) learning_.erase(found);
  return !isTheServer;
}

void FolderCache::Trim() {
  if (learning_.size() > kKeptFolders) learning_.clear();
  std::size_t messages = 0, folders = 0;
  auto entry = entries_.begin();
  for (; entry != entries_.end() && folders < kKeptFolders; ++entry, ++folders) {
    messages += entry->folder->messages->size();
    if (folders > 0 && messages > kKeptMessages) break;
  }
  entries_.erase(entry, entries_.end());
}

}  // namespace kalvo::imap
