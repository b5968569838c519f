#include "host/audit/recorded_container.h"

#include "host/audit/deed.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/locale.h"

namespace kalvo::audit {

RecordedContainer::RecordedContainer(std::shared_ptr<LiveContainer> inner, Trail& trail, Visitor visitor,
                                     MayRemove mayRemove)
    : inner_(std::move(inner)), trail_(trail), visitor_(std::move(visitor)), mayRemove_(std::move(mayRemove)) {}

void RecordedContainer::RemoveMessage(std::string_view server, std::string_view mailbox, std::string_view folderId,
                                      std::string_view messageId, std::int32_t flags) {
  if (!mayRemove_(messageId)) {
    trail_.Refused(Event::RequestRefused, visitor_,
                   {{"request", "delete without a token"}, {"message", std::string(messageId)}});
    throw Error(codes::kFailed, "A message is deleted by a posted form with a token for it, and in no other way.");
  }
  Recorded(trail_, kDelete, visitor_, Described(server, mailbox, messageId, flags),
           [&](Details&) { inner_->RemoveMessage(server, mailbox, folderId, messageId, flags); });
}

// What is to be deleted, in words that can still be read when it is gone.
Details RecordedContainer::Described(std::string_view server, std::string_view mailbox, std::string_view messageId,
                                     std::int32_t flags) {
  Details details = {{"server", std::string(server)}, {"mailbox", std::string(mailbox)}};
  details.emplace_back("public", (flags & live::kPublicFolders) != 0 ? "yes" : "no");
  try {
    inner_->GotoMsgAttachment(server, mailbox, messageId, flags);
    details.emplace_back("folder", inner_->CurrentContainerName());
    details.emplace_back("subject", ToText(inner_->MessageSubject(), kEnglishUnitedStates));
    details.emplace_back("sender", ToText(inner_->MessageSender(), kEnglishUnitedStates));
  } catch (const Error&) {  // one that cannot be read is deleted as well
  }
  details.emplace_back("message", messageId);
  return details;
}

}  // namespace kalvo::audit
