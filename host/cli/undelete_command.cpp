#include <ctime>
#include <iostream>

#include "adapters/mail/holding_desk.h"
#include "adapters/mail/shown_text.h"
#include "host/audit/deed.h"
#include "host/cli/command_line.h"
#include "host/cli/command_trail.h"
#include "host/cli/commands.h"
#include "host/parts/mail_part.h"
#include "host/parts/setting_error.h"
#include "host/web/settings.h"

namespace kalvo::host {
namespace {

std::string TimeText(std::int64_t seconds) {
  const std::time_t time = static_cast<std::time_t>(seconds);
  std::tm local{};
  char text[32] = "";
  if (localtime_r(&time, &local)) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
  return text;
}

std::string Owner(const mail::HeldItem& item) {
  return item.mailbox.empty() ? "public folders of " + item.message.server : item.mailbox;
}

void Print(const mail::HeldItem& item, int days) {
  const mail::HeldMessage& message = item.message;
  std::cout << message.id << "  " << TimeText(message.deletion.when) << "  " << Owner(item) << "  "
            << mail::PathText(message.folder) << "  \"" << message.subject << "\"  from " << message.sender;
  if (!message.deletion.who.empty()) std::cout << ", deleted by " << mail::CleanText(message.deletion.who);
  std::cout << ", held until " << TimeText(message.deletion.when + std::int64_t{days} * 86'400) << '\n';
}

int Restore(mail::HoldingDesk& desk, const web::Settings& settings, const UndeleteArguments& arguments) {
  const auto item = desk.Find(arguments.id);
  if (!item) throw SettingError("there is no deleted message " + arguments.id + "; without an ID they are listed");
  CommandTrail trail(settings);
  std::string folder;
  audit::Recorded(trail.Get(), audit::kRestore, CommandTrail::Caller(),
                  {{"server", item->message.server},
                   {"mailbox", item->mailbox},
                   {"public", item->mailbox.empty() ? "yes" : "no"},
                   {"folder", arguments.into.empty() ? mail::PathText(item->message.folder) : arguments.into},
                   {"subject", item->message.subject},
                   {"held", item->message.id}},
                  [&](audit::Details&) { folder = desk.Restore(*item, arguments.into); });
  std::cout << "restored \"" << item->message.subject << "\" to " << folder << " of " << Owner(*item) << '\n';
  return kDone;
}

}  // namespace

int RunUndelete(const UndeleteArguments& arguments) {
  web::Settings settings = web::ReadSettings(arguments.config);
  web::CompleteFolders(settings);
  const auto store = OpenMail(settings.parts.mail);
  if (!store) throw SettingError(arguments.config + " names no mailboxes: the setting mail is missing");
  mail::HoldingDesk desk(store);
  if (!arguments.id.empty()) return Restore(desk, settings, arguments);
  if (!arguments.into.empty()) throw SettingError("--into needs the ID of a deleted message");
  for (const mail::HeldItem& item : desk.All()) Print(item, settings.holdingDays);
  return kDone;
}

}  // namespace kalvo::host
