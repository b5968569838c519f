#include <algorithm>
#include <numeric>
#include <tuple>
#include <unordered_map>

#include "adapters/imap/message_source.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::imap {

namespace {

constexpr std::size_t kUndatedAtMost = 2000;

// 1971-01-01: no date that is older is believed to be a server's way to say that there is none.
constexpr std::int64_t kOldestDate = 31'536'000;
constexpr std::size_t kTextsAtOnce = 2000;

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

// What to sort by, as a server knows it; nothing where it cannot sort so.
//
// A server breaks ties by its own numbers, first to last; ours go by arrival, last to first. So it is asked for
// everything the other way round, and its answer is read backwards.
std::optional<std::vector<ServerSort>> BackwardSorts(std::span<const mail::MessageSort> keys) {
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
  return sorts;
}

// What a message is sorted by, beside what the folder's summary has. No date comes first.
struct TextKey {
  std::string text;
  std::optional<std::int64_t> number;

  bool operator<(const TextKey& other) const { return std::tie(number, text) < std::tie(other.number, other.text); }
};

TextKey KeyOf(const Summary& summary, const KnownTexts::Texts& texts, mail::MessageField field) {
  switch (field) {
    case mail::MessageField::Subject: return {ToLower(texts.subject), {}};
    case mail::MessageField::Sender: return {ToLower(texts.sender), {}};
    case mail::MessageField::Sent: return {{}, texts.sent};
    case mail::MessageField::Size: return {{}, summary.size};
    case mail::MessageField::Received: return {{}, summary.received};
  }
  return {};
}

}  // namespace

std::optional<std::vector<std::int32_t>> ImapMessages::Order(std::span<const mail::MessageSort> keys) {
  if (std::all_of(keys.begin(), keys.end(), KnowsHere)) return OwnOrder(keys);
  if (auto order = ServerOrder(keys)) return order;
  return TextOrder(keys);
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

std::optional<std::vector<std::int32_t>> ImapMessages::ServerOrder(std::span<const mail::MessageSort> keys) {
  if (!pool_->Config().serverSort || messages_->empty()) return std::nullopt;
  const auto sorts = BackwardSorts(keys);
  if (!sorts) return std::nullopt;
  std::vector<std::uint32_t> uids, candidates;
  const bool sorted = Ask([&](Connection& connection) {
    if (!connection.Has("SORT")) return false;
    uids = connection.SortedUids(*sorts);
    candidates = connection.WithoutSentDate();
    return true;
  });
  if (!sorted) return std::nullopt;
  const auto undated = Undated(std::move(candidates));
  if (!undated) return std::nullopt;
  return Merged(uids, *undated, keys);
}

// The messages that the server sorted, read backwards, with those that have no date at their end.
std::vector<std::int32_t> ImapMessages::Merged(std::span<const std::uint32_t> backwards,
                                               std::span<const std::uint32_t> undated,
                                               std::span<const mail::MessageSort> keys) {
  std::unordered_map<std::uint32_t, std::int32_t> places;
  for (std::int32_t i = 0; i < Count(); ++i) places.emplace(At(i).uid, i);
  std::vector<std::int32_t> order, apart;
  const auto take = [&](std::uint32_t uid, std::vector<std::int32_t>& into) {
    const auto found = places.find(uid);
    if (found == places.end()) return;
    into.push_back(found->second);
    places.erase(found);
  };
  for (const auto uid : undated) take(uid, apart);
  std::sort(apart.begin(), apart.end());
  SortHere(apart, keys.subspan(1));
  for (auto uid = backwards.rbegin(); uid != backwards.rend(); ++uid) take(*uid, order);
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
    for (auto& message : Fetch(unknown, Connection::Parts::No))
      folder_->rows.insert_or_assign(message.uid, std::move(message));
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

// The heads of all messages, in the order of their numbers. What was read stays known, so an order that took too long
// goes on where it stopped.
void ImapMessages::ReadTexts() {
  std::vector<std::uint32_t> missing;
  for (const Summary& summary : *messages_) {
    if (!folder_->texts.Has(summary.uid)) missing.push_back(summary.uid);
  }
  std::sort(missing.begin(), missing.end());
  std::size_t done = 0;
  try {
    for (; done < missing.size(); done += std::min(kTextsAtOnce, missing.size() - done)) {
      const auto uids = std::span(missing).subspan(done, std::min(kTextsAtOnce, missing.size() - done));
      for (const Fetched& message : Fetch(uids, Connection::Parts::No)) folder_->texts.Add(message.uid, message);
      // A message that is gone meanwhile keeps its row, without texts.
      for (const auto uid : uids) folder_->texts.Add(uid, {});
    }
  } catch (const ImapError& error) {
    if (error.What() != Fault::TooSlow) throw;
    const std::size_t all = messages_->size();
    throw ImapError(Fault::TooSlow, Built([&](std::string& out) {
                      Append(out, all - missing.size() + done, " of ", all,
                             " messages have been read for this order. The next look goes on from there.");
                    }));
  }
}

std::vector<std::int32_t> ImapMessages::TextOrder(std::span<const mail::MessageSort> keys) {
  ReadTexts();
  std::vector<std::int32_t> order(messages_->size());
  std::iota(order.begin(), order.end(), 0);
  // The last key first: each pass is stable, so the first key decides in the end.
  for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
    std::vector<TextKey> of;
    of.reserve(order.size());
    for (const Summary& summary : *messages_) {
      of.push_back(KeyOf(summary, folder_->texts.Of(summary.uid), key->field));
    }
    std::stable_sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) {
      const auto &left = of[static_cast<std::size_t>(a)], &right = of[static_cast<std::size_t>(b)];
      return key->descending ? right < left : left < right;
    });
  }
  return order;
}

}  // namespace kalvo::imap
