#include "host/parts/mail_part.h"

#include <memory>
#include <string>

#include "host/parts/setting_error.h"
#include "platform/error.h"
#include "platform/live_mailbox.h"

#ifdef KALVO_HAS_MAILDIR
#include "adapters/maildir/maildir_store.h"
#endif
#ifdef KALVO_HAS_IMAP
#include "adapters/imap/imap_mail.h"
#include "adapters/mail/browser.h"
#endif

namespace kalvo::host {
namespace {

constexpr std::string_view kMaildir = "maildir:";

LiveDrillerMaker OpenMaildir([[maybe_unused]] const std::string& folder) {
#ifdef KALVO_HAS_MAILDIR
  const auto store = std::make_shared<maildir::MaildirStore>(folder);
  return [store] { return store->Open(); };
#else
  throw SettingError("this build has no adapter for Maildir");
#endif
}

LiveDrillerMaker OpenImap([[maybe_unused]] std::string_view url) {
#ifdef KALVO_HAS_IMAP
  const auto store = imap::OpenImapStore(url);
  return [store] { return std::make_shared<mail::Browser>(store); };
#else
  throw SettingError("this build has no adapter for IMAP");
#endif
}

}  // namespace

LiveDrillerMaker MakeMail(std::string_view where) {
  if (where.empty()) return {};
  try {
    if (where.starts_with(kMaildir) && where.size() > kMaildir.size()) {
      return OpenMaildir(std::string(where.substr(kMaildir.size())));
    }
    if (where.starts_with("imap://") || where.starts_with("imaps://")) return OpenImap(where);
  } catch (const Error& error) {
    throw SettingError(error.Description());
  }
  throw SettingError("\"" + std::string(where) + "\" names no mailboxes; maildir:DIR or imap://HOST:PORT does");
}

}  // namespace kalvo::host
