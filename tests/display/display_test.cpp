#include "kalvo/display.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

TEST(Display, TakesTheHostObjectsInTheirOrder) {
  const auto page = std::make_shared<FakePage>();
  Display().OnStartPage(*page);
  EXPECT_EQ(page->steps.SeenByThePage(),
            (std::vector<std::string>{"Response()", "Request()", "Session()", "Server()"}));
}

TEST(Display, WritesNothingToTheResponse) {
  PageFixture page;
  page.display->DetailTableStart("1chart");
  page.display->TableHeaderCell("Size", "u", "d", "l", "h");
  page.display->DeleteMessageForm("S", "M", "F", "I", 0, "C");
  EXPECT_EQ(page.Text(), "");
}

TEST(Display, BuildersThatEncodeNeedAPage) {
  Display display;
  EXPECT_EQ(ErrorOf([&] { display.AnchorStart("x.asp"); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { display.AddInputField("name"s, "value"s); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { display.AddParamToURL("x.asp", "a", "1"); }).Number(), 91);
  EXPECT_EQ(ErrorOf([&] { display.MultipleRowData("x", true, 1, 1, "left"s, ""s, false, ""s); }).Number(), 91);

  PageFixture page;
  page.display->OnEndPage();
  EXPECT_EQ(ErrorOf([&] { page.display->AnchorStart("x.asp"); }).Number(), 91);
}

TEST(Display, BuildersThatDoNotEncodeNeedNone) {
  Display display;
  EXPECT_EQ(display.TableRowStart(), "<tr>\r\n");
  EXPECT_EQ(display.TableRowEnd(), "</tr>\r\n");
  EXPECT_EQ(display.DetailTableEnd(), "\r\n</table>\r\n");
  EXPECT_EQ(display.AnchorEnd(), "</a>");
  EXPECT_EQ(display.SimpleRowData("x"), "<td>x</td>");
  EXPECT_EQ(display.GraphicInput(display.FolderGraphicID(), ""s),
            "<img border=\"0\" src=\"../Images/Folder.gif\" width=\"16\" height=\"16\">");
  EXPECT_NE(display.DeleteMessageForm("S", "M", "F", "I", 0, "C"), "");
  EXPECT_EQ(display.AddParamToURL("x.asp", "", "1"), "x.asp");
}

TEST(Display, AFailingEncoderFailsTheBuilder) {
  PageFixture page;
  page.page->server->fails = true;
  EXPECT_EQ(ErrorOf([&] { page.display->AnchorStart("x.asp"); }).Number(), codes::kFailed);
}

TEST(Display, ImagesThatAPageMayReplaceBeginAsTheConsoles) {
  const Display display;
  const struct {
    const Image& image;
    const char* path;
  } kCases[] = {
      {display.MessageGraphicID(), "../Images/Message.gif"},
      {display.FolderGraphicID(), "../Images/Folder.gif"},
      {display.AttachmentGraphicID(), "../Images/Attachment.gif"},
      {display.NoAttachmentGraphicID(), "../Images/BlankGraphSpacing.gif"},  // not the one among the controls
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.path);
    EXPECT_EQ(c.image.path, c.path);
    EXPECT_EQ(c.image.width, 16);
    EXPECT_EQ(c.image.height, 16);
  }
}

TEST(Display, AReplacedImageIsShown) {
  Display display;
  display.SetMessageGraphicID(Image("a&b.gif", 1, 2));
  EXPECT_EQ(display.GraphicInput(display.MessageGraphicID(), ""s),
            "<img border=\"0\" src=\"a&b.gif\" width=\"1\" height=\"2\">");
}

TEST(Display, ABookmarkLastsUntilTheNextTableOrPage) {
  PageFixture page;
  const auto link = [&] { return page.display->TableHeaderCell("", "u", "d", "", ""); };
  EXPECT_NE(link().find("href=\"u\""), std::string::npos);
  page.display->DetailTableStart("r 1");
  EXPECT_NE(link().find("href=\"u#r+1\""), std::string::npos);
  EXPECT_NE(link().find("href=\"d#r+1\""), std::string::npos);
  page.display->OnStartPage(*page.page);
  EXPECT_NE(link().find("href=\"u\""), std::string::npos);
}

}  // namespace
}  // namespace kalvo::test
