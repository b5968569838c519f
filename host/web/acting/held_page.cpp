#include "host/web/acting/held_page.h"

#include <algorithm>

#include "adapters/mail/shown_text.h"
#include "host/audit/deed.h"
#include "host/audit/json.h"
#include "host/script/text/text.h"
#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/live_mailbox.h"

namespace kalvo::web {
namespace {

constexpr std::size_t kMostShown = 1000;

bool IsPublic(std::int32_t flags) { return (flags & live::kPublicFolders) != 0; }

void AppendField(std::string& out, std::string_view name, std::string_view value) {
  Append(out, out.back() == '{' ? "\"" : ",\"", name, "\":");
  audit::AppendJsonText(out, host::WellFormed(value));
}

void AppendItem(std::string& out, const mail::HeldMessage& message) {
  out += '{';
  AppendField(out, "Id", message.id);
  AppendField(out, "Subject", message.subject);
  AppendField(out, "Sender", message.sender);
  AppendField(out, "Folder", mail::PathText(message.folder));
  AppendField(out, "Who", message.deletion.who);
  Append(out, ",\"Size\":", message.size);
  const Value deleted = mail::DateValue(message.deletion.when);
  if (const auto* date = std::get_if<Date>(&deleted)) Append(out, ",\"Deleted\":", ToText(Value(date->serial)));
  out += '}';
}

}  // namespace

HeldPage::HeldPage(std::shared_ptr<mail::MailStore> store, int days, audit::Trail& trail, Rights rights)
    : desk_(std::move(store)), days_(days), trail_(trail), rights_(std::move(rights)) {}

std::string HeldPage::Held(std::string_view server, std::string_view mailbox, std::int32_t flags) {
  CheckRight(server, mailbox, flags);
  const auto items = desk_.Held(server, mailbox, flags);
  std::string list = "[";
  for (std::size_t i = 0; i < std::min(items.size(), kMostShown); ++i) {
    if (i > 0) list += ',';
    AppendItem(list, items[i].message);
  }
  return list + "]";
}

std::string HeldPage::Restore(std::string_view server, std::string_view mailbox, std::string_view id,
                              std::int32_t flags) {
  CheckRight(server, mailbox, flags);
  if (!rights_.tokenTaken("RestoreMessage " + std::string(id))) {
    throw Error(codes::kFailed, "A message is restored by a posted form with a token for it, and in no other way.");
  }
  audit::Details details = {{"server", std::string(server)},
                            {"mailbox", std::string(mailbox)},
                            {"public", IsPublic(flags) ? "yes" : "no"},
                            {"held", std::string(id)}};
  if (const auto item = desk_.Find(id)) {
    details.emplace_back("folder", mail::PathText(item->message.folder));
    details.emplace_back("subject", item->message.subject);
  }
  std::string folder;
  audit::Recorded(trail_, audit::kRestore, rights_.visitor, details,
                  [&](audit::Details&) { folder = desk_.Restore(server, mailbox, id, flags); });
  return folder;
}

void HeldPage::CheckRight(std::string_view server, std::string_view mailbox, std::int32_t flags) {
  if (rights_.administrator) return;
  const bool owns = !IsPublic(flags) && !server.empty() && !mailbox.empty() && rights_.live &&
                    EqualsIgnoringCase(rights_.live->MailboxOwner(server, mailbox), rights_.visitor.user);
  if (owns) return;
  trail_.Refused(audit::Event::RightRefused, rights_.visitor,
                 {{"right", "deleted messages of " + std::string(mailbox) + " on " + std::string(server)}});
  throw Error(codes::kFailed, "These messages are not yours to restore.");
}

}  // namespace kalvo::web
