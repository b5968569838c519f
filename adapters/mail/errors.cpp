#include "adapters/mail/errors.h"

#include <utility>

#include "adapters/mail/shown_text.h"
#include "kalvo/platform/append.h"

namespace kalvo::mail {

namespace {

// The name comes from the request.
Error Named(std::int32_t number, std::string_view before, std::string_view name, std::string_view after) {
  return Error(number, Built([&](std::string& out) { Append(out, before, '"', InDescription(name), '"', after); }));
}

}  // namespace

Error NoSuchFolder(std::string_view what) { return Error(codes::kNoSuchFolder, InDescription(what)); }

Error NoSuchMailbox(std::string_view name) {
  return Named(codes::kNoSuchMailbox, "There is no mailbox ", name, " on this server.");
}

Error NoSuchServer(std::string_view name) {
  return Named(codes::kNoSuchMailbox, "There is no mail server ", name, ".");
}

Error NoSuchMessage() { return Error(kNotFound, "The message does not exist any more."); }

Error FolderOfHeldIsGone(const FolderPath& path) {
  return Named(codes::kNoSuchFolder, "The folder ", PathText(path),
               " does not exist any more; the message can be restored into another folder of the mailbox.");
}

Error NotHeld() { return Error(kNotFound, "The deleted message is not held any more."); }

Error AmbiguousMailbox(std::string_view name) {
  return Named(codes::kAmbiguousName, "The name ", name, " matches several mailboxes.");
}

Error UnknownField(std::string_view name) { return Named(codes::kFailed, "The listing has no field ", name, "."); }

Error StoreFailed(std::string_view description) { return Error(codes::kFailed, InDescription(description)); }

}  // namespace kalvo::mail
