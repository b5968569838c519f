#include "host/parts/mail_part.h"

#include <string>

#include "adapters/mail/mail_store.h"
#include "host/parts/places.h"
#include "host/parts/setting_error.h"
#include "kalvo/platform/error.h"

#ifdef KALVO_HAS_MAILDIR
#include "adapters/maildir/maildir_store.h"
#endif
#ifdef KALVO_HAS_IMAP
#include "adapters/imap/imap_mail.h"
#include "adapters/imap/imap_settings.h"
#include "adapters/imap/mail_check.h"
#include "adapters/mail/directory_file.h"
#endif

namespace kalvo::host {
namespace {

using Store = std::shared_ptr<mail::MailStore>;

Store OpenMaildir([[maybe_unused]] const std::string& folder) {
#ifdef KALVO_HAS_MAILDIR
  return maildir::MaildirStore(folder).Store();
#else
  throw SettingError("this build has no adapter for Maildir");
#endif
}

Store OpenImap([[maybe_unused]] std::string_view url) {
#ifdef KALVO_HAS_IMAP
  return imap::OpenImapStore(url);
#else
  throw SettingError("this build has no adapter for IMAP");
#endif
}

}  // namespace

std::vector<MailFinding> CheckMail([[maybe_unused]] std::string_view where) {
  std::vector<MailFinding> findings;
#ifdef KALVO_HAS_IMAP
  if (!NamesImap(where)) return findings;
  try {
    const imap::Settings settings = imap::ReadSettings(where);
    const mail::Directory directory = mail::ReadDirectoryFile(settings.directoryFile);
    for (auto& each : imap::CheckMail(settings, directory)) findings.push_back({each.isGood, std::move(each.text)});
  } catch (const Error& error) {
    findings.push_back({false, error.Description()});
  }
#endif
  return findings;
}

Store OpenMail(std::string_view where) {
  if (where.empty()) return nullptr;
  try {
    if (const auto folder = PathBehind(kMaildir, where); !folder.empty()) return OpenMaildir(std::string(folder));
    if (NamesImap(where)) return OpenImap(where);
  } catch (const Error& error) {
    throw SettingError(error.Description());
  }
  throw SettingError("\"" + std::string(where) + "\" names no mailboxes; maildir:DIR or imap://HOST:PORT does");
}

}  // namespace kalvo::host
