#pragma once

#include <chrono>
#include <cstddef>

namespace kalvo::imap {

// What a server may do to us before we hang up. The sizes leave room for the search answer of a million messages
// and for a subject of some megabytes; the depth for any message that a mail server itself would take apart.
struct Limits {
  std::size_t lineBytes = 16u << 20;           // one line, its literals apart
  std::size_t literalBytes = 16u << 20;        // one literal
  std::size_t answerBytes = 64u << 20;         // everything that answers one command
  int depth = 500;                             // open parentheses
  std::chrono::milliseconds silence{10000};    // without a byte while we wait for one
  std::chrono::milliseconds operation{20000};  // everything that one call of ours takes
  std::chrono::milliseconds patience{3000};    // with somebody who restores the same message
};

}  // namespace kalvo::imap
