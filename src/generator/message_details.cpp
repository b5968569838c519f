#include "generator/message_details.h"

#include <cmath>

#include "context/fails.h"
#include "display/message_store.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

// A size as it was told; what is told and is not a number fails.
Value SizeOf(Value told) {
  if (!IsNull(told) && !std::isfinite(ToDouble(told))) throw Overflow();
  return told;
}

}  // namespace

// What the table shows of a message. What cannot be read is "", a size 0.
struct MessageDetails::Shown {
  std::string subject, sender;
  Value size = std::int32_t{0};
  Value created = std::string();
  Value modified = std::string();

  Shown(Trap& trap, LiveContainer& live, const Locale& locale) {
    trap([&] { subject = ToText(live.MessageSubject(), locale); });
    trap([&] { sender = ToText(live.MessageSender(), locale); });
    trap([&] { size = SizeOf(live.MessageSize()); });
    trap([&] { created = live.MessageCreationDate(); });
    trap([&] { modified = live.MessageModificationDate(); });
  }
};

void MessageDetails::Show(std::string_view server, std::string_view mailbox, std::string_view container,
                          std::string_view message, const MessageStore& store) {
  std::string folderId, address;
  trap_([&] {
    folderId = context_.GetRequest()->Item(store.idParameter);
    address = ContinueAddress(
        display_, store, server, mailbox, [&] { return container; }, folderId);
  });
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap_, context_, "Get the live container object.", [&] { live = context_.LiveDriller(); })) return;
  if (context_.EncapsulateGotoMsgAttachmentFailure(*live, server, mailbox, message, &store == &kMailboxStore,
                                                   "Load message information.")) {
    return;
  }
  const std::string form = display_.DeleteMessageForm(server, mailbox, folderId, message, store.flags, address);
  Write(Shown(trap_, *live, locale_), form);
}

// "<tr><th align="left">Size</th><td>&nbsp;</td><td>1.50KB</td></tr>". The maker appends the cells behind the first
// two.
template <typename Maker>
void MessageDetails::WriteRow(std::string_view heading, Maker&& maker) {
  trap_([&] {
    const auto response = Held(response_);
    response->Write(Built([&](std::string& out) {
      Append(out, "<tr><th align=\"left\">", heading, "</th><td>&nbsp;</td>");
      maker(out);
      Append(out, "</tr>", kCrLf);
    }));
  });
}

void MessageDetails::Write(const Shown& shown, std::string_view form) {
  const auto value = [](auto&& text) { return [&text](std::string& out) { Append(out, "<td>", text(), "</td>"); }; };
  trap_([&] { Held(response_)->Write("<table border=\"0\">\r\n"); });
  WriteRow("Subject", [&](std::string& out) {
    Append(out, "<td colspan=\"4\">", context_.ServerHTMLEncode(shown.subject), "</td>");
  });
  WriteRow("Sender", [&](std::string& out) {
    Append(out, "<td>", context_.ServerHTMLEncode(shown.sender), "</td><td>&nbsp;</td><td>&nbsp;</td>",
           "<td rowspan=\"4\" valign=\"top\">", form, "</td>");
  });
  WriteRow("Size", value([&] {
             return display_.Kalvo_FormatNumericValue(shown.size, std::int32_t{1024}, std::string("KB"), Empty{});
           }));
  WriteRow("Creation Date", value([&] { return display_.Kalvo_FormatDateTimeFloat(shown.created); }));
  WriteRow("Modification Date", value([&] { return display_.Kalvo_FormatDateTimeFloat(shown.modified); }));
  trap_([&] { Held(response_)->Write("</table>\r\n"); });
}

}  // namespace kalvo
