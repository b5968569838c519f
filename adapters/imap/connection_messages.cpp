#include <algorithm>
#include <cstring>

#include "adapters/imap/imap_connection.h"
#include "adapters/imap/imap_error.h"
#include "adapters/imap/imap_session.h"

namespace kalvo::imap {

namespace {

constexpr std::uint32_t kHeadBytes = 128u << 10;  // of a head's fields

// Adds to the set, in the order that the numbers have, runs of neighbours as ranges.
Owned<mailimap_set> SetOf(std::span<const std::uint32_t> uids) {
  Owned<mailimap_set> set(mailimap_set_new_empty());
  std::vector<std::uint32_t> sorted(uids.begin(), uids.end());
  std::sort(sorted.begin(), sorted.end());
  for (std::size_t i = 0; i < sorted.size();) {
    std::size_t end = i + 1;
    while (end < sorted.size() && sorted[end] == sorted[end - 1] + 1) ++end;
    mailimap_set_add_interval(set.get(), sorted[i], sorted[end - 1]);
    i = end;
  }
  return set;
}

template <typename... Items>
Owned<mailimap_fetch_type> FetchOf(Items... items) {
  Owned<mailimap_fetch_type> type(mailimap_fetch_type_new_fetch_att_list_empty());
  (mailimap_fetch_type_new_fetch_att_list_add(type.get(), items()), ...);
  return type;
}

// What a listing shows of a head, and the charset of what names none.
mailimap_fetch_att* NewHeadFields() {
  clist* names = clist_new();
  for (const char* name : {"SUBJECT", "FROM", "DATE", "CONTENT-TYPE"}) clist_append(names, strdup(name));
  return mailimap_fetch_att_new_body_peek_section_partial(
      mailimap_section_new_header_fields(mailimap_header_list_new(names)), 0, kHeadBytes);
}

mailimap_sort_key* NewSortKey(const ServerSort& sort) {
  const int reverse = sort.descending ? 1 : 0;
  switch (sort.key) {
    case ServerSortKey::Date: return mailimap_sort_key_new_date(reverse);
    case ServerSortKey::Arrival: return mailimap_sort_key_new_arrival(reverse);
    case ServerSortKey::Size: return mailimap_sort_key_new_size(reverse);
  }
  return nullptr;
}

std::vector<std::uint32_t> Numbers(const OwnedList& found) {
  std::vector<std::uint32_t> numbers;
  found.ForEach<std::uint32_t>([&](std::uint32_t number) { numbers.push_back(number); });
  return numbers;
}

}  // namespace

// Where the server refuses, the library has freed the list that it answers.
void Connection::Fetch(mailimap_set* messages, mailimap_fetch_type* wanted, OwnedList& found) {
  Command();
  const int code = mailimap_uid_fetch(session_->imap, messages, wanted, &found.list);
  if (code != MAILIMAP_NO_ERROR) found.list = nullptr;
  Check(code, "FETCH");
}

std::vector<std::uint32_t> Connection::AllUids() {
  const Owned<mailimap_search_key> all(mailimap_search_key_new_all());
  OwnedList found(mailimap_search_result_free);
  Command();
  Check(mailimap_uid_search(session_->imap, nullptr, all.get(), &found.list), "SEARCH");
  return Numbers(found);
}

std::vector<std::uint32_t> Connection::SortedUids(std::span<const ServerSort> keys) {
  const Owned<mailimap_sort_key> sort(mailimap_sort_key_new_multiple_empty());
  for (const auto& key : keys) mailimap_sort_key_multiple_add(sort.get(), NewSortKey(key));
  const Owned<mailimap_search_key> all(mailimap_search_key_new_all());
  OwnedList found(mailimap_sort_result_free);
  Command();
  Check(mailimap_uid_sort(session_->imap, "UTF-8", sort.get(), all.get(), &found.list), "SORT");
  return Numbers(found);
}

std::vector<std::uint32_t> Connection::WithoutSentDate() {
  // Some servers take an old date for a message that has none, others the day on which it came.
  const Owned<mailimap_search_key> undated(mailimap_search_key_new_or(
      mailimap_search_key_new_not(mailimap_search_key_new_sentsince(mailimap_date_new(1, 1, 1971))),
      mailimap_search_key_new_not(mailimap_search_key_new_header(strdup("DATE"), strdup("")))));
  OwnedList found(mailimap_search_result_free);
  Command();
  Check(mailimap_uid_search(session_->imap, nullptr, undated.get(), &found.list), "SEARCH");
  return Numbers(found);
}

void Connection::FetchSummaries(std::uint32_t firstUid, std::uint32_t lastUid, Sizes sizes,
                                std::vector<Summary>& summaries) {
  const Owned<mailimap_set> set(mailimap_set_new_interval(firstUid, lastUid));
  const auto wanted = FetchOf(mailimap_fetch_att_new_uid, mailimap_fetch_att_new_internaldate);
  if (sizes == Sizes::Yes)
    mailimap_fetch_type_new_fetch_att_list_add(wanted.get(), mailimap_fetch_att_new_rfc822_size());
  OwnedList found(mailimap_fetch_list_free);
  Fetch(set.get(), wanted.get(), found);
  found.ForEach<mailimap_msg_att>([&](const mailimap_msg_att& answer) {
    const auto message = ReadMessage(answer);
    // A server may throw in news of other messages.
    if (message.uid < firstUid || message.uid > lastUid || !message.received) return;
    summaries.push_back({message.uid, message.size, *message.received});
  });
}

std::vector<Fetched> Connection::Fetch(std::span<const std::uint32_t> uids, Parts parts) {
  const auto set = SetOf(uids);
  const auto wanted = FetchOf(mailimap_fetch_att_new_uid, mailimap_fetch_att_new_internaldate, NewHeadFields);
  if (parts == Parts::Yes) {
    mailimap_fetch_type_new_fetch_att_list_add(wanted.get(), mailimap_fetch_att_new_rfc822_size());
    mailimap_fetch_type_new_fetch_att_list_add(wanted.get(), mailimap_fetch_att_new_bodystructure());
  }
  OwnedList found(mailimap_fetch_list_free);
  Fetch(set.get(), wanted.get(), found);
  std::vector<Fetched> messages;
  found.ForEach<mailimap_msg_att>([&](const mailimap_msg_att& answer) {
    auto message = ReadListed(answer);
    if (message.uid != 0) messages.push_back(std::move(message));
  });
  return messages;
}

bool Connection::Exists(std::uint32_t uid) {
  const Owned<mailimap_set> set(mailimap_set_new_single(uid));
  const auto wanted = FetchOf(mailimap_fetch_att_new_uid);
  OwnedList found(mailimap_fetch_list_free);
  Fetch(set.get(), wanted.get(), found);
  bool exists = false;
  found.ForEach<mailimap_msg_att>(
      [&](const mailimap_msg_att& answer) { exists = exists || ReadMessage(answer).uid == uid; });
  return exists;
}

void Connection::Expunge(std::uint32_t uid) {
  const Owned<mailimap_set> set(mailimap_set_new_single(uid));
  Command();
  Check(mailimap_uid_expunge(session_->imap, set.get()), "EXPUNGE");
}

}  // namespace kalvo::imap
