#include "kalvo/control_column.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "fakes/row_source.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

class ControlColumn : public testing::Test {
 protected:
  void Define(KalvoTableFormatType format) {
    column_.Initialize(COL_CURRENTALERTS_DELETE, "Delete", "unused", "Id", false, "", true, format);
  }
  std::string Header() { return column_.ConstructHTMLHeader(*page_.context, *page_.display); }
  std::string Data() { return column_.ConstructHTMLData(*page_.context, *page_.display, row_); }
  std::string Row(std::string id, std::string recipient) {
    row_.fields = {{"Id", std::move(id)}, {"RecipientName", std::move(recipient)}};
    return Data();
  }

  PageFixture page_;
  FakeRowSource row_;
  KalvoControlColumn column_;
};

std::string Box(const std::string& value) {
  return "<td align=\"center\"><input type=\"checkbox\" name=\"Delete\" value=\"" + value + "\"></td>";
}

constexpr char kNoBox[] = "<td align=\"center\">&nbsp;</td>";

TEST_F(ControlColumn, IsForAdministratorsOnly) {
  for (const auto format : {FORMATTYPE_CHECKBOX, FORMATTYPE_QVCHECKBOX, FORMATTYPE_NOFORMATING}) {
    Define(format);
    EXPECT_EQ(Header(), "");
    EXPECT_EQ(Data(), "");
    EXPECT_TRUE(row_.steps.done.empty()) << "no field is read";
  }
}

TEST_F(ControlColumn, TheHeaderIsTheNameAsItIs) {
  page_.Administrator();
  column_.Initialize(COL_CURRENTALERTS_DELETE, "A<br>&B", "", "Id", false, "", true, FORMATTYPE_CHECKBOX);
  EXPECT_EQ(Header(), page_.display->TableHeaderCell("A<br>&B", "", "", "", ""));
}

TEST_F(ControlColumn, EachRowHasABoxOfItsIdentifier) {
  page_.Administrator();
  Define(FORMATTYPE_CHECKBOX);
  EXPECT_EQ(Row("00FF", ""), Box("00FF"));
  EXPECT_EQ(row_.steps.SeenByThePage(), (std::vector<std::string>{"GetIdentifier(Id)"}));
}

TEST_F(ControlColumn, ANullIdentifierIsAnEncodedBlank) {
  page_.Administrator();
  Define(FORMATTYPE_CHECKBOX);
  row_.nullIdentifiers = true;
  EXPECT_EQ(Data(), Box("&amp;nbsp;"));
}

TEST_F(ControlColumn, AnEmptyIdentifierLeavesTheValueOut) {
  page_.Administrator();
  Define(FORMATTYPE_CHECKBOX);
  EXPECT_EQ(Row("", ""), "<td align=\"center\"><input type=\"checkbox\" name=\"Delete\"></td>");
}

TEST_F(ControlColumn, BoxesMayBeTickedScriptedAndLocked) {
  page_.Administrator();
  row_.fields = {{"Id", "1"}};
  column_.Initialize(COL_CURRENTALERTS_DELETE, "D", "", "Id", true, "Pick(\"1\")", true, FORMATTYPE_CHECKBOX);
  EXPECT_EQ(Data(),
            "<td align=\"center\"><input type=\"checkbox\" name=\"D\" value=\"1\" Checked "
            "OnClick=\"Pick(&quot;1&quot;)\"></td>");
  column_.Initialize(COL_CURRENTALERTS_DELETE, "D", "", "Id", true, "", false, FORMATTYPE_CHECKBOX);
  EXPECT_EQ(Data(),
            "<td align=\"center\"><img border=\"0\" src=\"../Images/Controls/Check.gif\" width=\"16\" "
            "height=\"16\"></td>");
}

TEST_F(ControlColumn, RowsThatFollowOneAnotherWithOneRecipientShareABox) {
  page_.Administrator();
  Define(FORMATTYPE_QVCHECKBOX);
  EXPECT_EQ(Row("1", "Ann"), Box("1"));
  EXPECT_EQ(Row("2", "Ann"), kNoBox);
  EXPECT_EQ(Row("3", "Ann"), kNoBox);
  EXPECT_EQ(Row("4", "Bob"), Box("4"));
  EXPECT_EQ(row_.steps.SeenByThePage()[0], "GetIdentifier(Id)");
  EXPECT_EQ(row_.steps.SeenByThePage()[1], "GetField(RecipientName)");
}

