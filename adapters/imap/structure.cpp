#include "adapters/imap/structure.h"

#include <gmime/gmime.h>
#include <libetpan/libetpan.h>

#include <memory>
#include <string_view>

#include "adapters/imap/imap_session.h"
#include "adapters/mail/header_text.h"
#include "adapters/mail/mail_limits.h"
#include "adapters/mail/shown_text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"

namespace kalvo::imap {

namespace {

struct Freed {
  void operator()(GMimeParamList* list) const { g_object_unref(list); }
};

// Parameters come as the message has them, in pieces and encoded. They are put together again as a header has them
// for the one parser that knows all ways to write a file name.
std::string Parameter(const mailimap_body_fld_param* parameters, const char* name, std::string_view charset) {
  if (!parameters) return {};
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
  const std::unique_ptr<GMimeParamList, Freed> list(
      g_mime_param_list_parse(nullptr, mail::PlainWords(header, charset).c_str()));
  if (!list) return {};
  auto* found = g_mime_param_list_get_parameter(list.get(), name);
  return found ? std::string(View(g_mime_param_get_value(found))) : std::string();
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
  if (!fields.bd_encoding || fields.bd_encoding->enc_type != MAILIMAP_BODY_FLD_ENC_BASE64) return size;
  return (size - size / 78 * 2) * 3 / 4;
}

// A part that has no parts.
struct Leaf {
  std::string_view type, subtype;
  const mailimap_body_fields& fields;
};

Leaf LeafOf(const mailimap_body_type_1part& part) {
  switch (part.bd_type) {
    case MAILIMAP_BODY_TYPE_1PART_MSG: return {"message", "rfc822", *part.bd_data.bd_type_msg->bd_fields};
    case MAILIMAP_BODY_TYPE_1PART_TEXT:
      return {"text", View(part.bd_data.bd_type_text->bd_media_text), *part.bd_data.bd_type_text->bd_fields};
    default: {
      // A type without a subtype is none.
      const auto& basic = *part.bd_data.bd_type_basic;
      const auto subtype = View(basic.bd_media_basic->med_subtype);
      return {subtype.empty() ? std::string_view() : MediaType(*basic.bd_media_basic), subtype, *basic.bd_fields};
    }
  }
}

template <typename Visit>
void ForEachLeaf(const mailimap_body& body, Visit&& visit) {
  if (body.bd_type == MAILIMAP_BODY_MPART) {
    ForEach<mailimap_body>(body.bd_data.bd_body_mpart->bd_list,
                           [&](const mailimap_body& part) { ForEachLeaf(part, visit); });
  } else {
    visit(*body.bd_data.bd_body_1part);
  }
}

}  // namespace

std::vector<mail::Attachment> AttachmentsOf(const mailimap_body& body) {
  std::vector<mail::Attachment> attachments;
  const std::string charset = CharsetOf(body);
  std::size_t parts = 0;
  ForEachLeaf(body, [&](const mailimap_body_type_1part& part) {
    if (++parts > mail::kMostParts) return;
    const Leaf leaf = LeafOf(part);
    const auto* disposition = part.bd_ext_1part ? part.bd_ext_1part->bd_disposition : nullptr;
    std::string name;
    if (disposition) name = Parameter(disposition->dsp_attributes, "filename", charset);
    if (name.empty()) name = Parameter(leaf.fields.bd_parameter, "name", charset);
    const auto word = disposition ? View(disposition->dsp_type) : std::string_view();
    if (!mail::IsAttachment(leaf.type, word, !name.empty())) return;
    attachments.push_back({mail::AttachmentName(name, leaf.type, leaf.subtype), DecodedSize(leaf.fields)});
  });
  if (parts > mail::kMostParts) attachments.push_back({std::string(mail::kMoreParts), 0});
  return attachments;
}

std::string CharsetOf(const mailimap_body& body) {
  std::string charset;
  ForEachLeaf(body, [&](const mailimap_body_type_1part& part) {
    const Leaf leaf = LeafOf(part);
    if (!charset.empty() || leaf.type != "text" || !leaf.fields.bd_parameter) return;
    ForEach<mailimap_single_body_fld_param>(leaf.fields.bd_parameter->pa_list,
                                            [&](const mailimap_single_body_fld_param& each) {
                                              if (EqualsIgnoringAsciiCase(View(each.pa_name), "charset"))
                                                charset = View(each.pa_value);
                                            });
  });
  return charset;
}

}  // namespace kalvo::imap
