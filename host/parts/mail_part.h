#pragma once

#include <string_view>

#include "host/parts/memory_session.h"

namespace kalvo::host {

// What makes a session's browsing object, by the words of the settings: "maildir:DIR", "imap://HOST:PORT..." or
// "imaps://...", "" for no mailboxes (an empty maker). Fails with SettingError for other words, for an adapter that
// is not in this build, and for a mail store whose own settings are wrong.
LiveDrillerMaker MakeMail(std::string_view where);

}  // namespace kalvo::host
