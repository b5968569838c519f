#include "adapters/maildir/message_reader.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <new>
#include <string_view>

#include "adapters/mail/limits.h"
#include "adapters/mail/text.h"
#include "adapters/maildir/message_scan.h"

namespace kalvo::maildir {

namespace {

constexpr std::size_t kLongestInListing = std::size_t{2} << 20;
constexpr std::size_t kLongestMessage = std::size_t{64} << 20;

// The library reads an address list by calling itself at each of these.
constexpr std::string_view kNesting = ":(<";
constexpr std::ptrdiff_t kDeepestSender = 100;

struct Free {
  void operator()(char* text) const { g_free(text); }
  void operator()(GDateTime* date) const { g_date_time_unref(date); }
  void operator()(GObject* object) const { g_object_unref(object); }
};
using OwnedText = std::unique_ptr<char, Free>;

// An object of the library, by its own type.
template <typename T>
class Ref {
 public:
  explicit Ref(T* object) : object_(object) {}
  ~Ref() {
    if (object_) g_object_unref(object_);
  }
  Ref(const Ref&) = delete;
  Ref& operator=(const Ref&) = delete;
  T* get() const { return object_; }

 private:
  T* object_;
};

std::string_view Text(const char* text) { return text ? std::string_view(text) : std::string_view(); }

// A field's text on one line, at most so much of it.
OwnedText Unfolded(std::string_view field, std::size_t most) {
  return OwnedText(g_mime_utils_header_unfold(std::string(field.substr(0, most)).c_str()));
}

std::string Decoded(std::string_view field, std::size_t most) {
  const OwnedText decoded(g_mime_utils_header_decode_text(nullptr, Unfolded(field, most).get()));
  return mail::CleanText(Text(decoded.get()));
}

std::string SenderOf(std::string_view from) {
  const OwnedText field = Unfolded(from, mail::kLongestSender);
  const std::string_view text = Text(field.get());
  const auto deep = std::count_if(text.begin(), text.end(), [](char c) { return kNesting.find(c) != kNesting.npos; });
  if (deep <= kDeepestSender) {
    const Ref<InternetAddressList> list(internet_address_list_parse(nullptr, field.get()));
    if (list.get() && internet_address_list_length(list.get()) > 0) {
      InternetAddress* first = internet_address_list_get_address(list.get(), 0);
      const char* address =
          INTERNET_ADDRESS_IS_MAILBOX(first) ? internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(first)) : "";
      const std::string sender = mail::SenderText(Text(internet_address_get_name(first)), Text(address));
      if (!sender.empty()) return mail::CleanText(sender);
    }
  }
  // A sender that is no address is shown as it stands.
  return Decoded(from, mail::kLongestSender);
}

std::optional<std::int64_t> SentOf(std::string_view date) {
  const std::unique_ptr<GDateTime, Free> sent(
      g_mime_utils_header_decode_date(Unfolded(date, mail::kLongestWord).get()));
  return sent ? std::optional<std::int64_t>(g_date_time_to_unix(sent.get())) : std::nullopt;
}

Ref<GMimeContentType> TypeOf(const Head& head, bool isMessage) {
  const OwnedText field = Unfolded(head.contentType, mail::kLongestParameters);
  if (head.contentType.data() == nullptr) {
    return Ref<GMimeContentType>(isMessage ? g_mime_content_type_new("message", "rfc822")
                                           : g_mime_content_type_new("text", "plain"));
  }
  return Ref<GMimeContentType>(g_mime_content_type_parse(nullptr, field.get()));
}

std::optional<Multipart> MultipartOf(const Head& head) {
  const auto type = TypeOf(head, false);
  if (!g_mime_content_type_is_type(type.get(), "multipart", "*")) return std::nullopt;
  return Multipart{std::string(Text(g_mime_content_type_get_parameter(type.get(), "boundary"))),
                   g_mime_content_type_is_type(type.get(), "multipart", "digest") != 0};
}

std::int64_t DecodedSize(std::string_view content, std::string_view encodingField) {
  const OwnedText field = Unfolded(encodingField, mail::kLongestWord);
  GMimeEncoding decoder;
  g_mime_encoding_init_decode(&decoder, g_mime_content_encoding_from_string(g_strstrip(field.get())));
  if (decoder.encoding == GMIME_CONTENT_ENCODING_DEFAULT || decoder.encoding == GMIME_CONTENT_ENCODING_7BIT ||
      decoder.encoding == GMIME_CONTENT_ENCODING_8BIT || decoder.encoding == GMIME_CONTENT_ENCODING_BINARY) {
    return static_cast<std::int64_t>(content.size());
  }
  constexpr std::size_t kStep = 64u << 10;
  std::string out(g_mime_encoding_outlen(&decoder, kStep), '\0');
  std::int64_t size = 0;
  for (; content.size() > kStep; content.remove_prefix(kStep)) {
    size += static_cast<std::int64_t>(g_mime_encoding_step(&decoder, content.data(), kStep, out.data()));
  }
  return size + static_cast<std::int64_t>(g_mime_encoding_flush(&decoder, content.data(), content.size(), out.data()));
}

void ReadLeaf(const Leaf& leaf, Read what, MessageContent& content) {
  const auto type = TypeOf(leaf.head, leaf.isMessage);
  const std::string_view media = Text(g_mime_content_type_get_media_type(type.get()));
  const Ref<GMimeContentDisposition> disposition(
      leaf.head.contentDisposition.data() == nullptr
          ? nullptr
          : g_mime_content_disposition_parse(nullptr,
                                             Unfolded(leaf.head.contentDisposition, mail::kLongestParameters).get()));
  std::string_view word, name;
  if (disposition.get()) {
    word = Text(g_mime_content_disposition_get_disposition(disposition.get()));
    name = Text(g_mime_content_disposition_get_parameter(disposition.get(), "filename"));
  }
  if (name.empty() && media != "message") name = Text(g_mime_content_type_get_parameter(type.get(), "name"));
  if (!mail::IsAttachment(media, word, !name.empty())) return;
  content.hasAttachment = true;
  if (what != Read::Attachments) return;
  content.attachments.push_back(
      {mail::AttachmentName(name, media, Text(g_mime_content_type_get_media_subtype(type.get()))),
       DecodedSize(leaf.content, leaf.head.contentEncoding)});
}

MessageContent ReadText(std::string_view text, Read what) {
  MessageContent content;
  MessageScan scan(text, MultipartOf);
  content.subject = Decoded(scan.Top().subject, mail::kLongestField);
  content.sender = SenderOf(scan.Top().from);
  content.sent = SentOf(scan.Top().date);
  while (const auto leaf = scan.Next()) {
    ReadLeaf(*leaf, what, content);
    if (what == Read::Listing && content.hasAttachment) break;
  }
  return content;
}

}  // namespace

MessageContent ReadMessage(const File& file, Read what) {
  static std::once_flag started;
  std::call_once(started, g_mime_init);
  try {
    const auto text = ReadBeginning(file, what == Read::Listing ? kLongestInListing : kLongestMessage);
    if (text) return ReadText(*text, what);
  } catch (const std::bad_alloc&) {
    // As unreadable as one that the disk does not give.
  }
  MessageContent content;
  content.subject = mail::kUnreadable;
  content.isReadable = false;
  return content;
}

}  // namespace kalvo::maildir
