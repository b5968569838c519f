#include "adapters/maildir/message_reader.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string_view>

#include "adapters/mail/charset.h"
#include "adapters/mail/header_text.h"
#include "adapters/mail/mail_limits.h"
#include "adapters/mail/message_head.h"
#include "adapters/mail/message_scan.h"
#include "adapters/mail/mime_objects.h"
#include "adapters/mail/shown_text.h"
#include "adapters/maildir/compression.h"

namespace kalvo::maildir {

namespace {

constexpr std::size_t kLongestInListing = std::size_t{2} << 20;
constexpr std::size_t kLongestMessage = std::size_t{192} << 20;

using mail::Ref, mail::Text, mail::Head, mail::Leaf, mail::Multipart, mail::MessageScan;

// Parameters for the parser that knows all ways to write them.
std::string Parameters(std::string_view field, std::string_view charset) {
  return mail::PlainWords(field.substr(0, mail::kLongestParameters), charset);
}

Ref<GMimeContentType> TypeOf(const Head& head, bool isMessage, std::string_view charset) {
  if (!head.contentType.data()) {
    return Ref<GMimeContentType>(isMessage ? g_mime_content_type_new("message", "rfc822")
                                           : g_mime_content_type_new("text", "plain"));
  }
  return Ref<GMimeContentType>(g_mime_content_type_parse(nullptr, Parameters(head.contentType, charset).c_str()));
}

std::optional<Multipart> MultipartOf(const Head& head) {
  const auto type = TypeOf(head, false, {});
  if (!g_mime_content_type_is_type(type.get(), "multipart", "*")) return std::nullopt;
  return Multipart{std::string(Text(g_mime_content_type_get_parameter(type.get(), "boundary"))),
                   g_mime_content_type_is_type(type.get(), "multipart", "digest") != 0};
}

// The charset of a message's text, for bytes in its heads that name none. Looked for when it is first needed.
class MessageCharset {
 public:
  explicit MessageCharset(std::string_view message) : message_(message) {}

  // "" for bytes that are UTF-8 as they stand.
  std::string_view For(std::string_view field) {
    if (mail::IsUtf8(field)) return {};
    if (!charset_) charset_ = Find();
    return *charset_;
  }

 private:
  std::string Find() const {
    MessageScan scan(message_, MultipartOf);
    std::string charset = mail::CharsetIn(scan.Top().contentType);
    while (charset.empty()) {
      const auto leaf = scan.Next();
      if (!leaf) break;
      charset = mail::CharsetIn(leaf->head.contentType);
    }
    return charset;
  }
  std::string_view message_;
  std::optional<std::string> charset_;
};

std::int64_t DecodedSize(std::string_view content, std::string_view encodingField) {
  const std::string field = mail::HeaderText(encodingField.substr(0, mail::kLongestWord));
  GMimeEncoding decoder;
  g_mime_encoding_init_decode(&decoder, g_mime_content_encoding_from_string(field.c_str()));
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

// A type without a subtype is none, and what has no type is plain text.
std::string_view MediaOf(const Leaf& leaf, GMimeContentType* type) {
  const std::string_view field = leaf.head.contentType;
  const bool isWhole = !field.data() || field.substr(0, field.find(';')).find('/') != std::string::npos;
  return isWhole ? Text(g_mime_content_type_get_media_type(type)) : "";
}

void ReadLeaf(const Leaf& leaf, MessageCharset& charset, Read what, MessageContent& content) {
  const auto type = TypeOf(leaf.head, leaf.isMessage, charset.For(leaf.head.contentType));
  const std::string_view media = MediaOf(leaf, type.get());
  const Ref<GMimeContentDisposition> disposition(
      !leaf.head.contentDisposition.data()
          ? nullptr
          : g_mime_content_disposition_parse(
                nullptr, Parameters(leaf.head.contentDisposition, charset.For(leaf.head.contentDisposition)).c_str()));
  std::string_view word, name;
  if (disposition.get()) {
    word = Text(g_mime_content_disposition_get_disposition(disposition.get()));
    name = Text(g_mime_content_disposition_get_parameter(disposition.get(), "filename"));
  }
  if (name.empty()) name = Text(g_mime_content_type_get_parameter(type.get(), "name"));
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
  MessageCharset charset(text);
  static_cast<mail::HeadTexts&>(content) =
      mail::ReadHead(scan.Top(), [&](std::string_view field) { return charset.For(field); });
  while (const auto leaf = scan.Next()) {
    ReadLeaf(*leaf, charset, what, content);
    if (what == Read::Listing && content.hasAttachment) break;
  }
  if (what == Read::Attachments && scan.HasMore()) content.attachments.push_back({std::string(mail::kMoreParts), 0});
  return content;
}

MessageContent Saying(std::string_view subject) {
  MessageContent content;
  content.subject = subject;
  return content;
}

std::optional<MessageContent> ReadStored(const File& file, Read what) {
  const std::size_t most = what == Read::Listing ? kLongestInListing : kLongestMessage;
  auto text = base::ReadPiece(file, most);
  if (!text) return std::nullopt;
  const Packing packing = PackingOf(*text);
  if (packing == Packing::Other) return Saying(mail::kCompressed);
  if (packing == Packing::Gzip) text = Unpacked(*text, most);
  if (!text) return std::nullopt;
  MessageContent content = ReadText(*text, what);
  if (what == Read::Attachments && text->size() == most) {
    content.attachments.push_back({std::string(mail::kMoreParts), 0});
  }
  return content;
}

}  // namespace

MessageContent ReadMessage(const File& file, Read what) {
  mail::StartMime();
  try {
    if (auto content = ReadStored(file, what)) return std::move(*content);
  } catch (const std::bad_alloc&) {
    // As unreadable as one that the disk does not give.
  }
  MessageContent content = Saying(mail::kUnreadable);
  content.isReadable = false;
  return content;
}

}  // namespace kalvo::maildir
