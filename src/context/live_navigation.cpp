#include "context/live_navigation.h"

#include "context/fails.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo {

namespace {

// Kept: the paragraph is not closed and no line break follows; pages show it so.
constexpr std::string_view kUpgradeMessage =
    "<p>You have attempted to scan an Kalvo Exchange Edition agent with an earlier version. "
    "In order to successfully scan this agent, you must upgrade it to the current version.";

std::string Step(std::string_view call, std::string_view description) {
  return Built([&](std::string& out) { Append(out, call, ": ", description); });
}

}  // namespace

// Kept: unlike a message, a folder is opened anew on every call, as a page's own browsing object sees.
bool LiveNavigation::OpenFolder(const Context& context, LiveContainer& live, const FolderPlace& place,
                                std::string_view description, bool tellsMissingFolder) {
  Trap trap;
  last_ = Call::Folder;
  trap([&] { context.TableDebugOutput("<p>Calling to GotoContainer.</p>\r\n"); });
  trap([&] { live.GotoContainer(place.server, place.mailbox, place.container, place.threshold, place.flags); });

  if (CurrentError().number == codes::kOldAgent) {
    trap([&] { context.Write(kUpgradeMessage); });
    return true;
  }
  if (tellsMissingFolder && CurrentError().number == codes::kNoSuchFolder) {
    trap([&] { context.FailureMessage("No such Folder", false); });
    return true;
  }
  return Reports(trap, context, Step("GotoContainer", description));
}

bool LiveNavigation::StandsOn(const MessagePlace& place) const {
  return last_ == Call::Message && server_ == place.server && mailbox_ == place.mailbox && message_ == place.message &&
         ofMailbox_ == place.ofMailbox;
}

void LiveNavigation::Remember(const MessagePlace& place) {
  server_ = place.server;
  mailbox_ = place.mailbox;
  message_ = place.message;
  ofMailbox_ = place.ofMailbox;
  last_ = Call::Message;
}

bool LiveNavigation::OpenMessage(const Context& context, LiveContainer& live, const MessagePlace& place,
                                 std::string_view description) {
  Trap trap;
  bool authorised = false;
  trap([&] { authorised = context.MayDrillDown(); });
  if (!authorised) {
    trap([&] { context.FailureMessage("Drill down not allowed.", true); });
    return true;
  }
  if (StandsOn(place)) {
    trap([&] { context.TableDebugOutput("<p>Skipping call to GotoMsgAttachment:  No parameter change.</p>\r\n"); });
    return failed_;
  }
  Remember(place);
  const std::int32_t flags = place.ofMailbox ? 0 : live::kPublicFolders;
  trap([&] { context.TableDebugOutput("<p>Calling to GotoMsgAttachment.</p>\r\n"); });
  trap([&] { live.GotoMsgAttachment(place.server, place.mailbox, place.message, flags); });
  ReportMessage(trap, context, place, description);
  return failed_;
}

void LiveNavigation::ReportMessage(Trap& trap, const Context& context, const MessagePlace& place,
                                   std::string_view description) {
  if (CurrentError().number == codes::kOldAgent) {
    failed_ = true;
    trap([&] { context.Write(kUpgradeMessage); });
  } else if (CurrentError().number == codes::kNoMessageReports) {
    // Kept: the result stays what it was, so that the details follow unless an earlier call had failed: pages show
    // them.
    const std::string_view kind = place.ofMailbox ? "mailbox" : "public folder";
    trap([&] {
      context.Write(Built([&](std::string& out) {
        Append(out, "<p>Kalvo Exchange Edition 1.1 agents don't support ", kind, " message reports.");
      }));
    });
  } else {
    failed_ = false;
  }
  if (!failed_) failed_ = Reports(trap, context, Step("GotoMsgAttachment", description));
}

}  // namespace kalvo
