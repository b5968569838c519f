#include "columns/stored_cell.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "columns/row_fields.h"
#include "fakes/page_fixture.h"
#include "fakes/stored_rows.h"
#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/control_column.h"

namespace kalvo::test {
namespace {

using Kind = StoredValue::Kind;

// What a cell over a stored row is: its bytes, or the error that it fails with.
std::string BoundCell(TableColumn& column, PageFixture& page, StoredRowSource& rows) {
  const auto bound = column.Bind(*page.context, *page.display, rows);
  if (!bound) return "asked";
  PageText out;
  try {
    return bound->AppendCell(out, rows.StoredRow()) ? std::string(out.View()) : "asked";
  } catch (const Error& error) {
    return "fails with " + std::to_string(error.Number());
  }
}

// The same cell, its fields asked for by their names.
std::string AskedFor(TableColumn& column, PageFixture& page, StoredRowSource& rows) {
  try {
    std::string out;
    column.AppendData(out, *page.context, *page.display, rows);
    return out;
  } catch (const Error& error) {
    return "fails with " + std::to_string(error.Number());
  }
}

// ---- every column over every kind of value --------------------------------------------------------------

const char* const kTexts[] = {"",
                              " ",
                              "\t ",
                              "0",
                              "1",
                              "2",
                              "5018",
                              "5023",
                              "Server",
                              "server",
                              "MAILBOX",
                              "Mailbox Group",
                              "Public folder",
                              "Server Group",
                              "a<b>&\"c\"",
                              "EXCH 01",
                              "1/2/1999 3:04:05 PM",
                              "1/2/1950",
                              "1999-01-02",
                              "12.345",
                              "-7",
                              "1E+20",
                              "no number",
                              "\xC3\xAB\xE2\x82\xAC",
                              "A long text, longer than a block of it"};

void AddAnyValue(StoredRowSource& rows, const std::string& name, std::mt19937& random) {
  const auto whole = [&](std::int64_t limit) { return static_cast<std::int64_t>(random() % limit); };
  const double fraction = static_cast<double>(random()) / 4294967296.0;
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  switch (random() % 13) {
    case 0: return rows.Add(name, StoredValue{});
    case 12: return rows.AddBoolean(name, random() % 2 == 0);
    case 1: return rows.AddInteger(name, whole(4));
    case 2: return rows.AddInteger(name, whole(2'000'000'000) - 1'000'000'000);
    case 3: return rows.AddInteger(name, std::numeric_limits<std::int64_t>::max() - whole(1000));
    case 4: return rows.AddNumber(name, static_cast<double>(whole(3'000'000)) - 1000, Kind::Double);
    case 5: return rows.AddNumber(name, (fraction - 0.1) * 1e7, Kind::Double);
    case 6: return rows.AddNumber(name, static_cast<double>(whole(100'000)) / 200 * 1024, Kind::Double);
    case 7: return rows.AddNumber(name, std::pow(10, fraction * 300), Kind::Double);
    case 8: return rows.AddNumber(name, 36000 + fraction * 10'000, Kind::Date);
    case 9: return rows.AddNumber(name, random() % 4 == 0 ? kNone : (fraction - 0.2) * 3e6, Kind::Date);
    case 10: return rows.AddText(name, "ab\x01\x7F", Kind::Binary);
    default: return rows.AddText(name, kTexts[random() % std::size(kTexts)]);
  }
}

// Every field that a column of the catalogue may read, each of any value.
void AddAnyRow(StoredRowSource& rows, const ColumnDefinition& column, std::mt19937& random) {
  AddAnyValue(rows, column.databaseField, random);
  for (const RowFieldRow& field : kRowFields) AddAnyValue(rows, std::string(field.name), random);
}

TEST(StoredCell, IsTheCellThatIsMadeByName) {
  PageFixture page;
  const KalvoColumnDatabase catalogue;
  std::mt19937 random(11);
  int bound = 0;
  for (std::int16_t id = 1; id <= COL_TOTALCOLUMNS; ++id) {
    const auto column = std::dynamic_pointer_cast<KalvoColumn>(catalogue.GetColumn(id));
    if (!column) continue;
    for (int i = 0; i < 200; ++i) {
      StoredRowSource rows;
      AddAnyRow(rows, column->Definition(), random);
      const std::string cell = BoundCell(*column, page, rows);
      if (cell == "asked") break;
      ++bound;
      ASSERT_EQ(cell, AskedFor(*column, page, rows)) << id << " " << i;
    }
  }
  EXPECT_GT(bound, 80 * 200) << "most columns can be bound";
}

TEST(StoredCell, EveryFormatAndLinkShowsWhatItDoesByName) {
  PageFixture page;
  std::mt19937 random(12);
  for (std::int32_t format = 0; format <= 18; ++format) {
    for (std::int32_t link = -1; link <= 22; ++link) {
      ColumnDefinition definition;
      definition.databaseField = "Value";
      definition.formatType = static_cast<KalvoTableFormatType>(format);
      definition.hyperLinkType = static_cast<KalvoTableHyperlinkType>(link);
      definition.dataScale = link % 3 == 0 ? 0 : 1024;
      definition.units = "<KB>";
      definition.align = "right\"";
      definition.columns = 2;
      definition.noWrap = link % 2 == 0;
      KalvoColumn column(definition);
      for (int i = 0; i < 20; ++i) {
        StoredRowSource rows;
        AddAnyRow(rows, definition, random);
        const std::string cell = BoundCell(column, page, rows);
        if (cell == "asked") break;
        ASSERT_EQ(cell, AskedFor(column, page, rows)) << format << " " << link;
      }
    }
  }
}

TEST(StoredCell, NumbersAndDatesAreThoseOfThePagesLocale) {
  std::mt19937 random(13);
  for (const Locale& locale : kLocales) {
    PageFixture page;
    page.display = std::make_shared<Display>(locale);
    page.display->OnStartPage(*page.page);
    for (const auto format : {FORMATTYPE_NUMBER, FORMATTYPE_NUMERICVALUE}) {
      ColumnDefinition definition;
      definition.databaseField = "Value";
      definition.formatType = format;
      KalvoColumn column(definition);
      for (int i = 0; i < 200; ++i) {
        StoredRowSource rows;
        AddAnyRow(rows, definition, random);
        ASSERT_EQ(BoundCell(column, page, rows), AskedFor(column, page, rows)) << locale.name;
      }
    }
  }
}

TEST(StoredCell, EveryColumnIsTheSameWithoutAnyOneOfItsFields) {
  PageFixture page;
  const KalvoColumnDatabase catalogue;
  std::mt19937 random(14);
  for (std::int16_t id = 1; id <= COL_TOTALCOLUMNS; ++id) {
    const auto column = std::dynamic_pointer_cast<KalvoColumn>(catalogue.GetColumn(id));
    if (!column) continue;
    for (const RowFieldRow& without : kRowFields) {
      StoredRowSource rows;
      AddAnyValue(rows, column->Definition().databaseField, random);
      for (const RowFieldRow& field : kRowFields) {
        if (field.field != without.field) AddAnyValue(rows, std::string(field.name), random);
      }
      const std::string cell = BoundCell(*column, page, rows);
      if (cell == "asked") continue;
      ASSERT_EQ(cell, AskedFor(*column, page, rows)) << id << " " << without.name;
    }
  }
}

// ---- what is not bound ----------------------------------------------------------------------------------

struct Unbound {
  const char* why;
  KalvoTableFormatType format;
  KalvoTableHyperlinkType link;
  const char* field;  // of the row
};

TEST(StoredCell, ACellThatNeedsThePageOrAMissingFieldIsAsked) {
  const Unbound kCases[] = {
      {"a field that the rows lack", FORMATTYPE_NOFORMATING, HYPERLINK_NONE, "Other"},
      {"a link's field that they lack", FORMATTYPE_NOFORMATING, HYPERLINK_SERVER, "Value"},
      {"a picture", FORMATTYPE_IMAGE, HYPERLINK_NONE, "Value"},
      {"a box of a group's member", FORMATTYPE_MEMBERSHIPCHECKBOX, HYPERLINK_NONE, "Value"},
      {"a link with the page's mailbox", FORMATTYPE_NOFORMATING, HYPERLINK_MAPI_FOLDERNAME, "Value"},
  };
  PageFixture page;
  for (const Unbound& c : kCases) {
    ColumnDefinition definition;
    definition.databaseField = "Value";
    definition.formatType = c.format;
    definition.hyperLinkType = c.link;
    StoredRowSource rows;
    rows.AddInteger(c.field, 1);
    KalvoColumn column(definition);
    EXPECT_EQ(BoundCell(column, page, rows), "asked") << c.why;
  }
}

TEST(StoredCell, ScaledNumbersAreThoseThatAreAskedFor) {
  PageFixture page;
  ColumnDefinition definition;
  definition.databaseField = "Value";
  definition.formatType = FORMATTYPE_NUMERICVALUE;
  definition.units = "KB";
  // Whole numbers too: their text ends to be exact at 1E+15.
  for (const double number : {-1024.0, -1.0, -0.75, -0.5, -0.0, 0.0, 0.25, 1.0, 100.0, 100'000.0, 1e15, 1e15 + 1}) {
    for (const std::int32_t scale : {-1, 0, 1, 1024}) {
      definition.dataScale = scale;
      KalvoColumn column(definition);
      StoredRowSource rows;
      rows.AddNumber("Value", number, Kind::Double);
      EXPECT_EQ(BoundCell(column, page, rows), AskedFor(column, page, rows)) << number << " by " << scale;
    }
  }
}

TEST(StoredCell, BehindTheLastRowEveryFieldIsEmpty) {
  PageFixture page;
  StoredRowSource rows;
  rows.AddInteger("Value", 1);
  ColumnDefinition definition;
  definition.databaseField = "Value";
  const auto bound = KalvoColumn(definition).Bind(*page.context, *page.display, rows);
  PageText out;
  ASSERT_TRUE(bound->AppendCell(out, nullptr));
  EXPECT_EQ(out.View(), "<td>&nbsp;</td>");
}

TEST(StoredCell, ALongTagIsWrittenWhole) {
  PageFixture page;
  StoredRowSource rows;
  rows.AddInteger("Value", 1);
  ColumnDefinition definition;
  definition.databaseField = "Value";
  definition.align = "abcdefghijklmnopqrstuvwxyz0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  KalvoColumn column(definition);
  EXPECT_EQ(BoundCell(column, page, rows),
            "<td align=\"abcdefghijklmnopqrstuvwxyz0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ\">1</td>");
}

TEST(StoredCell, ATagTooLongToBeKeptIsAsked) {
  PageFixture page;
  StoredRowSource rows;
  rows.AddInteger("Value", 1);
  ColumnDefinition definition;
  definition.databaseField = "Value";
  definition.align = std::string(300, 'x');
  KalvoColumn column(definition);
  EXPECT_EQ(BoundCell(column, page, rows), "asked");
}

// ---- boxes ----------------------------------------------------------------------------------------------

TEST(StoredCell, BoxesAreBoundWhereTheIdentifierIsBinary) {
  PageFixture page;
  KalvoControlColumn boxes;
  boxes.Initialize(COL_CURRENTALERTS_DELETE, "Delete", "", "AlertId", false, "", true, FORMATTYPE_CHECKBOX);
  StoredRowSource rows;
  rows.AddText("AlertId", "\xA0\x01", Kind::Binary);
  EXPECT_EQ(BoundCell(boxes, page, rows), "") << "others see none";
  page.Administrator();
  EXPECT_EQ(BoundCell(boxes, page, rows),
            "<td align=\"center\"><input type=\"checkbox\" name=\"Delete\" value=\"A001\"></td>");
  StoredRowSource texts;
  texts.AddText("AlertId", "a");
  EXPECT_EQ(BoundCell(boxes, page, texts), "asked") << "an error has to be told";
  StoredRowSource empty;
  empty.AddText("AlertId", "", Kind::Binary);
  EXPECT_EQ(BoundCell(boxes, page, empty), "asked") << "its box has no value";
  StoredRowSource other;
  other.AddText("Other", "a", Kind::Binary);
  EXPECT_EQ(BoundCell(boxes, page, other), "asked") << "the field is asked for, and reported";
  const auto bound = boxes.Bind(*page.context, *page.display, rows);
  PageText out;
  EXPECT_FALSE(bound->AppendCell(out, nullptr)) << "behind the last row";
  boxes.Initialize(COL_CURRENTALERTS_DELETE, "Delete", "", "AlertId", false, "", false, FORMATTYPE_CHECKBOX);
  EXPECT_EQ(BoundCell(boxes, page, rows), "asked") << "a locked box is made call by call";
}

TEST(StoredCell, ATextGrowsWithItsCells) {
  PageText out;
  std::string expected;
  for (int i = 0; i < 5000; ++i) {
    out.Put(std::to_string(i));
    expected += std::to_string(i);
  }
  EXPECT_EQ(out.View(), expected);
}

}  // namespace
}  // namespace kalvo::test
