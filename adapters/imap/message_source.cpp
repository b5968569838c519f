#include "adapters/imap/message_source.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <numeric>
#include <unordered_set>

#include "adapters/imap/connection_pool.h"
#include "adapters/mail/errors.h"
#include "adapters/mail/shown_text.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

constexpr std::size_t kWindow = 50;           // a page
constexpr std::size_t kLargestWindow = 2000;  // for a listing that is read from end to end
constexpr std::size_t kKeptRows = 50'000;
constexpr int kUnreadableAtMost = 20;  // of one window; if there are more, it is the server

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

std::vector<Fetched> ImapMessages::Fetch(std::span<const std::uint32_t> uids, Connection::Parts parts) {
  std::vector<Fetched> fetched;
  int unreadable = 0;
  FetchReadable(uids, parts, fetched, unreadable);
  pool_->CountFetched(fetched.size());
  if (std::all_of(fetched.begin(), fetched.end(),
                  [](const Fetched& each) { return each.subject == mail::kUnreadable; })) {
    for (const Fetched& each : fetched) doubtful_.push_back(each.uid);
  }
  return fetched;
}

// A message that the server tells more of than we take, or what no message has, or over which it ends the session, is
// looked for by halves: it has a row that says so, and the others have theirs.
void ImapMessages::FetchReadable(std::span<const std::uint32_t> uids, Connection::Parts parts,
                                 std::vector<Fetched>& fetched, int& unreadable) {
  try {
    auto found = Ask([&](Connection& connection) { return connection.Fetch(uids, parts); });
    std::move(found.begin(), found.end(), std::back_inserter(fetched));
    return;
  } catch (const ImapError& error) {
    if (!error.MayBeTheMessage()) throw;
    if (uids.size() == 1 && ++unreadable > kUnreadableAtMost) throw;
  }
  if (uids.size() == 1) return FetchDamaged(uids, fetched);
  FetchReadable(uids.first(uids.size() / 2), parts, fetched, unreadable);
  FetchReadable(uids.subspan(uids.size() / 2), parts, fetched, unreadable);
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
  auto fetched = Fetch(uids, Connection::Parts::Yes);
  auto& rows = folder_->rows;
  if (rows.size() + uids.size() > kKeptRows) rows.clear();
  for (auto& message : fetched) rows.insert_or_assign(message.uid, std::move(message));
  // A message that is gone meanwhile keeps its row, without texts.
  for (const auto uid : uids) rows.try_emplace(uid);
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
