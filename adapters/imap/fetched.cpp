#include "adapters/imap/fetched.h"

#include <libetpan/libetpan.h>

#include <chrono>
#include <string_view>

#include "adapters/imap/imap_session.h"
#include "adapters/imap/structure.h"
#include "adapters/mail/message_scan.h"

namespace kalvo::imap {

namespace {

std::optional<std::int64_t> ArrivalTime(const mailimap_date_time& date) {
  using namespace std::chrono;
  const year_month_day day{year(date.dt_year), month(static_cast<unsigned>(date.dt_month)),
                           std::chrono::day(static_cast<unsigned>(date.dt_day))};
  if (!day.ok()) return std::nullopt;
  const int zone = date.dt_zone / 100 * 60 + date.dt_zone % 100;
  const auto time = sys_days(day) + hours(date.dt_hour) + minutes(date.dt_min - zone) + seconds(date.dt_sec);
  return duration_cast<seconds>(time.time_since_epoch()).count();
}

std::string_view SectionOf(const mailimap_msg_att_static& item) {
  const mailimap_msg_att_body_section& section = *item.att_data.att_body_section;
  return section.sec_body_part ? std::string_view(section.sec_body_part, section.sec_length) : "";
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

Fetched ReadMessage(const mailimap_msg_att& answer) {
  Fetched message;
  ForEach<mailimap_msg_att_item>(answer.att_list, [&](const mailimap_msg_att_item& item) {
    if (item.att_type == MAILIMAP_MSG_ATT_ITEM_STATIC) ReadItem(*item.att_data.att_static, message);
  });
  return message;
}

Fetched ReadListed(const mailimap_msg_att& answer) {
  Fetched message = ReadMessage(answer);
  std::string_view fields;
  std::string charset;
  ForEach<mailimap_msg_att_item>(answer.att_list, [&](const mailimap_msg_att_item& each) {
    if (each.att_type != MAILIMAP_MSG_ATT_ITEM_STATIC) return;
    const mailimap_msg_att_static& item = *each.att_data.att_static;
    if (item.att_type == MAILIMAP_MSG_ATT_BODYSTRUCTURE) charset = CharsetOf(*item.att_data.att_bodystructure);
    if (item.att_type == MAILIMAP_MSG_ATT_BODY_SECTION) fields = SectionOf(item);
  });
  const mail::MessageScan scan(fields, [](const mail::Head&) { return std::nullopt; });
  const std::string own = mail::CharsetIn(scan.Top().contentType);
  static_cast<mail::HeadTexts&>(message) =
      mail::ReadHead(scan.Top(), [&](std::string_view) { return std::string_view(own.empty() ? charset : own); });
  return message;
}

}  // namespace kalvo::imap
