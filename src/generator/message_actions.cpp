// The details of one message, who may see a mailbox, and the deletion of a message.

#include <cmath>

#include "context/fails.h"
#include "kalvo/context.h"
#include "kalvo/display.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/page_host.h"
#include "kalvo/table_generator.h"

namespace kalvo {

namespace {

// A size as it was told; what is told and is no number fails.
Value SizeOf(Value told) {
  if (!IsNull(told) && !std::isfinite(ToDouble(told))) throw Overflow();
  return told;
}

// What the details table shows of a message. What cannot be read is "", a size 0.
struct MessageDetails {
  std::string subject, sender;
  Value size = std::int32_t{0};
  Value created = std::string();
  Value modified = std::string();

  MessageDetails(Trap& trap, LiveContainer& live, const Locale& locale) {
    trap([&] { subject = ToText(live.MessageSubject(), locale); });
    trap([&] { sender = ToText(live.MessageSender(), locale); });
    trap([&] { size = SizeOf(live.MessageSize()); });
    trap([&] { created = live.MessageCreationDate(); });
    trap([&] { modified = live.MessageModificationDate(); });
  }
};

void AppendHeading(std::string& out, std::string_view heading) {
  Append(out, "<tr><th align=\"left\">", heading, "</th><td>&nbsp;</td>");
}

void AppendDetailRow(std::string& out, std::string_view heading, std::string_view value) {
  AppendHeading(out, heading);
  Append(out, "<td>", value, "</td></tr>", kCrLf);
}

}  // namespace

void KalvoforExchangeTableGenerator::DisplayMessageInformation(std::string_view szServerName,
                                                               std::string_view szMailboxName,
                                                               std::string_view szContainer,
                                                               std::string_view szMessageId, bool bMailboxMessage) {
  Context& context = PageContext();
  Display& display = PageDisplay();
  Trap trap;
  std::string folderId, continueUrl;
  trap([&] {
    const std::string_view idName = bMailboxMessage ? "ContainerId" : "PublicFolderId";
    folderId = context.GetRequest()->Item(idName);
    continueUrl = bMailboxMessage ? "../Resources/MailboxSummary.asp" : "../Resources/PublicFolderSummary.asp";
    display.AppendParamToURL(continueUrl, "Server", szServerName);
    display.AppendParamToURL(continueUrl, "Mailbox", szMailboxName);
    if (bMailboxMessage) display.AppendParamToURL(continueUrl, "Container", szContainer);
    display.AppendParamToURL(continueUrl, idName, folderId);
  });
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap, context, "Get the live container object.", [&] { live = context.LiveDriller(); })) return;
  if (context.EncapsulateGotoMsgAttachmentFailure(*live, szServerName, szMailboxName, szMessageId, bMailboxMessage,
                                                  "Load message information.")) {
    return;
  }
  const std::int32_t flags = bMailboxMessage ? 0 : live::kPublicFolders;
  const std::string form =
      display.DeleteMessageForm(szServerName, szMailboxName, folderId, szMessageId, flags, continueUrl);
  const MessageDetails details(trap, *live, platform_.locale);

  const auto write = [&](auto&& maker) { trap([&] { PageResponse()->Write(Built(maker)); }); };
  Write(trap, "<table border=\"0\">\r\n");
  write([&](std::string& out) {
    AppendHeading(out, "Subject");
    Append(out, "<td colspan=\"4\">", context.ServerHTMLEncode(details.subject), "</td></tr>", kCrLf);
  });
  write([&](std::string& out) {
    AppendHeading(out, "Sender");
    Append(out, "<td>", context.ServerHTMLEncode(details.sender), "</td><td>&nbsp;</td><td>&nbsp;</td>",
           "<td rowspan=\"4\" valign=\"top\">", form, "</td></tr>", kCrLf);
  });
  write([&](std::string& out) {
    AppendDetailRow(out, "Size",
                    display.Kalvo_FormatNumericValue(details.size, std::int32_t{1024}, std::string("KB"), Empty{}));
  });
  write([&](std::string& out) {
    AppendDetailRow(out, "Creation Date", display.Kalvo_FormatDateTimeFloat(details.created));
  });
  write([&](std::string& out) {
    AppendDetailRow(out, "Modification Date", display.Kalvo_FormatDateTimeFloat(details.modified));
  });
  Write(trap, "</table>\r\n");
}

bool KalvoforExchangeTableGenerator::CheckUserPermissions(std::string_view szServerName,
                                                          std::string_view szMailboxName) {
  if (szServerName.empty()) return false;
  Context& context = PageContext();
  Trap trap;
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap, context, "Get the live container object.", [&] { live = context.LiveDriller(); })) return false;
  bool administrator = false;
  trap([&] { administrator = context.KalvoAdministrator(); });
  return administrator || context.OwnsMailbox(trap, *live, szServerName, szMailboxName).owns;
}

// Nothing is trapped here: a failing step reaches the page, and `szErrorString` says which it was.
bool KalvoforExchangeTableGenerator::DeleteMessage(std::string& szErrorString) {
  ClearError();
  szErrorString = "Unknown Error";
  Context& context = PageContext();
  const std::shared_ptr<Request> request = context.GetRequest();
  const std::string server = request->QueryText("ServerName");
  const std::string mailbox = request->QueryText("MailboxName");
  const std::string folderId = request->QueryText("FolderId");
  const std::string messageId = request->QueryText("MessageId");
  const auto number = ParseNumber(request->QueryText("Flags"));
  const std::int16_t flags = number ? ToInt16(*number) : std::int16_t{0};

  szErrorString = "Delete message not allowed";
  if (!context.DrillDownPermission(server, mailbox)) return false;

  szErrorString = "Get the live container object.";
  const std::shared_ptr<LiveContainer> live = context.LiveDriller();

  szErrorString = "Delete Message";
  live->RemoveMessage(server, mailbox, folderId, messageId, flags);
  return CurrentError().number == 0;
}

}  // namespace kalvo
