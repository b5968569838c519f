#include "adapters/maildir/message_reader.h"

#include <fcntl.h>
#include <gmime/gmime.h>

#include <memory>
#include <mutex>
#include <string_view>

#include "adapters/mail/text.h"

namespace kalvo::maildir {

namespace {

constexpr gint64 kLongestMessage = gint64{64} << 20;
constexpr std::size_t kMostAttachments = 1000;

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename T>
using Ref = std::unique_ptr<T, Unref>;

struct Free {
  void operator()(char* text) const { g_free(text); }
};

std::string_view Text(const char* text) { return text ? std::string_view(text) : std::string_view(); }

std::string SenderOf(GMimeMessage* message) {
  InternetAddressList* from = g_mime_message_get_from(message);
  if (from && internet_address_list_length(from) > 0) {
    InternetAddress* first = internet_address_list_get_address(from, 0);
    const char* address =
        INTERNET_ADDRESS_IS_MAILBOX(first) ? internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(first)) : "";
    const std::string sender = mail::SenderText(Text(internet_address_get_name(first)), Text(address));
    if (!sender.empty()) return mail::CleanText(sender);
  }
  // A sender that is no address is shown as it stands.
  const char* raw = g_mime_object_get_header(GMIME_OBJECT(message), "From");
  if (!raw) return {};
  const std::unique_ptr<char, Free> decoded(g_mime_utils_header_decode_text(nullptr, raw));
  return mail::CleanText(Text(decoded.get()));
}

std::int64_t DecodedSize(GMimeObject* part) {
  const Ref<GMimeStream> nowhere(g_mime_stream_null_new());
  if (GMIME_IS_PART(part)) {
    GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(part));
    if (content) g_mime_data_wrapper_write_to_stream(content, nowhere.get());
  } else if (GMIME_IS_MESSAGE_PART(part)) {
    GMimeMessage* inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(part));
    if (inner) g_mime_object_write_to_stream(GMIME_OBJECT(inner), nullptr, nowhere.get());
  }
  return GMIME_STREAM_NULL(nowhere.get())->written;
}

void ReadLeaf(GMimeObject* part, Read what, MessageContent& content) {
  GMimeContentType* type = g_mime_object_get_content_type(part);
  const std::string_view media = type ? Text(g_mime_content_type_get_media_type(type)) : "text";
  const std::string_view name = GMIME_IS_PART(part)
                                    ? Text(g_mime_part_get_filename(GMIME_PART(part)))
                                    : Text(g_mime_object_get_content_disposition_parameter(part, "filename"));
  if (!mail::IsAttachment(media, Text(g_mime_object_get_disposition(part)), !name.empty())) return;
  content.hasAttachment = true;
  if (what != Read::Attachments || content.attachments.size() >= kMostAttachments) return;
  const std::string_view subtype = type ? Text(g_mime_content_type_get_media_subtype(type)) : "plain";
  content.attachments.push_back({mail::AttachmentName(name, media, subtype), DecodedSize(part)});
}

// Part by part in their order, however deep they are nested; a message inside is one part.
void ReadParts(GMimeObject* top, Read what, MessageContent& content) {
  std::vector<GMimeObject*> left = {top};
  while (!left.empty() && !(what == Read::Listing && content.hasAttachment)) {
    GMimeObject* part = left.back();
    left.pop_back();
    if (!part) continue;
    if (!GMIME_IS_MULTIPART(part)) {
      ReadLeaf(part, what, content);
      continue;
    }
    for (int i = g_mime_multipart_get_count(GMIME_MULTIPART(part)); i-- > 0;) {
      left.push_back(g_mime_multipart_get_part(GMIME_MULTIPART(part), i));
    }
  }
}

}  // namespace

MessageContent ReadMessage(const File& file, Read what) {
  static std::once_flag started;
  std::call_once(started, g_mime_init);
  MessageContent content;
  const int handle = fcntl(file.Handle(), F_DUPFD_CLOEXEC, 0);  // the stream closes its own
  if (handle < 0) return content;
  const Ref<GMimeStream> stream(g_mime_stream_fs_new_with_bounds(handle, 0, kLongestMessage));
  const Ref<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
  const Ref<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), nullptr));
  if (!message) return content;
  content.subject = mail::CleanText(Text(g_mime_message_get_subject(message.get())));
  content.sender = SenderOf(message.get());
  if (GDateTime* date = g_mime_message_get_date(message.get())) content.sent = g_date_time_to_unix(date);
  ReadParts(g_mime_message_get_mime_part(message.get()), what, content);
  return content;
}

}  // namespace kalvo::maildir
