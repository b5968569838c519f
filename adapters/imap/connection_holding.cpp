// What it takes to move a message from one account to another: to read it whole, to write it, and to read the
// records of those that are held.
#include <algorithm>
#include <chrono>
#include <cstring>
#include <sstream>

#include "adapters/imap/held_copy.h"
#include "adapters/imap/imap_connection.h"
#include "adapters/imap/imap_error.h"
#include "adapters/imap/imap_session.h"
#include "adapters/imap/imap_settings.h"
#include "adapters/mail/errors.h"

namespace kalvo::imap {

namespace {

constexpr std::uint32_t kPieceBytes = 4u << 20;
constexpr std::size_t kCopiesAtOnce = 1000;  // their records are far less than an answer may have
constexpr std::size_t kLongestMessage = std::size_t{128} << 20;

// clang-format off
constexpr struct { std::string_view name; int type; mailimap_flag* (*make)(); } kFlags[] = {
  {"\\Answered", MAILIMAP_FLAG_ANSWERED, mailimap_flag_new_answered},
  {"\\Flagged",  MAILIMAP_FLAG_FLAGGED,  mailimap_flag_new_flagged},
  {"\\Deleted",  MAILIMAP_FLAG_DELETED,  mailimap_flag_new_deleted},
  {"\\Seen",     MAILIMAP_FLAG_SEEN,     mailimap_flag_new_seen},
  {"\\Draft",    MAILIMAP_FLAG_DRAFT,    mailimap_flag_new_draft},
};
// clang-format on

template <typename T, typename Visit>
void ForEach(clist* list, Visit&& visit) {
  if (!list) return;
  for (auto* each = clist_begin(list); each; each = clist_next(each)) {
    visit(*static_cast<T*>(clist_content(each)));
  }
}

mailimap_flag* NewFlag(std::string_view word) {
  for (const auto& flag : kFlags) {
    if (flag.name == word) return flag.make();
  }
  return word.starts_with('\\') ? nullptr : mailimap_flag_new_flag_keyword(strdup(std::string(word).c_str()));
}

Owned<mailimap_flag_list> NewFlags(const std::string& words) {
  Owned<mailimap_flag_list> list(mailimap_flag_list_new_empty());
  std::istringstream in(words);
  for (std::string word; in >> word;) {
    if (auto* flag = NewFlag(word)) mailimap_flag_list_add(list.get(), flag);
  }
  return list;
}

std::string FlagsText(const mailimap_msg_att_dynamic& item) {
  std::string text;
  ForEach<mailimap_flag_fetch>(item.att_list, [&](const mailimap_flag_fetch& each) {
    if (each.fl_type != MAILIMAP_FLAG_FETCH_OTHER || !each.fl_flag) return;
    std::string_view word;
    if (each.fl_flag->fl_type == MAILIMAP_FLAG_KEYWORD) word = each.fl_flag->fl_data.fl_keyword;
    for (const auto& flag : kFlags) {
      if (flag.type == each.fl_flag->fl_type) word = flag.name;
    }
    // Nobody restores a message to have it deleted by the next program that cleans up.
    if (word.empty() || word == kDeleted) return;
    if (!text.empty()) text += ' ';
    text += word;
  });
  return text;
}

Owned<mailimap_date_time> NewDate(std::int64_t seconds) {
  using namespace std::chrono;
  const sys_seconds time{std::chrono::seconds(seconds)};
  const auto day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  return Owned<mailimap_date_time>(mailimap_date_time_new(
      static_cast<int>(static_cast<unsigned>(date.day())), static_cast<int>(static_cast<unsigned>(date.month())),
      static_cast<int>(date.year()), static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
      static_cast<int>(clock.seconds().count()), 0));
}

// Flags and a part of the text, beside what any listing reads.
struct Piece {
  Fetched message;
  std::string flags, text;
};

Piece ReadPiece(const mailimap_msg_att& answer) {
  Piece piece;
  piece.message = ReadMessage(answer);
  ForEach<mailimap_msg_att_item>(answer.att_list, [&](const mailimap_msg_att_item& item) {
    if (item.att_type == MAILIMAP_MSG_ATT_ITEM_DYNAMIC) piece.flags = FlagsText(*item.att_data.att_dyn);
    if (item.att_type != MAILIMAP_MSG_ATT_ITEM_STATIC) return;
    const auto& part = *item.att_data.att_static;
    if (part.att_type != MAILIMAP_MSG_ATT_BODY_SECTION || !part.att_data.att_body_section->sec_body_part) {
      return;
    }
    piece.text.assign(part.att_data.att_body_section->sec_body_part, part.att_data.att_body_section->sec_length);
  });
  return piece;
}

Owned<mailimap_fetch_type> Wanting(std::initializer_list<mailimap_fetch_att*> wanted) {
  Owned<mailimap_fetch_type> type(mailimap_fetch_type_new_fetch_att_list_empty());
  for (auto* each : wanted) mailimap_fetch_type_new_fetch_att_list_add(type.get(), each);
  return type;
}

mailimap_fetch_att* NewPiece(std::size_t from, std::uint32_t bytes) {
  return mailimap_fetch_att_new_body_peek_section_partial(mailimap_section_new(nullptr),
                                                          static_cast<std::uint32_t>(from), bytes);
}

mailimap_fetch_att* NewHeldFields() {
  clist* names = clist_new();
  clist_append(names, strdup(std::string(kHeldField).c_str()));
  return mailimap_fetch_att_new_body_peek_section(mailimap_section_new_header_fields(mailimap_header_list_new(names)));
}

}  // namespace

WholeMessage Connection::FetchWhole(std::uint32_t uid) {
  WholeMessage whole;
  const Owned<mailimap_set> set(mailimap_set_new_single(uid));
  for (bool more = true; more;) {
    const auto wanted = Wanting({mailimap_fetch_att_new_uid(), mailimap_fetch_att_new_flags(),
                                 mailimap_fetch_att_new_internaldate(), NewPiece(whole.text.size(), kPieceBytes)});
    OwnedList found(mailimap_fetch_list_free);
    Fetch(set.get(), wanted.get(), found);
    more = false;
    found.ForEach<mailimap_msg_att>([&](const mailimap_msg_att& answer) {
      Piece piece = ReadPiece(answer);
      if (piece.message.uid != uid || more) return;
      more = piece.text.size() >= kPieceBytes;
      whole.text += piece.text;
      whole.flags = std::move(piece.flags);
      whole.received = piece.message.received;
    });
    if (whole.text.size() > kLongestMessage) throw mail::StoreFailed("The message is too large to be held.");
  }
  return whole;
}

std::uint32_t Connection::Put(const std::string& folder, const WholeMessage& message) {
  CheckSendable("The folder name", folder);
  const auto flags = NewFlags(message.flags);
  const auto date = message.received ? NewDate(*message.received) : nullptr;
  std::uint32_t validity = 0, uid = 0;
  Command();
  Check(mailimap_uidplus_append(session_->imap, folder.c_str(), flags.get(), date.get(), message.text.data(),
                                message.text.size(), &validity, &uid),
        "APPEND");
  return uid;
}

void Connection::Create(const std::string& folder) {
  CheckSendable("The folder name", folder);
  Command();
  Check(mailimap_create(session_->imap, folder.c_str()), "CREATE");
}

void Connection::DeleteFolder(const std::string& folder) {
  CheckSendable("The folder name", folder);
  Command();
  Check(mailimap_delete(session_->imap, folder.c_str()), "DELETE");
}

std::vector<HeldCopy> Connection::HeldCopies(const mail::IdentifierKey& key) {
  std::vector<HeldCopy> copies;
  std::vector<std::uint32_t> uids = AllUids();
  std::sort(uids.begin(), uids.end());
  for (std::size_t at = 0; at < uids.size(); at += kCopiesAtOnce) {
    FetchHeldCopies(uids[at], uids[std::min(at + kCopiesAtOnce, uids.size()) - 1], key, copies);
  }
  return copies;
}

void Connection::FetchHeldCopies(std::uint32_t first, std::uint32_t last, const mail::IdentifierKey& key,
                                 std::vector<HeldCopy>& copies) {
  const Owned<mailimap_set> set(mailimap_set_new_interval(first, last));
  const auto wanted = Wanting({mailimap_fetch_att_new_uid(), mailimap_fetch_att_new_flags(), NewHeldFields()});
  OwnedList found(mailimap_fetch_list_free);
  Fetch(set.get(), wanted.get(), found);
  found.ForEach<mailimap_msg_att>([&](const mailimap_msg_att& answer) {
    const Piece piece = ReadPiece(answer);
    auto held = piece.message.uid == 0 ? std::nullopt : ReadHeldLines(piece.text, key);
    if (!held) return;
    const auto has = [&](std::string_view flag) { return piece.flags.find(flag) != std::string::npos; };
    copies.push_back({piece.message.uid, has(kUnfinished), std::move(*held)});
  });
}

void Connection::Mark(std::uint32_t uid, std::string_view flag, bool set) {
  const Owned<mailimap_set> messages(mailimap_set_new_single(uid));
  auto* flags = mailimap_flag_list_new_empty();
  mailimap_flag_list_add(flags, NewFlag(flag));
  const Owned<mailimap_store_att_flags> change(set ? mailimap_store_att_flags_new_add_flags_silent(flags)
                                                   : mailimap_store_att_flags_new_remove_flags_silent(flags));
  Command();
  Check(mailimap_uid_store(session_->imap, messages.get(), change.get()), "STORE");
}

}  // namespace kalvo::imap
