#include "generator/message_deletion.h"

#include "kalvo/context.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

bool DeleteNamedMessage(Context& context, std::string& step) {
  const std::shared_ptr<Request> request = context.GetRequest();
  const std::string server = request->QueryText("ServerName");
  const std::string mailbox = request->QueryText("MailboxName");
  const std::string folderId = request->QueryText("FolderId");
  const std::string messageId = request->QueryText("MessageId");
  const auto number = ParseNumber(request->QueryText("Flags"));
  const std::int16_t flags = number ? ToInt16(*number) : std::int16_t{0};

  step = "Delete message not allowed";
  if (!context.DrillDownPermission(server, mailbox)) return false;

  step = "Get the live container object.";
  const std::shared_ptr<LiveContainer> live = context.LiveDriller();

  step = "Delete Message";
  live->RemoveMessage(server, mailbox, folderId, messageId, flags);
  return CurrentError().number == 0;
}

}  // namespace kalvo
