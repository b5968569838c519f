#include "host/web/address.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace web;

TEST(Address, IsTaken) {
  const struct {
    const char* text;
    const char* host;
    int port;
  } kCases[] = {
      {"127.0.0.1:8080", "127.0.0.1", 8080},
      {"127.8.9.10:1", "127.8.9.10", 1},
      {"[::1]:65535", "[::1]", 65535},
      {"localhost:80", "127.0.0.1", 80},
      {"0.0.0.0:443", "0.0.0.0", 443},
      {"192.168.1.4:8080", "192.168.1.4", 8080},
      {"[::]:443", "[::]", 443},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    const auto address = ParseAddress(c.text);
    ASSERT_TRUE(address);
    EXPECT_EQ(address->host, c.host);
    EXPECT_EQ(address->port, c.port);
  }
}

TEST(Address, IsRefused) {
  const struct {
    const char* why;
    const char* text;
  } kCases[] = {
      {"no port", "127.0.0.1"},
      {"an empty port", "127.0.0.1:"},
      {"port 0", "127.0.0.1:0"},
      {"a port too large", "127.0.0.1:65536"},
      {"a port with more behind it", "127.0.0.1:80;"},
      {"a name", "example.org:80"},
      {"no brackets", "::1:80"},
      {"nothing", ""},
      {"a port alone", ":8080"},
      {"more than an address", "127.0.0.1; evil:80"},
      {"empty brackets", "[]:80"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_FALSE(ParseAddress(c.text));
  }
}

TEST(Address, IsThisMachinesAlone) {
  for (const char* text : {"127.0.0.1:80", "127.255.0.1:80", "[::1]:80", "localhost:80"}) {
    EXPECT_TRUE(IsLoopback(*ParseAddress(text))) << text;
  }
  for (const char* text :
       {"0.0.0.0:80", "128.0.0.1:80", "10.0.0.1:80", "[::]:80", "[fd00::1]:80", "[::ffff:7f00:1]:80"}) {
    EXPECT_FALSE(IsLoopback(*ParseAddress(text))) << text;
  }
  for (const char* text : {"0.0.0.0:80", "[::]:80"}) EXPECT_TRUE(IsEveryAddress(*ParseAddress(text))) << text;
  for (const char* text : {"10.0.0.1:80", "[::1]:80"}) EXPECT_FALSE(IsEveryAddress(*ParseAddress(text))) << text;
}

TEST(Address, OfProxiesAreAddressesAndNetworks) {
  for (const char* text : {"10.0.0.1", "10.0.0.0/8", "10.0.0.1/32", "fd00::1", "fd00::/8", "::1/128"}) {
    EXPECT_TRUE(IsNetwork(text)) << text;
  }
  for (const char* text : {"", "10.0.0", "10.0.0.0/33", "0.0.0.0/0", "::/0", "10.0.0.0/", "10.0.0.0/8;", "[::1]",
                           "proxy.example", "10.0.0.1 1; }", "fd00::/129"}) {
    EXPECT_FALSE(IsNetwork(text)) << text;
  }
}

TEST(Address, OfAHostIsANameOrAnAddress) {
  for (const char* text : {"localhost", "mail.example", "MAIL-1.example", "10.0.0.1", "[::1]"}) {
    EXPECT_TRUE(IsHost(text)) << text;
  }
  for (const char* text : {"", "mail.example:443", "*.example", "a b", "a\"b", "a|b", "::1", "[::1", "a/b", "$host"}) {
    EXPECT_FALSE(IsHost(text)) << text;
  }
  EXPECT_FALSE(IsHost(std::string(254, 'a')));
}

}  // namespace
}  // namespace kalvo::test
