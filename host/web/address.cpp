#include "host/web/address.h"

#include <arpa/inet.h>

#include <charconv>

namespace kalvo::web {
namespace {

std::optional<std::uint16_t> ParsePort(std::string_view text) {
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port == 0) return std::nullopt;
  return port;
}

bool IsLoopback4(const std::string& host) {
  in_addr address{};
  return inet_pton(AF_INET, host.c_str(), &address) == 1 && (ntohl(address.s_addr) >> 24) == 127;
}

bool IsLoopback6(const std::string& host) {
  in6_addr address{};
  return inet_pton(AF_INET6, host.c_str(), &address) == 1 && IN6_IS_ADDR_LOOPBACK(&address);
}

}  // namespace

std::optional<Address> ParseAddress(std::string_view text) {
  const auto colon = text.rfind(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const auto port = ParsePort(text.substr(colon + 1));
  if (!port) return std::nullopt;
  std::string host(text.substr(0, colon));
  if (host == "localhost") return Address{"127.0.0.1", *port};
  if (IsLoopback4(host)) return Address{host, *port};
  const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
  if (bracketed && IsLoopback6(host.substr(1, host.size() - 2))) return Address{host, *port};
  return std::nullopt;
}

}  // namespace kalvo::web
