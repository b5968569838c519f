#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "adapters/imap/imap_store.h"
#include "support/dovecot_server.h"

namespace kalvo {
class LiveContainer;
}

namespace kalvo::test {

// The address of a store on that port with the contract's directory; `more` is added to it ("&sort=no"). The files
// that it names are put into the server's folder.
std::string StoreAddress(const DovecotServer& server, std::string_view more = "");

// The same for a server that is not a Dovecot; the files are put into `folder`.
std::string StoreAddress(const std::string& folder, std::uint16_t port, std::string_view more = "");

// The name that the server knows a folder by; of a mailbox, or of the public folders.
std::string ServerName(const std::vector<std::string>& names, bool isPublic);

// Puts the contract's folders and messages into an empty server.
void LoadFixture(const DovecotServer& server);
std::vector<std::string> FixtureUsers();

std::shared_ptr<LiveContainer> Browse(const std::shared_ptr<imap::ImapStore>& store);

}  // namespace kalvo::test
