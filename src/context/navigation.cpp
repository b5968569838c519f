// The two navigation calls of the live mailbox component, with their failures reported.

#include "context/fails.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/error.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/owned.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

// Kept: the paragraph is not closed and no line break follows.
constexpr std::string_view kUpgradeMessage =
    "<p>You have attempted to scan an Kalvo Exchange Edition agent with an earlier version. "
    "In order to successfully scan this agent, you must upgrade it to the current version.";

constexpr std::int32_t kMailboxMessageFlags = 0;
constexpr std::int32_t kPublicFolderMessageFlags = live::kPublicFolders;

}  // namespace

bool Context::EncapsulateGotoContainerFailure(LiveContainer& pLiveContainer, std::string_view ServerName,
                                              std::string_view MailboxName, std::string_view ContainerName,
                                              std::int32_t OldThreshold, std::int32_t Flags,
                                              std::string_view szErrorString, bool bDefect7022Workaround) {
  Trap trap;
  // Kept: unlike a message, a container is opened anew on every call.
  lastGotoCall_ = GotoCall::Container;
  trap([&] { TableDebugOutput("<p>Calling to GotoContainer.</p>\r\n"); });
  trap([&] { pLiveContainer.GotoContainer(ServerName, MailboxName, ContainerName, OldThreshold, Flags); });

  bool failed = CurrentError().number == codes::kOldAgent;
  if (failed) trap([&] { Held(response_)->Write(kUpgradeMessage); });
  if (bDefect7022Workaround && !failed && CurrentError().number == codes::kNoSuchFolder) {
    failed = true;
    trap([&] { FailureMessage("No such Folder", false); });
  }
  if (!failed) {
    failed = Reports(trap, *this, Built([&](std::string& out) { Append(out, "GotoContainer: ", szErrorString); }));
  }
  return failed;
}

bool Context::EncapsulateGotoMsgAttachmentFailure(LiveContainer& pLiveContainer, std::string_view szServerName,
                                                  std::string_view szMailboxName, std::string_view szMessageId,
                                                  bool bMailboxMessage, std::string_view szErrorString) {
  Trap trap;
  bool authorised = false;
  trap([&] { authorised = SessionGrants("KalvoDrillDownAuth"); });
  if (!authorised) {
    trap([&] { FailureMessage("Drill down not allowed.", true); });
    return true;
  }

  MessageGoto& last = lastMessage_;
  const bool same = last.server == szServerName && last.mailbox == szMailboxName && last.message == szMessageId &&
                    last.mailboxMessage == bMailboxMessage;
  if (same && lastGotoCall_ == GotoCall::Message) {
    trap([&] { TableDebugOutput("<p>Skipping call to GotoMsgAttachment:  No parameter change.</p>\r\n"); });
    return last.failed;
  }
  last.server = szServerName;
  last.mailbox = szMailboxName;
  last.message = szMessageId;
  last.mailboxMessage = bMailboxMessage;
  lastGotoCall_ = GotoCall::Message;
  const std::int32_t flags = bMailboxMessage ? kMailboxMessageFlags : kPublicFolderMessageFlags;
  trap([&] { TableDebugOutput("<p>Calling to GotoMsgAttachment.</p>\r\n"); });
  trap([&] { pLiveContainer.GotoMsgAttachment(szServerName, szMailboxName, szMessageId, flags); });

  if (CurrentError().number == codes::kOldAgent) {
    last.failed = true;
    trap([&] { Held(response_)->Write(kUpgradeMessage); });
  } else if (CurrentError().number == codes::kNoMessageReports) {
    // Kept: the result stays what it was, so that the details follow unless an earlier call had failed.
    const std::string_view kind = bMailboxMessage ? "mailbox" : "public folder";
    trap([&] {
      Held(response_)->Write(Built([&](std::string& out) {
        Append(out, "<p>Kalvo Exchange Edition 1.1 agents don't support ", kind, " message reports.");
      }));
    });
  } else {
    last.failed = false;
  }
  if (!last.failed) {
    last.failed =
        Reports(trap, *this, Built([&](std::string& out) { Append(out, "GotoMsgAttachment: ", szErrorString); }));
  }
  return last.failed;
}

}  // namespace kalvo
