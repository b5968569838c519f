#include "host/web/acting/sender.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace web;

TEST(Sender, IsToldByTheBrowser) {
  const struct {
    const char* why;
    const char* site;
    const char* origin;
    Sender sender;
  } kCases[] = {
      {"a page of this site", "same-origin", "http://console:8080", Sender::ThisSite},
      {"a page of this site that hides its origin", "same-origin", "null", Sender::ThisSite},
      {"another port or a name of the same domain", "same-site", "http://console:8081", Sender::Elsewhere},
      {"another site", "cross-site", "", Sender::Elsewhere},
      {"a word that nobody knows", "same-planet", "http://console:8080", Sender::Elsewhere},
      {"the user's own hand", "none", "", Sender::ThisSite},
      {"the user's own hand, with an origin", "none", "http://console:8080", Sender::ThisSite},
      {"the user's own hand does not excuse an origin", "none", "http://evil.example", Sender::Elsewhere},
      {"only an origin", "", "http://console:8080", Sender::ThisSite},
      {"an origin in other letters", "", "https://CONSOLE:8080", Sender::ThisSite},
      {"only another origin", "", "http://console:8081", Sender::Elsewhere},
      {"an origin that begins like this one", "", "http://console:80801", Sender::Elsewhere},
      {"an origin that hides", "", "null", Sender::Elsewhere},
      {"nothing", "", "", Sender::Untold},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    host::PageRequest request;
    request.serverVariables = {{"HTTP_HOST", "console:8080"}};
    if (*c.site) request.serverVariables.emplace_back("HTTP_SEC_FETCH_SITE", c.site);
    if (*c.origin) request.serverVariables.emplace_back("HTTP_ORIGIN", c.origin);
    EXPECT_EQ(SenderOf(request), c.sender);
  }
}

}  // namespace
}  // namespace kalvo::test
