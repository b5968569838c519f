#include "host/web/address.h"

#include <arpa/inet.h>

#include <algorithm>
#include <charconv>

namespace kalvo::web {
namespace {

std::optional<std::uint16_t> ParsePort(std::string_view text) {
  std::uint16_t port = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
  if (error != std::errc() || end != text.data() + text.size() || port == 0) return std::nullopt;
  return port;
}

std::optional<in_addr> Parse4(std::string_view text) {
  in_addr address{};
  return inet_pton(AF_INET, std::string(text).c_str(), &address) == 1 ? std::optional(address) : std::nullopt;
}

std::optional<in6_addr> Parse6(std::string_view text) {
  in6_addr address{};
  return inet_pton(AF_INET6, std::string(text).c_str(), &address) == 1 ? std::optional(address) : std::nullopt;
}

std::optional<in6_addr> ParseBracketed(std::string_view text) {
  if (text.size() < 3 || text.front() != '[' || text.back() != ']') return std::nullopt;
  return Parse6(text.substr(1, text.size() - 2));
}

bool IsNameCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

}  // namespace

std::optional<Address> ParseAddress(std::string_view text) {
  const auto colon = text.rfind(':');
  if (colon == std::string::npos) return std::nullopt;
  const auto port = ParsePort(text.substr(colon + 1));
  if (!port) return std::nullopt;
  const std::string host(text.substr(0, colon));
  if (host == "localhost") return Address{"127.0.0.1", *port};
  if (Parse4(host) || ParseBracketed(host)) return Address{host, *port};
  return std::nullopt;
}

bool IsLoopback(const Address& address) {
  if (const auto four = Parse4(address.host)) return (ntohl(four->s_addr) >> 24) == 127;
  const auto six = ParseBracketed(address.host);
  return six && IN6_IS_ADDR_LOOPBACK(&*six);
}

bool IsEveryAddress(const Address& address) {
  if (const auto four = Parse4(address.host)) return four->s_addr == INADDR_ANY;
  const auto six = ParseBracketed(address.host);
  return six && IN6_IS_ADDR_UNSPECIFIED(&*six);
}

bool IsNetwork(std::string_view text) {
  const std::size_t slash = text.find('/');
  const std::string_view address = text.substr(0, slash);
  const bool four = Parse4(address).has_value();
  if (!four && !Parse6(address)) return false;
  if (slash == std::string::npos) return true;
  const std::string_view digits = text.substr(slash + 1);
  unsigned bits = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bits);
  return error == std::errc() && end == digits.data() + digits.size() && bits >= 1 && bits <= (four ? 32u : 128u);
}

bool IsHost(std::string_view text) {
  if (ParseBracketed(text)) return true;
  return !text.empty() && text.size() <= 253 && std::all_of(text.begin(), text.end(), IsNameCharacter);
}

}  // namespace kalvo::web
