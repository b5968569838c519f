#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kalvo::web {

// An address that browsers connect to.
struct Address {
  std::string host;  // as nginx takes it: "127.0.0.1", "[::1]"
  std::uint16_t port = 0;
};

// "127.0.0.1:8080", "[::1]:8080" or "localhost:8080", "0.0.0.0:443". Nothing for another text: names are not looked up.
std::optional<Address> ParseAddress(std::string_view text);

// Whether this machine alone reaches it.
bool IsLoopback(const Address& address);

// Whether it stands for every address of the machine.
bool IsEveryAddress(const Address& address);

// Whether the text is an address without a port, "10.0.0.1" or "fd00::1", or a network of them, "10.0.0.0/8".
bool IsNetwork(std::string_view text);

// Whether the text is a name that browsers can know a server by, or an address in its place: "mail.example",
// "10.0.0.1", "[::1]".
bool IsHost(std::string_view text);

}  // namespace kalvo::web
