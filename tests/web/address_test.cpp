#include "host/web/address.h"

#include <gtest/gtest.h>

namespace kalvo::web {
namespace {

TEST(Address, IsTakenWhenOnlyThisMachineReachesIt) {
  const struct {
    const char* text;
    const char* host;
    int port;
  } kCases[] = {
      {"127.0.0.1:8080", "127.0.0.1", 8080},
      {"127.8.9.10:1", "127.8.9.10", 1},
      {"[::1]:65535", "[::1]", 65535},
      {"localhost:80", "127.0.0.1", 80},
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
      {"every address of the machine", "0.0.0.0:8080"},
      {"another machine's", "192.168.1.4:8080"},
      {"every address, version 6", "[::]:8080"},
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

}  // namespace
}  // namespace kalvo::web
