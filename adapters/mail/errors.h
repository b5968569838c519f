#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "adapters/mail/held_message.h"
#include "kalvo/platform/error.h"

namespace kalvo::mail {

// A message that is not there, or not any more; the same number as for a mailbox that is not there.
inline constexpr std::int32_t kNotFound = codes::kNoSuchMailbox;

// The failures that every mail store raises alike. Descriptions are fit to be shown as they stand (`InDescription`):
// whatever they were made of, they hold no markup.
Error NoSuchFolder(std::string_view what);         // 0xE1C1002F; also every identifier that was not issued here
Error NoSuchMailbox(std::string_view name);        // 0x8004010F
Error NoSuchServer(std::string_view name);         // 0x8004010F
Error NoSuchMessage();                             // 0x8004010F
Error FolderOfHeldIsGone(const FolderPath& path);  // 0xE1C1002F
Error NotHeld();                                   // 0x8004010F
Error AmbiguousMailbox(std::string_view name);     // 0xE1C10029
Error UnknownField(std::string_view name);         // 0x80004005
Error StoreFailed(std::string_view description);   // 0x80004005

}  // namespace kalvo::mail
