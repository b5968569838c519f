#include "adapters/imap/fetched.h"

#include <gmime/gmime.h>
#include <libetpan/libetpan.h>

#include <array>
#include <chrono>
#include <memory>
#include <string_view>

#include "adapters/mail/limits.h"
#include "adapters/mail/text.h"
#include "kalvo/platform/append.h"

namespace kalvo::imap {

namespace {

struct Freed {
  void operator()(char* text) const { g_free(text); }
  void operator()(GDateTime* date) const { g_date_time_unref(date); }
  void operator()(GMimeParamList* list) const { g_object_unref(list); }
};

using OwnedText = std::unique_ptr<char, Freed>;

std::string_view View(const char* text) { return text == nullptr ? std::string_view() : text; }

template <typename T, typename Visit>
void ForEach(clist* list, Visit&& visit) {
  if (list == nullptr) return;
  for (auto* each = clist_begin(list); each != nullptr; each = clist_next(each)) {
    visit(*static_cast<T*>(clist_content(each)));
  }
}

// At most so much of a text that a server hands on from a message.
std::string Cut(const char* raw, std::size_t most) { return std::string(View(raw).substr(0, most)); }

std::string DecodedText(const char* raw) {
  const std::string text = Cut(raw, mail::kLongestField);
  return std::string(View(OwnedText(g_mime_utils_header_decode_text(nullptr, text.c_str())).get()));
}

std::string DecodedPhrase(const char* raw) {
  const std::string phrase = Cut(raw, mail::kLongestSender);
  return std::string(View(OwnedText(g_mime_utils_header_decode_phrase(nullptr, phrase.c_str())).get()));
}

std::optional<std::int64_t> SentTime(const char* raw) {
  if (raw == nullptr) return std::nullopt;
  const std::unique_ptr<GDateTime, Freed> date(g_mime_utils_header_decode_date(Cut(raw, mail::kLongestWord).c_str()));
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

std::string Sender(const mailimap_envelope& envelope) {
  std::string sender;
  if (envelope.env_from == nullptr || envelope.env_from->frm_list == nullptr) return sender;
  ForEach<mailimap_address>(envelope.env_from->frm_list, [&](const mailimap_address& from) {
    // An address without a host opens or closes a group.
    if (!sender.empty() || from.ad_host_name == nullptr || from.ad_mailbox_name == nullptr) return;
    std::string address;
    Append(address, Cut(from.ad_mailbox_name, mail::kLongestWord), "@", Cut(from.ad_host_name, mail::kLongestWord));
    sender = mail::SenderText(DecodedPhrase(from.ad_personal_name), address);
  });
  return mail::CleanText(sender);
}

// Parameters come as the message has them, in pieces and encoded. They are put together again as a header has them
// for the one parser that knows all ways to write a file name.
std::string Parameter(const mailimap_body_fld_param* parameters, const char* name) {
  if (parameters == nullptr) return {};
  std::string header;
  ForEach<mailimap_single_body_fld_param>(parameters->pa_list, [&](const mailimap_single_body_fld_param& each) {
    if (header.size() + View(each.pa_name).size() + View(each.pa_value).size() > mail::kLongestParameters) return;
    Append(header, header.empty() ? "" : "; ", View(each.pa_name), "=");
    const bool encoded = View(each.pa_name).ends_with('*');
    if (!encoded) header += '"';
    for (const char c : View(each.pa_value)) {
      if (!encoded && (c == '"' || c == '\\')) header += '\\';
      header += c;
    }
    if (!encoded) header += '"';
  });
  const std::unique_ptr<GMimeParamList, Freed> list(g_mime_param_list_parse(nullptr, header.c_str()));
  if (!list) return {};
  auto* found = g_mime_param_list_get_parameter(list.get(), name);
  return found == nullptr ? std::string() : std::string(View(g_mime_param_get_value(found)));
}

constexpr std::string_view MediaType(const mailimap_media_basic& media) {
  switch (media.med_type) {
    case MAILIMAP_MEDIA_BASIC_APPLICATION: return "application";
    case MAILIMAP_MEDIA_BASIC_AUDIO: return "audio";
    case MAILIMAP_MEDIA_BASIC_IMAGE: return "image";
    case MAILIMAP_MEDIA_BASIC_MESSAGE: return "message";
    case MAILIMAP_MEDIA_BASIC_VIDEO: return "video";
    default: return View(media.med_basic_type);
  }
}

// Bytes after decoding. Base64 comes in lines of 76 characters and a line end, and four characters are three bytes;
// how the last four are filled up the structure does not tell.
std::int64_t DecodedSize(const mailimap_body_fields& fields) {
  const auto size = static_cast<std::int64_t>(fields.bd_size);
  if (fields.bd_encoding == nullptr || fields.bd_encoding->enc_type != MAILIMAP_BODY_FLD_ENC_BASE64) return size;
  return (size - size / 78 * 2) * 3 / 4;
}

void AddPart(std::string_view type, std::string_view subtype, const mailimap_body_fields& fields,
             const mailimap_body_ext_1part* extension, std::vector<mail::Attachment>& attachments) {
  const auto* disposition = extension == nullptr ? nullptr : extension->bd_disposition;
  if (attachments.size() >= mail::kMostParts) return;
  auto name = disposition == nullptr ? std::string() : Parameter(disposition->dsp_attributes, "filename");
  if (name.empty()) name = Parameter(fields.bd_parameter, "name");
  const auto word = disposition == nullptr ? std::string_view() : View(disposition->dsp_type);
  if (!mail::IsAttachment(type, word, !name.empty())) return;
  attachments.push_back({mail::AttachmentName(name, type, subtype), DecodedSize(fields)});
}

void AddParts(const mailimap_body& body, std::vector<mail::Attachment>& attachments) {
  if (body.bd_type == MAILIMAP_BODY_MPART) {
    ForEach<mailimap_body>(body.bd_data.bd_body_mpart->bd_list,
                           [&](const mailimap_body& part) { AddParts(part, attachments); });
    return;
  }
  const auto& part = *body.bd_data.bd_body_1part;
  switch (part.bd_type) {
    case MAILIMAP_BODY_TYPE_1PART_BASIC: {
      const auto& basic = *part.bd_data.bd_type_basic;
      const auto& media = *basic.bd_media_basic;
      return AddPart(MediaType(media), View(media.med_subtype), *basic.bd_fields, part.bd_ext_1part, attachments);
    }
    case MAILIMAP_BODY_TYPE_1PART_MSG:
      return AddPart("message", "rfc822", *part.bd_data.bd_type_msg->bd_fields, part.bd_ext_1part, attachments);
    case MAILIMAP_BODY_TYPE_1PART_TEXT: {
      const auto& text = *part.bd_data.bd_type_text;
      return AddPart("text", View(text.bd_media_text), *text.bd_fields, part.bd_ext_1part, attachments);
    }
    default: return;
  }
}

void ReadItem(const mailimap_msg_att_static& item, Fetched& message) {
  switch (item.att_type) {
    case MAILIMAP_MSG_ATT_UID: message.uid = item.att_data.att_uid; return;
    case MAILIMAP_MSG_ATT_RFC822_SIZE: message.size = item.att_data.att_rfc822_size; return;
    case MAILIMAP_MSG_ATT_INTERNALDATE: message.received = ArrivalTime(*item.att_data.att_internal_date); return;
    case MAILIMAP_MSG_ATT_ENVELOPE: {
      const auto& envelope = *item.att_data.att_env;
      message.sent = SentTime(envelope.env_date);
      message.subject = mail::CleanText(DecodedText(envelope.env_subject));
      message.sender = Sender(envelope);
      return;
    }
    case MAILIMAP_MSG_ATT_BODYSTRUCTURE: AddParts(*item.att_data.att_bodystructure, message.attachments); return;
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

}  // namespace kalvo::imap
