#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace kalvo::imap {

// A message with all that makes it the same again in another folder.
struct WholeMessage {
  std::string text;                      // its bytes
  std::string flags;                     // "\Seen $Label", without what servers alone set
  std::optional<std::int64_t> received;  // seconds since 1970, UTC
};

}  // namespace kalvo::imap
