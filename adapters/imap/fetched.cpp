#include "adapters/imap/fetched.h"

#include <gmime/gmime.h>
#include <libetpan/libetpan.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <memory>
#include <string_view>

#include "adapters/imap/session.h"
#include "adapters/imap/structure.h"
#include "adapters/mail/header_text.h"
#include "adapters/mail/limits.h"
#include "adapters/mail/text.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

struct Freed {
  void operator()(GDateTime* date) const { g_date_time_unref(date); }
};

// At most so much of a text that a server hands on from a message.
std::string Cut(const char* raw, std::size_t most) { return std::string(View(raw).substr(0, most)); }

std::optional<std::int64_t> SentTime(const char* raw) {
  if (raw == nullptr) return std::nullopt;
  const std::unique_ptr<GDateTime, Freed> date(
      g_mime_utils_header_decode_date(mail::PlainDate(View(raw).substr(0, mail::kLongestWord)).c_str()));
  if (!date) return std::nullopt;
  return g_date_time_to_unix(date.get());
}

std::optional<std::int64_t> ArrivalTime(const mailimap_date_time& date) {
  using namespace std::chrono;
  const year_month_day day{year(date.dt_year), month(static_cast<unsigned>(date.dt_month)),
                           std::chrono::day(static_cast<unsigned>(date.dt_day))};
  if (!day.ok()) return std::nullopt;
  const int zone = date.dt_zone / 100 * 60 + date.dt_zone % 100;
  const auto time = sys_days(day) + hours(date.dt_hour) + minutes(date.dt_min - zone) + seconds(date.dt_sec);
  return duration_cast<seconds>(time.time_since_epoch()).count();
}

// What servers put where an address has no such part.
bool IsNone(std::string_view part) {
  constexpr std::string_view kPlaceholders[] = {"", "MISSING_MAILBOX", "MISSING_DOMAIN", "unspecified-domain"};
  return std::find(std::begin(kPlaceholders), std::end(kPlaceholders), part) != std::end(kPlaceholders);
}

std::string Address(const mailimap_address& from) {
  const std::string mailbox = Cut(from.ad_mailbox_name, mail::kLongestWord);
  const std::string host = Cut(from.ad_host_name, mail::kLongestWord);
  if (IsNone(mailbox)) return "";
  return IsNone(host) ? mailbox : Built([&](std::string& out) { Append(out, mailbox, "@", host); });
}

// The first address, or the name of a group that has none: an address without a host opens or closes a group.
std::string Sender(const mailimap_envelope& envelope, std::string_view charset) {
  std::string sender, group;
  if (envelope.env_from == nullptr || envelope.env_from->frm_list == nullptr) return sender;
  ForEach<mailimap_address>(envelope.env_from->frm_list, [&](const mailimap_address& from) {
    if (!sender.empty() || from.ad_mailbox_name == nullptr) return;
    if (from.ad_host_name == nullptr) {
      if (group.empty()) group = mail::HeaderText(Cut(from.ad_mailbox_name, mail::kLongestWord), charset);
      return;
    }
    const std::string name = mail::HeaderText(Cut(from.ad_personal_name, mail::kLongestSender), charset);
    sender = mail::SenderText(name, Address(from));
  });
  return mail::CleanText(sender.empty() ? group : sender);
}

void ReadEnvelope(const mailimap_envelope& envelope, std::string_view charset, Fetched& message) {
  message.sent = SentTime(envelope.env_date);
  message.subject = mail::CleanText(mail::HeaderText(Cut(envelope.env_subject, mail::kLongestField), charset));
  message.sender = Sender(envelope, charset);
}

void ReadItem(const mailimap_msg_att_static& item, Fetched& message) {
  switch (item.att_type) {
    case MAILIMAP_MSG_ATT_UID: message.uid = item.att_data.att_uid; return;
    case MAILIMAP_MSG_ATT_RFC822_SIZE: message.size = item.att_data.att_rfc822_size; return;
    case MAILIMAP_MSG_ATT_INTERNALDATE: message.received = ArrivalTime(*item.att_data.att_internal_date); return;
    case MAILIMAP_MSG_ATT_BODYSTRUCTURE: message.attachments = AttachmentsOf(*item.att_data.att_bodystructure); return;
    default: return;
  }
}

}  // namespace

// The structure names the charset that the envelope is in, so it is read first.
Fetched ReadMessage(const mailimap_msg_att& answer) {
  Fetched message;
  std::string charset;
  const mailimap_envelope* envelope = nullptr;
  ForEach<mailimap_msg_att_item>(answer.att_list, [&](const mailimap_msg_att_item& each) {
    if (each.att_type != MAILIMAP_MSG_ATT_ITEM_STATIC) return;
    const mailimap_msg_att_static& item = *each.att_data.att_static;
    if (item.att_type == MAILIMAP_MSG_ATT_BODYSTRUCTURE) charset = CharsetOf(*item.att_data.att_bodystructure);
    if (item.att_type == MAILIMAP_MSG_ATT_ENVELOPE) envelope = item.att_data.att_env;
    ReadItem(item, message);
  });
  if (envelope != nullptr) ReadEnvelope(*envelope, charset, message);
  return message;
}

}  // namespace kalvo::imap