TEST_F(ControlColumn, ABoxIsMadeOnlyWhereItIsShown) {
  page_.Administrator();
  Define(FORMATTYPE_QVCHECKBOX);
  Row("1", "Ann");
  page_.page->server->steps.done.clear();
  Row("2", "Ann");
  EXPECT_EQ(page_.page->server->steps.SeenByThePage(), (std::vector<std::string>{"HTMLEncode(center)"}));
}

TEST_F(ControlColumn, ABoxThatFailsIsNobodys) {
  page_.Administrator();
  Define(FORMATTYPE_QVCHECKBOX);
  page_.page->server->fails = true;
  EXPECT_EQ(ErrorOf([&] { Row("1", "Ann"); }).Number(), codes::kFailed);
  page_.page->server->fails = false;
  EXPECT_EQ(Row("2", "Ann"), Box("2"));
}

// A script that serves as the row may initialise the column that is asking it.
TEST_F(ControlColumn, InitialisedAnewWhileItsCellIsMadeItGoesOnAsItIsThen) {
  page_.Administrator();
  Define(FORMATTYPE_CHECKBOX);
  row_.steps.When("GetIdentifier", [&] {
    column_.Initialize(COL_CURRENTALERTS_DELETE, "Select", "", "Other", true, "", true, FORMATTYPE_CHECKBOX);
  });
  EXPECT_EQ(Row("7", ""), "<td align=\"center\"><input type=\"checkbox\" name=\"Select\" value=\"7\" Checked></td>");
}

TEST_F(ControlColumn, ARecipientWhoComesBackGetsABoxAgain) {
  page_.Administrator();
  Define(FORMATTYPE_QVCHECKBOX);
  EXPECT_EQ(Row("1", "Ann"), Box("1"));
  EXPECT_EQ(Row("2", "Bob"), Box("2"));
  EXPECT_EQ(Row("3", "Ann"), Box("3"));
  EXPECT_EQ(Row("4", "ann"), Box("4")) << "names are compared exactly";
}

TEST_F(ControlColumn, AnAdministratorsHeaderStartsANewRun) {
  page_.Administrator();
  Define(FORMATTYPE_QVCHECKBOX);
  EXPECT_EQ(Row("1", "Ann"), Box("1"));
  page_.page->session->values.clear();
  Header();
  page_.Administrator();
  EXPECT_EQ(Row("2", "Ann"), kNoBox) << "the header of others does not";
  Header();
  EXPECT_EQ(Row("3", "Ann"), Box("3"));
}

TEST_F(ControlColumn, ANamelessRecipientOfTheFirstRowGetsNoBox) {
  page_.Administrator();
  Define(FORMATTYPE_QVCHECKBOX);
  EXPECT_EQ(Row("1", ""), kNoBox);
}

TEST_F(ControlColumn, AnyOtherFormatShowsTheFieldAsItIs) {
  page_.Administrator();
  Define(FORMATTYPE_NUMBER);
  EXPECT_EQ(Row("<b>7</b>", ""), "<td align=\"center\"><b>7</b></td>");
  EXPECT_EQ(row_.steps.SeenByThePage(), (std::vector<std::string>{"GetField(Id)"}));
}

TEST_F(ControlColumn, HasNoTotals) {
  page_.Administrator();
  Define(FORMATTYPE_CHECKBOX);
  std::string out;
  bool firstCell = true;
  EXPECT_EQ(ErrorOf([&] { column_.AppendTotal(out, *page_.context, *page_.display, row_, firstCell); }).Number(), 438);
  EXPECT_TRUE(firstCell);
}

TEST_F(ControlColumn, NeedsTheSession) {
  Define(FORMATTYPE_CHECKBOX);
  page_.context->OnEndPage();
  EXPECT_EQ(ErrorOf([&] { Header(); }).Number(), 91);
}

}  // namespace
}  // namespace kalvo::test
