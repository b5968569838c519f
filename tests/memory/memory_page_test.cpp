#include "kalvo/memory/memory_page.h"

#include <gtest/gtest.h>

#include "support/error_of.h"

namespace kalvo::test {
namespace {

TEST(MemoryRequest, AnswersItsParametersWhateverTheirCase) {
  MemoryRequest request({{"Sort", "Name"}, {"First", "11"}}, "/servers");
  EXPECT_EQ(request.QueryKeys(), (std::vector<std::string>{"Sort", "First"}));
  EXPECT_EQ(request.QueryCount("SORT"), 1);
  EXPECT_EQ(request.QueryCount("Page"), 0);
  EXPECT_EQ(request.QueryItem("first", 1), "11");
  EXPECT_EQ(request.QueryText("Sort"), "Name");
  EXPECT_EQ(request.QueryText("Page"), "");
  EXPECT_EQ(request.Item("Sort"), "Name");
  EXPECT_EQ(request.Item("url"), "/servers");
  EXPECT_EQ(request.ServerVariable("URL"), "/servers");
  EXPECT_EQ(request.ServerVariable("LOGON_USER"), "");
  EXPECT_EQ(ErrorOf([&] { request.QueryItem("Sort", 2); }).Number(), 9);
  EXPECT_EQ(ErrorOf([&] { request.QueryItem("Page", 1); }).Number(), 9);
}

TEST(MemoryServer, EncodesForHtmlAndForAddresses) {
  MemoryServer server;
  std::string html, url;
  server.HTMLEncode(html, "a<b> & \"c\" \u00FC");
  server.URLEncode(url, "a.b-c_d e\u00FC9Z");
  EXPECT_EQ(html, "a&lt;b&gt; &amp; &quot;c&quot; \u00FC");
  EXPECT_EQ(url, "a%2Eb%2Dc%5Fd+e%C3%BC9Z");
}

TEST(MemorySession, HoldsNothing) {
  MemorySession session;
  EXPECT_TRUE(IsEmpty(session.Item("KalvoAdministrator")));
  EXPECT_EQ(ErrorOf([&] { session.StaticObject("gLiveDriller"); }).Number(), 424);
}

TEST(MemoryPage, KeepsWhatIsWritten) {
  MemoryPage page;
  page.GetResponse()->Write("<p>");
  page.GetResponse()->Flush();
  page.GetResponse()->Write("</p>");
  EXPECT_EQ(page.Html(), "<p></p>");
  EXPECT_EQ(page.GetRequest()->ServerVariable("URL"), "/report.asp");
}

}  // namespace
}  // namespace kalvo::test
