#include "adapters/imap/imap_mail.h"

#include "adapters/imap/imap_settings.h"
#include "adapters/imap/imap_store.h"

namespace kalvo::imap {

std::shared_ptr<mail::MailStore> OpenImapStore(std::string_view url) {
  return std::make_shared<ImapStore>(ReadSettings(url));
}

}  // namespace kalvo::imap
