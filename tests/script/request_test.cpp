#include "host/script/request.h"

#include <gtest/gtest.h>

#include "platform/error.h"

namespace kalvo::host {
namespace {

using Texts = std::vector<std::string>;

TEST(NamedValuesTest, KeepsTheOrderAndTheSpellingOfFirstAppearance) {
  const NamedValues names = NamedValues::FromQuery("b=1&A=2&a=3&B=4");
  EXPECT_EQ(names.Keys(), (Texts{"b", "A"}));
  EXPECT_EQ(names.Of("a"), (Texts{"2", "3"}));
  EXPECT_EQ(names.Of("B"), (Texts{"1", "4"}));
  EXPECT_EQ(names.Of("c"), Texts{});
}

TEST(NamedValuesTest, ReadsWhateverAQueryMayHold) {
  const NamedValues names = NamedValues::FromQuery("&&x&y=&=v&a=b=c&k%3D=%26&");
  EXPECT_EQ(names.Keys(), (Texts{"x", "y", "", "a", "k="}));
  EXPECT_EQ(names.Of("x"), Texts{""});
  EXPECT_EQ(names.Of("y"), Texts{""});
  EXPECT_EQ(names.Of(""), Texts{"v"});
  EXPECT_EQ(names.Of("a"), Texts{"b=c"});
  EXPECT_EQ(names.Of("k="), Texts{"&"});
}

TEST(NamedValuesTest, ReadsCookies) {
  const NamedValues names = NamedValues::FromCookies("a=1; b=x%20y ;; c");
  EXPECT_EQ(names.Keys(), (Texts{"a", "b", "c"}));
  EXPECT_EQ(names.Of("b"), Texts{"x y"});
}

TEST(NamedValuesTest, ReadsAMegabyteOfKeys) {
  std::string query;
  while (query.size() < (1 << 20)) query += "k" + std::to_string(query.size()) + "&";
  EXPECT_GT(NamedValues::FromQuery(query).Keys().size(), 100000U);
}

TEST(RequestObjectTest, ServesTheLibrary) {
  PageRequest page;
  page.queryString = "Sort=a&sort=b&x=%FF";
  page.url = "/r.asp";
  page.logonName = "DOMAIN\\Ann";
  page.serverVariables = {{"REMOTE_ADDR", "127.0.0.1"}, {"url", "/other"}};
  RequestObject request(page);
  EXPECT_EQ(request.QueryKeys(), (Texts{"Sort", "x"}));
  EXPECT_EQ(request.QueryCount("SORT"), 2);
  EXPECT_EQ(request.QueryItem("sort", 2), "b");
  EXPECT_EQ(request.QueryText("Sort"), "a, b");
  EXPECT_EQ(request.QueryText("x"), "\xEF\xBF\xBD");
  EXPECT_EQ(request.QueryText("none"), "");
  EXPECT_EQ(request.ServerVariable("url"), "/r.asp");
  EXPECT_EQ(request.ServerVariable("Logon_User"), "DOMAIN\\Ann");
  EXPECT_EQ(request.ServerVariable("REMOTE_ADDR"), "127.0.0.1");
  EXPECT_EQ(request.ServerVariable("none"), "");
  EXPECT_THROW(request.QueryItem("sort", 3), Error);
  EXPECT_THROW(request.QueryItem("sort", 0), Error);
}

TEST(RequestObjectTest, LooksThroughItsCollectionsInOrder) {
  PageRequest page;
  page.method = "POST";
  page.queryString = "a=query";
  page.form = "a=form&b=form";
  page.cookies = "b=cookie; c=cookie; URL=cookie";
  page.url = "/u";
  RequestObject request(page);
  EXPECT_EQ(request.Item("a"), "query");
  EXPECT_EQ(request.Item("b"), "form");
  EXPECT_EQ(request.Item("C"), "cookie");
  EXPECT_EQ(request.Item("url"), "cookie");
  EXPECT_EQ(request.Item("REQUEST_METHOD"), "POST");
  EXPECT_EQ(request.Item("none"), "");
}

}  // namespace
}  // namespace kalvo::host
