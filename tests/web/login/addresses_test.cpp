#include "host/web/login/addresses.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace web;
using namespace web::login;

TEST(Addresses, OfThisConsoleAreThoseBelowItsRoot) {
  const struct {
    const char* why;
    std::string address;
    bool own;
  } kCases[] = {
      {"the root", "/KalvoforExchange/", true},
      {"a page", "/KalvoforExchange/Tasks/TopN.asp", true},
      {"a page with parameters", "/KalvoforExchange/Tasks/TopN.asp?Organization=A%26B&Sort=8#1chart", true},
      {"dots and slashes in parameters", "/KalvoforExchange/a.asp?x=//y/../z", true},
      {"nothing", "", false},
      {"another site", "http://example.org/", false},
      {"another site without a scheme", "//example.org/KalvoforExchange/", false},
      {"another site by backslashes", "/\\example.org", false},
      {"a script", "javascript:alert(1)", false},
      {"another folder of this site", "/Other/", false},
      {"the root's name alone", "/KalvoforExchange", false},
      {"a name that only begins so", "/KalvoforExchangeX/", false},
      {"a way up", "/KalvoforExchange/../Other/", false},
      {"a way up, encoded", "/KalvoforExchange/%2e%2E/Other/", false},
      {"a way up, encoded with its slash", "/KalvoforExchange/a%2f..%2fOther/", false},
      {"a way up behind a sign that ends no path", "/KalvoforExchange/a~/../Other/", false},
      {"a hidden file", "/KalvoforExchange/.git/config", false},
      {"an empty part", "/KalvoforExchange//example.org/", false},
      {"a backslash", "/KalvoforExchange/\\example.org", false},
      {"an encoded backslash", "/KalvoforExchange/%5Cexample.org", false},
      {"a line end", "/KalvoforExchange/a.asp\r\nSet-Cookie: x=1", false},
      {"an encoded line end in the path", "/KalvoforExchange/%0d%0aa.asp", false},
      {"a blank", "/KalvoforExchange/a b.asp", false},
      {"a letter beyond ASCII", "/KalvoforExchange/\xC3\xA4.asp", false},
      {"a quote", "/KalvoforExchange/\"", false},
      {"the sign-in itself", "/KalvoforExchange/SignIn.asp?Return=x", false},
      {"the sign-out", "/KalvoforExchange/signout.ASP", false},
      {"one of 2048 bytes", "/KalvoforExchange/" + std::string(2048 - 18, 'a'), true},
      {"one of 2049", "/KalvoforExchange/" + std::string(2049 - 18, 'a'), false},
      {"the first and the last sign that an address has", "/KalvoforExchange/!~", true},
      {"the sign behind them", "/KalvoforExchange/\x7F", false},
  };
  for (const auto& c : kCases) EXPECT_EQ(IsOfThisConsole(c.address), c.own) << c.why;
}

TEST(Addresses, OfTheSignInKeepWhereToGoOn) {
  EXPECT_EQ(SignInAddress("/KalvoforExchange/Tasks/TopN.asp", "Server=A&B"),
            "/KalvoforExchange/SignIn.asp?Return=%2FKalvoforExchange%2FTasks%2FTopN%2Easp%3FServer%3DA%26B");
  EXPECT_EQ(SignInAddress("/KalvoforExchange/Default.asp", ""), "/KalvoforExchange/SignIn.asp");
  EXPECT_EQ(SignInAddress("//example.org/", ""), "/KalvoforExchange/SignIn.asp");
}

}  // namespace
}  // namespace kalvo::test
