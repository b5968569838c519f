#pragma once

#include <string>
#include <string_view>

#include "adapters/mail/identifiers.h"
#include "database/sample/organization.h"

namespace kalvo::sample {

// What the sample's mail store and its reporting database call alike, so that links lead from one to the other.

// The key of the store's identifiers: the organization's own, or one that follows from its seed.
mail::IdentifierKey MailKey(const Organization& organization);

// A folder's place in its Maildir++ tree, by its path: "Sales.Price lists". "INBOX" is the tree itself.
std::string MaildirName(std::string_view path);

}  // namespace kalvo::sample
