#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/display.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

class Cells : public testing::Test {
 protected:
  PageFixture page_;
  Display& display_ = *page_.display;
};

TEST_F(Cells, ContentIsTrimmedOnlyToFindOutWhetherThereIsAny) {
  const struct {
    const char* why;
    const char* content;
    const char* cell;
  } kCases[] = {
      {"nothing", "", "<td>&nbsp;</td>"},
      {"blanks alone", "   ", "<td>&nbsp;</td>"},
      {"tabs alone", "\t\t", "<td>&nbsp;</td>"},
      {"content keeps its blanks", " x ", "<td> x </td>"},
      {"a line break is content", "\r\n", "<td>\r\n</td>"},
      {"content is not encoded", "<b>&</b>", "<td><b>&</b></td>"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.SimpleRowData(c.content), c.cell);
  }
  EXPECT_EQ(display_.EmptyRowData(), "<td>&nbsp;</td>");
}

TEST_F(Cells, AttributesComeInAFixedOrder) {
  EXPECT_EQ(display_.MultipleRowData("12", true, 2, 3, "right"s, "top"s, true, "#CCCCCC"s),
            "<th rowspan=\"2\" colspan=\"3\" nowrap align=\"right\" valign=\"top\" bgcolor=\"#CCCCCC\">12</th>");
}

TEST_F(Cells, AttributeValuesAreEncoded) {
  EXPECT_EQ(display_.MultipleRowData("x", false, 1, 1, "a\"b"s, "<"s, false, "&"s),
            "<td align=\"a&quot;b\" valign=\"&lt;\" bgcolor=\"&amp;\">x</td>");
}

