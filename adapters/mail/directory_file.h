#pragma once

#include <string>
#include <string_view>

#include "adapters/mail/directory.h"

namespace kalvo::mail {

// Reads the text file that lists the servers and mailboxes of a store:
//
//   [server EX01]
//   public = EX01/public            where its public folders are; optional
//
//   [mailbox Alice Archer]          the display name
//   server = EX01
//   account = KALVO\alice
//   address = alice@example.com     once or more; the first is the one shown
//   dn = /o=Example/cn=alice        optional
//   location = EX01/alice           where the store keeps it
//
// Blank lines and lines that begin with "#" count for nothing. A server stands before its mailboxes. Anything else
// fails with 0x80004005, naming `file` and the line.
Directory ReadDirectory(std::string_view file, std::string_view text);

// The same, from a file. Fails where it cannot be read.
Directory ReadDirectoryFile(const std::string& path);

}  // namespace kalvo::mail
