#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/display.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

class Forms : public testing::Test {
 protected:
  PageFixture page_;
  Display& display_ = *page_.display;
};

TEST_F(Forms, AnAttributeIsEncodedAndQuoted) {
  EXPECT_EQ(display_.AddInputField("value"s, "a<\"b\">&c"s), " value=\"a&lt;&quot;b&quot;&gt;&amp;c\"");
  EXPECT_EQ(display_.AddInputField("value"s, Null{}), " value=\"\"");
  EXPECT_EQ(display_.AddInputField("a b"s, std::int32_t{7}), " a b=\"7\"");
}

TEST_F(Forms, AnAttributeWithoutAValueIsLeftOut) {
  const struct {
    const char* why;
    Value value;
    const char* attribute;
  } kCases[] = {
      {"null", Null{}, ""},
      {"empty", Empty{}, ""},
      {"no text", ""s, ""},
      {"zero is a value", std::int32_t{0}, " value=\"0\""},
      {"false is a value", false, " value=\"False\""},
      {"a blank is a value", " "s, " value=\" \""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.AddInputFieldIfNotNull("value"s, c.value), c.attribute);
  }
}

TEST_F(Forms, AnImageBeginsWithItsAlternativeTextAndEncodesNothing) {
  const Image up("../Images/Controls/Up.gif", 20, 16);
  EXPECT_EQ(display_.GraphicInput(up, "Sort Ascending"s),
            "<img alt=\"Sort Ascending\" border=\"0\" src=\"../Images/Controls/Up.gif\" width=\"20\" height=\"16\">");
  EXPECT_EQ(display_.GraphicInput(Image("a&b", 1, 2), "<\">"s),
            "<img alt=\"<\">\" border=\"0\" src=\"a&b\" width=\"1\" height=\"2\">");
  EXPECT_EQ(display_.GraphicInput(up, Null{}),
            "<img border=\"0\" src=\"../Images/Controls/Up.gif\" width=\"20\" height=\"16\">");
}

TEST_F(Forms, AnInputIsLeftOpen) {
  EXPECT_EQ(display_.FormInputTypeName("text"s, "a&b"s), "<input type=\"text\" name=\"a&amp;b\"");
}

TEST_F(Forms, AnAnchorEncodesItsBookmarkAndThenItsWholeLink) {
  const struct {
    const char* why;
    const char *link, *bookmark, *target, *anchor;
  } kCases[] = {
      {"a link alone", "x.asp", "", "", "<a href=\"x.asp\">"},
      {"bookmark and target", "x.asp", "r 1", "_top", "<a href=\"x.asp#r+1\" target=\"_top\">"},
      {"ampersands of the link", "a.asp?x=1&y=2", "", "", "<a href=\"a.asp?x=1&amp;y=2\">"},
      {"a bookmark's are encoded for the URL first", "a.asp", "a&b", "", "<a href=\"a.asp#a%26b\">"},
      {"no link", "", "", "", "<a href=\"\">"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.AnchorStart(c.link, c.bookmark, c.target), c.anchor);
    EXPECT_EQ(display_.Anchor(c.link, c.bookmark, c.target, "<b>&"), c.anchor + "<b>&</a>"s);
  }
  EXPECT_EQ(display_.AnchorStart("x.asp"), "<a href=\"x.asp\">");
}

TEST_F(Forms, ACheckboxMayBeEditedOrIsAPicture) {
  EXPECT_EQ(display_.FormCheckboxInput("Sel"s, "42"s, true, "Pick(42)"s, true),
            "<input type=\"checkbox\" name=\"Sel\" value=\"42\" Checked OnClick=\"Pick(42)\">");
  EXPECT_EQ(display_.FormCheckboxInput("Sel"s, "&nbsp;"s, false, "a(\"b\")"s, true),
            "<input type=\"checkbox\" name=\"Sel\" value=\"&amp;nbsp;\" OnClick=\"a(&quot;b&quot;)\">");
  EXPECT_EQ(display_.FormCheckboxInput("Sel"s, Null{}, false, Empty{}, true), "<input type=\"checkbox\" name=\"Sel\">");
  EXPECT_EQ(display_.FormCheckboxInput("c"s, "1"s, false, ""s, false),
            "<img border=\"0\" src=\"../Images/Controls/EmptyCheck.gif\" width=\"16\" height=\"16\">");
  EXPECT_EQ(display_.FormCheckboxInput("c"s, "1"s, true, ""s, false),
            "<img border=\"0\" src=\"../Images/Controls/Check.gif\" width=\"16\" height=\"16\">");
}

TEST_F(Forms, TheDeleteFormEncodesNothing) {
  EXPECT_EQ(display_.DeleteMessageForm("S&1", "M\"", "F<", "I>", -1, "../x.asp?a=1&b=2"),
            "<form method=\"get\" action=\"/KalvoforExchange/Configuration/Process.asp\" target=\"_top\" "
            "onSubmit=\"return ConfirmDeleteMessage()\">\r\n"
            "<input type=\"hidden\" name=\"ProcessType\" value=\"DeleteMessage\">\r\n"
            "<input type=\"hidden\" name=\"ServerName\" value=\"S&1\">\r\n"
            "<input type=\"hidden\" name=\"MailboxName\" value=\"M\"\">\r\n"
            "<input type=\"hidden\" name=\"FolderId\" value=\"F<\">\r\n"
            "<input type=\"hidden\" name=\"MessageId\" value=\"I>\">\r\n"
            "<input type=\"hidden\" name=\"Flags\" value=\"-1\">\r\n"
            "<input type=\"hidden\" name=\"Continue\" value=\"../x.asp?a=1&b=2\">\r\n"
            "<input type=\"submit\" name=\"Delete\" value=\"Delete\">\r\n"
            "</form>");
}

}  // namespace
}  // namespace kalvo::test
