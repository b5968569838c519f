#pragma once

#include <memory>
#include <string_view>

namespace kalvo::mail {
class MailStore;
}

namespace kalvo::host {

// The mail store that the words of the settings name: "maildir:DIR", "imap://HOST:PORT..." or "imaps://..."; null for
// "", no mailboxes. Fails with SettingError for other words, for an adapter that is not in this build, and for a mail
// store whose own settings are wrong.
std::shared_ptr<mail::MailStore> OpenMail(std::string_view where);

}  // namespace kalvo::host
