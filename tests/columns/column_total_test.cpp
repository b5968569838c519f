#include <gtest/gtest.h>

#include "column_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

TEST(ColumnTotal, TheFirstCellCarriesTheLabelWhateverItsColumnIs) {
  const struct {
    const char* why;
    ColumnTotalState state;
    KalvoTableFormatType format;
  } kCases[] = {
      {"a column with a total", column_KeepTotal, FORMATTYPE_NUMBER},
      {"a column without", column_NoTotal, FORMATTYPE_NOFORMATING},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.totalState = c.state;
    page.column.formatType = c.format;
    page.column.align = "right";
    page.column.columns = 2;
    page.row.fields = {{"Value", "5"}};
    bool firstCell = true;
    EXPECT_EQ(page.Total(firstCell), "<td><strong>TOTAL</strong></td>");
    EXPECT_FALSE(firstCell);
    EXPECT_EQ(page.Read(), "");
  }
}

TEST(ColumnTotal, AColumnWithoutATotalIsAPlainEmptyCell) {
  ColumnFixture page;
  page.column.totalState = column_NoTotal;
  page.column.formatType = FORMATTYPE_NUMBER;
  page.column.align = "right";
  page.row.fields = {{"Value", "5"}};
  EXPECT_EQ(page.Total(), "<td>&nbsp;</td>");
  EXPECT_EQ(page.Read(), "");
}

TEST(ColumnTotal, ASumIsBoldInTheColumnsLayout) {
  ColumnFixture page;
  page.column.formatType = FORMATTYPE_NUMBER;
  page.column.align = "right";
  page.column.columns = 2;
  page.column.noWrap = true;
  page.row.fields = {{"Value", "1234"}};
  EXPECT_EQ(page.Total(), "<td colspan=\"2\" nowrap align=\"right\"><strong>1,234</strong></td>");
}

TEST(ColumnTotal, OnlyNumbersHaveSums) {
  const struct {
    const char* why;
    KalvoTableFormatType format;
    const char *sum, *shown, *read;
  } kCases[] = {
      {"a number", FORMATTYPE_NUMBER, "5", "5", "Value"},
      {"a scaled number", FORMATTYPE_NUMERICVALUE, "1536", "1.50KB", "Value"},
      {"zero", FORMATTYPE_NUMERICVALUE, "0", "0.00KB", "Value"},
      {"no sum", FORMATTYPE_NUMBER, "", "&nbsp;", "Value"},
      {"one blank", FORMATTYPE_NUMERICVALUE, " ", "&nbsp;", "Value"},
      {"a date", FORMATTYPE_DATETIME, "5", "&nbsp;", ""},
      {"a time", FORMATTYPE_TIME, "5", "&nbsp;", ""},
      {"text", FORMATTYPE_NOFORMATING, "5", "&nbsp;", ""},
      {"a picture", FORMATTYPE_IMAGE, "5", "&nbsp;", ""},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    ColumnFixture page;
    page.column.formatType = c.format;
    page.column.dataScale = 1024;
    page.column.units = "KB";
    page.row.fields = {{"Value", c.sum}};
    EXPECT_EQ(page.Total(), std::string("<td><strong>") + c.shown + "</strong></td>");
    EXPECT_EQ(page.Read(), c.read);
  }
}

TEST(ColumnTotal, ASumThatIsNoNumberFails) {
  ColumnFixture page;
  page.column.formatType = FORMATTYPE_NUMBER;
  page.row.fields = {{"Value", "  "}};  // two blanks are not one
  EXPECT_EQ(ErrorOf([&] { page.Total(); }).Number(), 13);
}

TEST(ColumnTotal, ASumIsReadBeforeItsCellIsMade) {
  ColumnFixture page;
  page.column.formatType = FORMATTYPE_NUMBER;
  page.column.align = "right";
  page.row.fields = {{"Value", "5"}};
  const auto column = std::make_shared<KalvoColumn>(page.column);
  page.row.steps.When("GetField", [&] {
    column->Initialize(COL_CURRENTALERTS_ALERT, "", "", HYPERLINK_NONE, "", "", column_KeepTotal, false,
                       FORMATTYPE_NUMBER, 0, "", 1, 2, "center", false, "");
  });
  bool first = false;
  EXPECT_EQ(column->ConstructHTMLTotal(*page.context, *page.display, page.row, first),
            "<td colspan=\"2\" align=\"center\"><strong>5</strong></td>");
}

}  // namespace
}  // namespace kalvo::test
