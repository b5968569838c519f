#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kalvo::web {

// An address that browsers on this machine connect to.
struct Address {
  std::string host;  // as nginx takes it: "127.0.0.1", "[::1]"
  std::uint16_t port = 0;
};

// "127.0.0.1:8080", "[::1]:8080" or "localhost:8080". Nothing for another text, and nothing for an address that
// other machines can reach.
std::optional<Address> ParseAddress(std::string_view text);

}  // namespace kalvo::web
