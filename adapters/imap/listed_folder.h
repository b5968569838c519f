#pragma once

#include <optional>
#include <string>

#include "adapters/imap/imap_connection.h"

namespace kalvo::imap {

// Opens a folder. Nothing for one that is only a place in the tree; fails with `mail::NoSuchFolder` where there is
// none.
std::optional<FolderState> OpenListed(Connection& connection, const std::string& folder, Access access);

}  // namespace kalvo::imap
