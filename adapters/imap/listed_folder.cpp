#include "adapters/imap/listed_folder.h"

#include <algorithm>

#include "adapters/imap/imap_error.h"
#include "adapters/mail/errors.h"

namespace kalvo::imap {

std::optional<FolderState> OpenListed(Connection& connection, const std::string& folder, Access access) {
  try {
    return connection.Open(folder, access);
  } catch (const ImapError& error) {
    if (error.What() != Fault::Refused) throw;
    const auto listed = connection.List(folder, "");
    const auto found =
        std::find_if(listed.begin(), listed.end(), [&](const Folder& each) { return each.name == folder; });
    if (found == listed.end()) throw mail::NoSuchFolder("The folder does not exist any more.");
    if (!found->selectable) return std::nullopt;
    throw;
  }
}

}  // namespace kalvo::imap