TEST_F(Cells, SpansCountAboveOne) {
  const struct {
    const char* why;
    Value count;
    const char* attribute;
  } kCases[] = {
      {"two", std::int32_t{2}, "=\"2\""},
      {"text", "3"s, "=\"3\""},
      {"one", std::int32_t{1}, ""},
      {"none", std::int32_t{0}, ""},
      {"negative", -4.0, ""},
      {"null", Null{}, ""},
      {"empty", Empty{}, ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto span = [&](const char* name) { return *c.attribute ? " "s + name + c.attribute : ""s; };
    EXPECT_EQ(display_.MultipleRowData("a", false, c.count, 1, ""s, ""s, false, ""s),
              "<td" + span("rowspan") + ">a</td>");
    EXPECT_EQ(display_.MultipleRowData("a", false, 1, c.count, ""s, ""s, false, ""s),
              "<td" + span("colspan") + ">a</td>");
  }
}

TEST_F(Cells, OnlyTrueItselfKeepsACellFromWrapping) {
  const struct {
    const char* why;
    Value noWrap;
    bool kept;
  } kCases[] = {
      {"true", true, true},
      {"true as a number", std::int32_t{-1}, true},
      {"1 does not count", std::int32_t{1}, false},
      {"false", false, false},
      {"null", Null{}, false},
      {"empty", Empty{}, false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.MultipleRowData("a", false, 1, 1, ""s, ""s, c.noWrap, ""s),
              c.kept ? "<td nowrap>a</td>" : "<td>a</td>");
  }
}

TEST_F(Cells, AHeaderCellIsOneForAnyTrueValue) {
  EXPECT_EQ(display_.MultipleRowData("a", std::int32_t{1}, 1, 1, ""s, ""s, false, ""s), "<th>a</th>");
  EXPECT_EQ(display_.MultipleRowData("a", "True"s, 1, 1, ""s, ""s, false, ""s), "<th>a</th>");
  EXPECT_EQ(display_.MultipleRowData("a", Null{}, 1, 1, Null{}, Empty{}, false, Null{}), "<td>a</td>");
}

TEST_F(Cells, AReportsTableBeginsAndEndsWithLineBreaks) {
  EXPECT_EQ(display_.DetailTableStart("x"), "\r\n<table border=\"1\" cellpadding=\"2\" cellspacing=\"0\">\r\n");
  EXPECT_EQ(display_.DetailTableEnd(), "\r\n</table>\r\n");
}

constexpr char kHeaderStart[] =
    "<th align=\"center\" valign=\"bottom\"><div align=\"center\"><center>"
    "<table border=\"0\" cellpadding=\"2\" cellspacing=\"0\">\r\n<tr>";
constexpr char kHeaderEnd[] = "</table></center></div>\r\n</th>";

TEST_F(Cells, AHeaderCellHoldsATableOfItsTitleAndItsArrows) {
  display_.DetailTableStart("2chart");
  EXPECT_EQ(display_.TableHeaderCell("Size", "u?a=1&b=2", "d", "line", "history"),
            kHeaderStart +
                "<th align=\"center\" valign=\"bottom\">Size</th></tr>\r\n"
                "<tr><td nowrap align=\"center\">"
                "<a href=\"u?a=1&amp;b=2#2chart\"><img alt=\"Sort Ascending\" border=\"0\" "
                "src=\"../Images/Controls/Up.gif\" width=\"20\" height=\"16\"></a>"
                "<a href=\"d#2chart\"><img alt=\"Sort Descending\" border=\"0\" "
                "src=\"../Images/Controls/Down.gif\" width=\"20\" height=\"16\"></a>"
                "</td></tr>\r\n"s +
                kHeaderEnd);
}

TEST_F(Cells, TheDownLinkAloneDecidesAboutTheArrows) {
  const std::string blank =
      kHeaderStart +
      "<th align=\"center\" valign=\"bottom\">&nbsp;</th></tr>\r\n"
      "<tr><td nowrap align=\"center\"><img border=\"0\" src=\"../Images/Controls/BlankSort.gif\" width=\"17\" "
      "height=\"16\"></td></tr>\r\n"s +
      kHeaderEnd;
  EXPECT_EQ(display_.TableHeaderCell("", "u", "", "", ""), blank);
  EXPECT_EQ(display_.TableHeaderCell(" ", "", "", "line", "history"), blank);
  EXPECT_NE(display_.TableHeaderCell("", "", "d", "", "").find("<a href=\"\"><img alt=\"Sort Ascending\""),
            std::string::npos);
}

TEST_F(Cells, TheArrowsAreMadeBeforeTheirCell) {
  display_.DetailTableStart("bm");
  page_.page->server->steps.done.clear();
  display_.TableHeaderCell("T", "up", "down", "", "");
  EXPECT_EQ(page_.page->server->steps.SeenByThePage(),
            (std::vector<std::string>{"HTMLEncode(center)", "HTMLEncode(bottom)", "HTMLEncode(center)",
                                      "HTMLEncode(bottom)", "URLEncode(bm)", "HTMLEncode(up#bm)", "URLEncode(bm)",
                                      "HTMLEncode(down#bm)", "HTMLEncode(center)"}));
}

TEST_F(Cells, NoWrapIsExactlyTrueOrMinusOne) {
  const struct {
    const char* why;
    Value noWrap;
    bool wraps;
  } kCases[] = {
      {"true", true, false},
      {"false", false, true},
      {"-1", std::int32_t{-1}, false},
      {"-1 of 64 bits", std::int64_t{-1}, false},
      {"-1 with a point", -1.0, false},
      {"1", std::int32_t{1}, true},
      {"1 of 64 bits", std::int64_t{1}, true},
      {"1 with a point", 1.0, true},
      {"-1 as text", "-1"s, true},
      {"null", Null{}, true},
      {"empty", Empty{}, true},
      {"a date", Date{-1}, true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(display_.MultipleRowData("x", false, 1, 1, ""s, ""s, c.noWrap, ""s),
              c.wraps ? "<td>x</td>" : "<td nowrap>x</td>");
  }
}

}  // namespace
}  // namespace kalvo::test
