#pragma once

#include <string>
#include <vector>

#include "adapters/mail/mail_store.h"

struct mailimap_body;

namespace kalvo::imap {

// What a message's BODYSTRUCTURE says of its parts.
std::vector<mail::Attachment> AttachmentsOf(const mailimap_body& body);

// The charset of its first text that names one; "" for none.
std::string CharsetOf(const mailimap_body& body);

}  // namespace kalvo::imap
