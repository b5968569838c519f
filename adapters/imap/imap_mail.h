#pragma once

#include <memory>
#include <string_view>

namespace kalvo::mail {
class MailStore;
}

namespace kalvo::imap {

// The mail store at an address such as "imap://admin@mail.example.com/?directory=mail.txt&password-file=secret"
// (`ReadSettings` tells all of it). Made once for a process; `mail::Browser` makes browsing objects of it. Nothing
// is connected to before it is asked for.
std::shared_ptr<mail::MailStore> OpenImapStore(std::string_view url);

}  // namespace kalvo::imap
