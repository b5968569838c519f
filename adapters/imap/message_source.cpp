#include "adapters/imap/message_source.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <numeric>
#include <unordered_set>

#include "adapters/imap/connection_pool.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/text.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

constexpr std::size_t kWindow = 50;           // a page
constexpr std::size_t kLargestWindow = 2000;  // for a listing that is read from end to end
constexpr std::size_t kKeptRows = 50'000;
constexpr std::size_t kUndatedAtMost = 2000;
constexpr int kUnreadableAtMost = 20;  // of one window; if there are more, it is the server

// 1971-01-01: no date that is older is believed to be a server's way to say that there is none.
constexpr std::int64_t kOldestDate = 31'536'000;

std::optional<ServerSortKey> ServerKey(mail::MessageField field) {
  switch (field) {
    case mail::MessageField::Sent: return ServerSortKey::Date;
    case mail::MessageField::Received: return ServerSortKey::Arrival;
    case mail::MessageField::Size: return ServerSortKey::Size;
    default: return std::nullopt;
  }
}

bool KnowsHere(const mail::MessageSort& sort) {
  return sort.field == mail::MessageField::Received || sort.field == mail::MessageField::Size;
}

}  // namespace

ImapMessages::ImapMessages(std::shared_ptr<ConnectionPool> pool, Place place, std::shared_ptr<KnownFolder> folder)
    : pool_(std::move(pool)),
      place_(std::move(place)),
      folder_(std::move(folder)),
      messages_(folder_->messages),
      timeLeft_(pool_->Config().limits.operation) {}

// They are asked for again by the next listing.
ImapMessages::~ImapMessages() {
  for (const auto uid : doubtful_) folder_->rows.erase(uid);
}

template <typename Step>
auto ImapMessages::Ask(Step&& step) {
  struct Counting {
    std::chrono::milliseconds& left;
    Deadline::Clock::time_point begin = Deadline::Clock::now();
    ~Counting() { left -= std::chrono::ceil<std::chrono::milliseconds>(Deadline::Clock::now() - begin); }
  } const counting{timeLeft_};
  return pool_->With(place_.server, place_.user, Deadline(timeLeft_), [&](Connection& connection) {
    if (connection.Stay(place_.folder).uidValidity != folder_->state.uidValidity) {
      throw mail::NoSuchFolder("The folder was made anew meanwhile.");
    }
    return step(connection);
  });
}

std::vector<Fetched> ImapMessages::Fetch(std::span<const std::uint32_t> uids) {
  std::vector<Fetched> fetched;
  int unreadable = 0;
  FetchReadable(uids, fetched, unreadable);
  pool_->CountFetched(fetched.size());
  if (std::all_of(fetched.begin(), fetched.end(),
                  [](const Fetched& each) { return each.subject == mail::kUnreadable; })) {
    for (const Fetched& each : fetched) doubtful_.push_back(each.uid);
  }
  return fetched;
}

// A message that the server tells more of than we take, or what no message has, or over which it ends the session, is
// looked for by halves: it has a row that says so, and the others have theirs.
void ImapMessages::FetchReadable(std::span<const std::uint32_t> uids, std::vector<Fetched>& fetched, int& unreadable) {
  try {
    auto found = Ask([&](Connection& connection) { return connection.Fetch(uids); });
    std::move(found.begin(), found.end(), std::back_inserter(fetched));
    return;
  } catch (const ImapError& error) {
    if (!error.MayBeTheMessage()) throw;
    if (uids.size() == 1 && ++unreadable > kUnreadableAtMost) throw;
  }
  if (uids.size() == 1) return FetchDamaged(uids, fetched);
  FetchReadable(uids.first(uids.size() / 2), fetched, unreadable);
  FetchReadable(uids.subspan(uids.size() / 2), fetched, unreadable);
}

// Of a damaged message a server may know what its head says, and stumble over its parts.
void ImapMessages::FetchDamaged(std::span<const std::uint32_t> uid, std::vector<Fetched>& fetched) {
  try {
    auto found = Ask([&](Connection& connection) { return connection.Fetch(uid, Connection::Parts::No); });
    std::move(found.begin(), found.end(), std::back_inserter(fetched));
  } catch (const ImapError& error) {
    if (!error.MayBeTheMessage()) throw;
    fetched.emplace_back().uid = uid.front();
    fetched.back().subject = mail::kUnreadable;
  }
}

mail::MessageRow ImapMessages::Row(std::span<const std::int32_t> upcoming) {
  const Summary& summary = At(upcoming.front());
  auto found = folder_->rows.find(summary.uid);
  if (found == folder_->rows.end()) {
    FetchWindow(upcoming);
    found = folder_->rows.find(summary.uid);
  }
  const Fetched& message = found->second;
  key_ = MessageKey(folder_->state.uidValidity, summary.uid);
  return {key_,
          message.subject,
          message.sender,
          summary.size,
          message.sent,
          summary.received,
          !message.attachments.empty()};
}

void ImapMessages::FetchWindow(std::span<const std::int32_t> upcoming) {
  const bool readOn = window_ > 0 && upcoming.front() == expected_;
  window_ = readOn ? std::min(window_ * 2, kLargestWindow) : kWindow;
  std::vector<std::uint32_t> uids;
  std::size_t seen = 0;
  for (; seen < upcoming.size() && uids.size() < window_; ++seen) {
    const auto uid = At(upcoming[seen]).uid;
    if (!folder_->rows.contains(uid)) uids.push_back(uid);
  }
  expected_ = seen < upcoming.size() ? upcoming[seen] : -1;
  auto fetched = Fetch(uids);
  auto& rows = folder_->rows;
  if (rows.size() + uids.size() > kKeptRows) rows.clear();
  for (auto& message : fetched) rows.insert_or_assign(message.uid, std::move(message));
  // A message that is gone meanwhile keeps its row, without texts.
  for (const auto uid : uids) rows.try_emplace(uid);
}

