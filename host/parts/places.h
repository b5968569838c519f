#pragma once

#include <string>
#include <string_view>

namespace kalvo::host {

// Where the reporting database and the mailboxes are, each as one word of the settings and of the command line:
// "odbc", "sqlite:FILE"; "maildir:DIR", "imap://HOST:PORT", "imaps://HOST:PORT".
inline constexpr std::string_view kOdbc = "odbc", kSqlite = "sqlite:", kMaildir = "maildir:";

// The path behind "sqlite:" or "maildir:"; "" for any other word, and where no path is behind it.
std::string_view PathBehind(std::string_view scheme, std::string_view word);

bool NamesDatabase(std::string_view word);

bool NamesImap(std::string_view word);

// True also for "", which stands for no mailboxes.
bool NamesMail(std::string_view word);

// The word with its path, where it has one, started at a folder.
std::string Rebased(std::string_view word, const std::string& folder);

}  // namespace kalvo::host
