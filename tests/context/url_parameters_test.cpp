#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

// A page whose table of that number is being built.
struct TablePage : PageFixture {
  TablePage(std::string_view query, int table) : PageFixture(query) {
    for (int i = 0; i < table; ++i) context->IncrementTableIndex();
  }
};

TEST(TableUrl, ReplacesThisTablesStateAndKeepsTheRest) {
  const struct {
    const char* why;
    const char* query;
    int table;
    const char* url;
  } kCases[] = {
      {"nothing but the new state", "", 1, "?Sort=Size&SortOrder=DESC&First=1&PageSize=20"},
      {"other parameters first", "Server=S1&Sort=Name&SortOrder=ASC", 1,
       "?Server=S1&Sort=Size&SortOrder=DESC&First=1&PageSize=20"},
      {"an empty position for the table before", "", 2,
       "?Sort=&Sort=Size&SortOrder=&SortOrder=DESC&First=&First=1&PageSize=&PageSize=20"},
      {"tables that come later keep theirs", "Sort=Name&Sort=Owner&Sort=Date&First=7", 2,
       "?Sort=Name&Sort=Size&Sort=Date&SortOrder=&SortOrder=DESC&First=7&First=1&PageSize=&PageSize=20"},
      {"odd spellings of the parameters are normal again", "sORT=Name", 2,
       "?Sort=Name&Sort=Size&SortOrder=&SortOrder=DESC&First=&First=1&PageSize=&PageSize=20"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    TablePage page(c.query, c.table);
    EXPECT_EQ(page.context->TableURL("Size", "DESC", "1", "20"),
              std::string("/KalvoforExchange/Tasks/Page.asp") + c.url);
  }
}

TEST(TableUrl, ValuesAreEncodedAndComeBackDecoded) {
  TablePage page("Sort=a%26b%3Dc+d", 1);
  EXPECT_EQ(page.context->TableSortFieldInformation(), "a&b=c d");
  EXPECT_EQ(page.context->TableURL(page.context->TableSortFieldInformation(), "", "-1", ""),
            "/KalvoforExchange/Tasks/Page.asp?Sort=a%26b%3Dc+d&SortOrder=&First=%2D1&PageSize=");
}

TEST(TableUrl, OneParameterHasAPositionForEveryTable) {
  const struct {
    const char* why;
    const char* query;
    int table;
    const char *separator, *value, *parameter;
  } kCases[] = {
      {"the value of a later table stays", "Sort=Name&Sort=Size", 1, "&", "Owner", "&Sort=Owner&Sort=Size"},
      {"a position without a value", "Sort=Name", 3, "&", "Date", "&Sort=Name&Sort=&Sort=Date"},
      {"the separator comes once", "Sort=Name", 2, "", "Date", "Sort=Name&Sort=Date"},
      {"any separator", "", 2, ";", "x y", ";Sort=&Sort=x+y"},
      {"no table yet keeps what the request has", "Sort=Name&Sort=Size", 0, "&", "x", "&Sort=Name&Sort=Size"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    TablePage page(c.query, c.table);
    const auto count = static_cast<std::int16_t>(page.page->request->QueryCount("Sort"));
    EXPECT_EQ(page.context->TableURLParameter(c.separator, "Sort", count, c.value), c.parameter);
  }
}

TEST(TableState, EachTableReadsItsOwnPosition) {
  TablePage page("Sort=Name&Sort= Size &SortOrder=asc&First=11&PageSize=20", 1);
  EXPECT_EQ(page.context->TableSortFieldInformation(), "Name");
  EXPECT_EQ(page.context->TableSortOrderInformation(), "asc");
  EXPECT_EQ(page.context->TableFirstRowInformation(), 11);
  EXPECT_EQ(page.context->TablePageSizeInformation(), 20);
  page.context->IncrementTableIndex();
  EXPECT_EQ(page.context->TableSortFieldInformation(), " Size ") << "as it is, not trimmed";
  EXPECT_EQ(page.context->TableSortOrderInformation(), "");
  EXPECT_EQ(page.context->TableFirstRowInformation(), 0);
  EXPECT_EQ(page.context->TablePageSizeInformation(), 0);
}

TEST(TableState, RowAndPageTextsAreNumbersThatRoundHalvesToEven) {
  const struct {
    const char* text;
    std::int16_t number;
  } kCases[] = {
      {"11", 11}, {"2.5", 2}, {"3.5", 4},         {"1e2", 100},       {"-1", -1},   {" 7 ", 7},
      {"abc", 0}, {"", 0},    {"32767.4", 32767}, {"-32768", -32768}, {"1,000", 0}, {"0x10", 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.text);
    TablePage page(std::string("First=") + c.text + "&PageSize=" + c.text, 1);
    EXPECT_EQ(page.context->TableFirstRowInformation(), c.number);
    EXPECT_EQ(page.context->TablePageSizeInformation(), c.number);
  }
}

TEST(TableState, ANumberBeyond16BitsOverflows) {
  for (const char* text : {"32768", "-32769", "40000", "1e9", "1e400"}) {
    SCOPED_TRACE(text);
    TablePage page(std::string("First=") + text + "&PageSize=" + text, 1);
    EXPECT_EQ(ErrorOf([&] { page.context->TableFirstRowInformation(); }).Number(), 6);
    EXPECT_EQ(ErrorOf([&] { page.context->TablePageSizeInformation(); }).Number(), 6);
  }
}

TEST(TableState, BeforeTheFirstTableTheRequestIsAskedForItemZero) {
  TablePage page("Sort=Name", 0);
  EXPECT_EQ(ErrorOf([&] { page.context->TableSortFieldInformation(); }).Number(), 9);
}

}  // namespace
}  // namespace kalvo::test