std::optional<std::vector<std::int32_t>> ImapMessages::Order(std::span<const mail::MessageSort> keys) {
  if (std::all_of(keys.begin(), keys.end(), KnowsHere)) return OwnOrder(keys);
  return ServerOrder(keys);
}

std::vector<std::int32_t> ImapMessages::OwnOrder(std::span<const mail::MessageSort> keys) const {
  std::vector<std::int32_t> order(messages_->size());
  std::iota(order.begin(), order.end(), 0);
  SortHere(order, keys);
  return order;
}

void ImapMessages::SortHere(std::vector<std::int32_t>& order, std::span<const mail::MessageSort> keys) const {
  std::stable_sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
    for (const auto& key : keys) {
      const bool bySize = key.field == mail::MessageField::Size;
      const auto left = bySize ? At(a).size : At(a).received;
      const auto right = bySize ? At(b).size : At(b).received;
      if (left != right) return (left < right) != key.descending;
    }
    return false;
  });
}

// A server breaks ties by its own numbers, first to last; ours go by arrival, last to first. So it is asked for
// everything the other way round, and its answer is read backwards.
std::optional<std::vector<std::int32_t>> ImapMessages::ServerOrder(std::span<const mail::MessageSort> keys) {
  if (!pool_->Config().serverSort || messages_->empty()) return std::nullopt;
  std::vector<ServerSort> sorts;
  for (const auto& key : keys) {
    const auto serverKey = ServerKey(key.field);
    if (!serverKey) return std::nullopt;
    sorts.push_back({*serverKey, !key.descending});
  }
  // Messages without a date are put in at one end, which is where they belong by the first key alone.
  if (keys.front().field != mail::MessageField::Sent) return std::nullopt;
  if (!std::all_of(keys.begin() + 1, keys.end(), KnowsHere)) return std::nullopt;
  sorts.push_back({ServerSortKey::Arrival, false});

  std::vector<std::uint32_t> uids, candidates;
  const bool sorted = Ask([&](Connection& connection) {
    if (!connection.Has("SORT")) return false;
    uids = connection.SortedUids(sorts);
    candidates = connection.WithoutSentDate();
    return true;
  });
  if (!sorted) return std::nullopt;
  const auto undated = Undated(std::move(candidates));
  if (!undated) return std::nullopt;

  std::unordered_map<std::uint32_t, std::int32_t> places;
  for (std::int32_t i = 0; i < Count(); ++i) places.emplace(At(i).uid, i);
  std::vector<std::int32_t> order, apart;
  const auto take = [&](std::uint32_t uid, std::vector<std::int32_t>& into) {
    const auto found = places.find(uid);
    if (found == places.end()) return;
    into.push_back(found->second);
    places.erase(found);
  };
  for (const auto uid : *undated) take(uid, apart);
  std::sort(apart.begin(), apart.end());
  SortHere(apart, keys.subspan(1));
  for (auto uid = uids.rbegin(); uid != uids.rend(); ++uid) take(*uid, order);
  order.insert(keys.front().descending ? order.end() : order.begin(), apart.begin(), apart.end());
  // What the server no longer has comes last.
  std::vector<std::int32_t> gone;
  for (const auto& [uid, place] : places) gone.push_back(place);
  std::sort(gone.begin(), gone.end());
  order.insert(order.end(), gone.begin(), gone.end());
  return order;
}

// Servers sort a message without a readable date by its arrival, and tell of none that it has no date; the ones in
// question are looked at. Nothing where the server reads dates otherwise than we do: the order is then made here.
std::optional<std::vector<std::uint32_t>> ImapMessages::Undated(std::vector<std::uint32_t> candidates) {
  if (candidates.size() > kUndatedAtMost) return std::nullopt;
  std::vector<std::uint32_t> unknown;
  for (const auto uid : candidates) {
    if (!folder_->rows.contains(uid)) unknown.push_back(uid);
  }
  if (!unknown.empty()) {
    for (auto& message : Fetch(unknown)) folder_->rows.insert_or_assign(message.uid, std::move(message));
  }
  std::vector<std::uint32_t> undated;
  for (const auto uid : candidates) {
    const auto found = folder_->rows.find(uid);
    if (found == folder_->rows.end()) continue;
    if (!found->second.sent)
      undated.push_back(uid);
    else if (*found->second.sent >= kOldestDate)
      return std::nullopt;
  }
  return undated;
}

std::string MessageKey(std::uint32_t uidValidity, std::uint32_t uid) {
  return Built([&](std::string& out) { Append(out, uidValidity, "-", uid); });
}

std::optional<MessageNumber> ReadMessageKey(std::string_view key) {
  MessageNumber number;
  const char* end = key.data() + key.size();
  const auto validity = std::from_chars(key.data(), end, number.uidValidity);
  if (validity.ec != std::errc{} || validity.ptr == end || *validity.ptr != '-') return std::nullopt;
  const auto uid = std::from_chars(validity.ptr + 1, end, number.uid);
  if (uid.ec != std::errc{} || uid.ptr != end) return std::nullopt;
  return number;
}

}  // namespace kalvo::imap
