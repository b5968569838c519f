#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kalvo::mail {
class MailStore;
}

namespace kalvo::host {

// The mail store that the words of the settings name: "maildir:DIR", "imap://HOST:PORT..." or "imaps://..."; null for
// "", no mailboxes. Fails with SettingError for other words, for an adapter that is not in this build, and for a mail
// store whose own settings are wrong.
std::shared_ptr<mail::MailStore> OpenMail(std::string_view where);

// One thing that was looked at at a mail server, as a sentence, and whether it is as it should be.
struct MailFinding {
  bool isGood;
  std::string text;
};

// Logs in at the mail servers and looks whether all is there that is used; nothing for words that name no server.
std::vector<MailFinding> CheckMail(std::string_view where);

}  // namespace kalvo::host
