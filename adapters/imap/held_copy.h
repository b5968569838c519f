#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "adapters/mail/held_message.h"
#include "adapters/mail/identifiers.h"

namespace kalvo::imap {

// A deleted message is held as a copy of itself, in front of which stand header lines of ours: the record of where it
// came from, with a check value, because whoever can send mail can write such lines too.
inline constexpr std::string_view kHeldField = "X-Kalvo-Held";

// The lines, each with its end.
std::string HeldLines(const mail::HeldMessage& held, const mail::IdentifierKey& key);

// What the lines say at the front of a message, or of the header fields of that name; nothing where they are not ours.
std::optional<mail::HeldMessage> ReadHeldLines(std::string_view text, const mail::IdentifierKey& key);

// How many bytes of ours stand at the front of a message.
std::size_t HeldLinesLength(std::string_view text);

}  // namespace kalvo::imap
