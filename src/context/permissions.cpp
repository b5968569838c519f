// What the user may do, as the session and the live mailbox component tell.

#include "context/fails.h"
#include "kalvo/context.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"
#include "kalvo/platform/page_host.h"

namespace kalvo {

namespace {

bool Grants(const Context& context, std::string_view name) { return ToText(context.GetSession()->Item(name)) == "Yes"; }

}  // namespace

bool Context::KalvoAdministrator() const { return Grants(*this, "KalvoAdministrator"); }
bool Context::MayDrillDown() const { return Grants(*this, "KalvoDrillDownAuth"); }

std::shared_ptr<LiveContainer> Context::LiveDriller() const {
  auto driller = GetSession()->StaticObject("gLiveDriller");
  if (!driller) throw ObjectRequired();
  return driller;
}

bool Context::DrillDownPermission(std::string_view szServerName, std::string_view szMailboxName) const {
  Trap trap;
  bool authorised = false;
  trap([&] { authorised = MayDrillDown(); });
  if (authorised) return true;

  std::shared_ptr<LiveContainer> live;
  if (Fails(trap, *this, "Get the live container object.", [&] { live = LiveDriller(); })) return false;
  return OwnsMailbox(trap, *live, szServerName, szMailboxName).owns;
}

Context::Ownership Context::OwnsMailbox(Trap& trap, LiveContainer& live, std::string_view server,
                                        std::string_view mailbox) const {
  Ownership result;
  trap([&] { result.user = GetRequest()->ServerVariable("LOGON_USER"); });
  trap([&] { result.owner = live.MailboxOwner(server, mailbox); });
  // Kept: a question that failed leaves no owner, which is the name of a user who did not log on:
  // pages without a sign-in show the mailbox so.
  result.owns = ToLower(result.owner) == ToLower(result.user);
  return result;
}

bool Context::MaySeeMailbox(std::string_view server, std::string_view mailbox) const {
  Trap trap;
  std::shared_ptr<LiveContainer> live;
  if (Fails(trap, *this, "Get the live container object.", [&] { live = LiveDriller(); })) return false;
  bool administrator = false;
  trap([&] { administrator = KalvoAdministrator(); });
  return administrator || OwnsMailbox(trap, *live, server, mailbox).owns;
}

std::string Context::KalvoCreatedMailboxName(std::string_view szServerName) const {
  return Built([&](std::string& out) { Append(out, "Kalvo ", szServerName); });
}

}  // namespace kalvo
