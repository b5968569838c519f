#include "kalvo/db_data_src.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/memory/memory_page.h"
#include "kalvo/table.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using std::string_literals::operator""s;

std::string Report(const std::string& text, const std::string& number, const std::string& description) {
  return "<p>Error Generating Table: &nbsp;" + text + "<br>Error number: 0x" + number +
         "; &nbsp; Description: " + description + "</p>\r\n";
}

std::string Message(const std::string& text) { return "<p>Error Generating Table: &nbsp;" + text + "</p>\r\n"; }

// The source of a table on a page whose first table it is.
struct SourceFixture : PageFixture {
  explicit SourceFixture(std::string_view query = "") : PageFixture(query) {
    context->IncrementTableIndex();
    Use("select * from T order by %SORT%");
    database.results = {{{"Id", "Name"}, {{std::int32_t{1}, "Ann"s}, {std::int32_t{2}, Null{}}}},
                        {{"Sum"}, {{std::int32_t{3}}}}};
  }

  void Use(std::string_view sql, std::string_view name = "EXCH01") {
    table->Initialize(TABLETYPE_KALVODB, TABLE_CURRENTALERTS, "Test", table_ShowTotals, false, false, false, false, {},
                      sql, "Id", "ASC");
    source->Initialize(*table, name, *context);
  }
  std::string Sql() {
    source->OpenDS();
    return database.sql;
  }

  std::shared_ptr<Table> table = std::make_shared<Table>(platform);
  std::shared_ptr<KalvodbDataSrc> source = std::make_shared<KalvodbDataSrc>(platform);
};

// ---- the SQL --------------------------------------------------------------------------------------------

TEST(DbDataSrc, SortsAsTheRequestSaysOrAsTheTableDoes) {
  const struct {
    const char* why;
    const char *query, *sort;
  } kCases[] = {
      {"neither", "", "Id ASC"},
      {"a field", "Sort=Name", "Name ASC"},
      {"an order", "SortOrder=DESC", "Id DESC"},
      {"both, unchecked", "Sort=a%27;b&SortOrder=x", "a';b x"},
      {"another table's", "Sort=&Sort=Name", "Id ASC"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page(c.query);
    EXPECT_EQ(page.Sql(), "select * from T order by "s + c.sort);
  }
}

TEST(DbDataSrc, WithoutAnOrderTheSortEndsInABlank) {
  SourceFixture page;
  page.table->Initialize(TABLETYPE_KALVODB, TABLE_CURRENTALERTS, "", table_NoTotals, false, false, false, false, {},
                         "[%SORT%]", "", "");
  EXPECT_EQ(page.Sql(), "[ ]");
}

TEST(DbDataSrc, PlaceholdersAreReplacedByQuotedValues) {
  const struct {
    const char* why;
    const char *sql, *name, *completed;
  } kCases[] = {
      {"every occurrence", "%NAME% %NAME%", "A", "'A' 'A'"},
      {"an apostrophe is doubled", "%NAME%", "O'Neil's", "'O''Neil''s'"},
      {"nothing else is", "%NAME%", "a\"b\\c%", "'a\"b\\c%'"},
      {"no value", "%NAME%", "", "''"},
      {"an apostrophe alone", "%NAME%", "'", "''''"},
      {"the scope", "%ORG% %SITE% %MAILBOX%", "A", "'Org' 'Site' 'Ken%'"},
      {"case counts", "%name% %Sort%", "A", "%name% %Sort%"},
      {"a value with a later placeholder is completed again", "%NAME%", "%ORG%", "''Org''"},
      {"a value with an earlier one is not", "%NAME%", "%SORT%", "'%SORT%'"},
      {"a value with its own is not", "%NAME%", "%NAME%", "'%NAME%'"},
      {"a sort with a later one is", "%SORT%", "A", "Id ASC"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page;
    page.context->SetName("not this one");
    page.context->SetOrg("Org");
    page.context->SetSite("Site");
    page.context->SetMailbox("Ken%");
    page.Use(c.sql, c.name);
    EXPECT_EQ(page.Sql(), c.completed);
  }
}

TEST(DbDataSrc, ASortTextIsInsertedAsItStands) {
  SourceFixture page("Sort=%25NAME%25");
  EXPECT_EQ(page.Sql(), "select * from T order by 'EXCH01' ASC");
}

TEST(DbDataSrc, TheDatabaseIsToldTheTablesOwnText) {
  SourceFixture page("Sort=Name");
  page.source->OpenDS();
  EXPECT_EQ(page.database.steps.done.front(), "Connect(KalvoDB)");
  EXPECT_EQ(page.database.pattern, "select * from T order by %SORT%");
  EXPECT_EQ(page.database.orderBy, "Id");
}

TEST(DbDataSrc, TellsTheDatabaseWhereThePageBeginsUnlessThatWouldBeSeen) {
  const struct {
    const char* why;
    const char* first;
    std::int32_t told;
  } kCases[] = {{"further on", "41", 41},
                {"the end", "-1", -1},
                {"nowhere", "", 1},
                {"0", "0", 1},
                {"beyond 16 bits", "99999", 1}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page("First="s + c.first);
    page.source->OpenDS();
    EXPECT_EQ(page.database.firstRow, 1) << "a request of the page's own sees what it is asked";
    const auto memory = std::make_shared<MemoryPage>(std::vector<MemoryParameter>{{"First", c.first}});
    page.context->OnStartPage(*memory);
    page.context->IncrementTableIndex();
    page.source->OpenDS();
    EXPECT_EQ(page.database.firstRow, c.told);
    EXPECT_EQ(memory->Html(), "");
  }
}

// ---- opening --------------------------------------------------------------------------------------------

TEST(DbDataSrc, LoadsAllRowsAtOnce) {
  SourceFixture page;
  EXPECT_EQ(page.source->GetRowIndex(), 0);
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.source->RecordCount(), 2);
  for (const char* step : {"Connect", "Execute", "GetRows"}) EXPECT_EQ(page.database.steps.Count(step), 1u) << step;
  EXPECT_EQ(page.Text(), "");
}

TEST(DbDataSrc, AnEmptyResultIsNoFailure) {
  SourceFixture page("Debug=Table");
  page.database.results = {{{"Id"}, {}}};
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.source->RecordCount(), 0);
  EXPECT_EQ(page.Text(), "<p>Sort Information: Id ASC</p>\r\n") << "no record count";
}

TEST(DbDataSrc, AFailingStepIsReportedAndItsNumberTruncated) {
  const struct {
    const char* why;
    const char* step;
    std::int32_t number;
    std::int16_t status;
    const char *text, *shown;
  } kCases[] = {
      {"no connection", "Connect", codes::kFailed, 0x4005, "KalvodbDataSrc.OpenDS: conn.Open", "80004005"},
      {"an SQL error", "Execute", codes::kSqlSyntax, 0x0E14, "KalvodbDataSrc.OpenDS", "80040E14"},
      {"an unknown table", "Execute", codes::kUnknownTable, 0x0E37, "KalvodbDataSrc.OpenDS", "80040E37"},
      {"a number whose low word is 0", "Execute", 0x10000, 1, "KalvodbDataSrc.OpenDS", "10000"},
      {"a number whose low word is negative", "Execute", 0x1FFFF, -1, "KalvodbDataSrc.OpenDS", "1FFFF"},
      {"a name that cannot be read", "FieldName", 9, 9, "Get record set field name.", "9"},
      {"rows that cannot be fetched", "GetRows", codes::kFailed, 0x4005, "Get rows from record set.", "80004005"},
      {"names that cannot be counted", "FieldCount", 7, 7, "Get rows from record set.", "7"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    SourceFixture page;
    page.database.steps.Fail(c.step, c.number, "gone");
    EXPECT_EQ(page.source->OpenDS(), c.status);
    EXPECT_EQ(page.Text(), Report(c.text, c.shown, "gone"));
    EXPECT_EQ(page.source->RecordCount(), 0);
    EXPECT_EQ(CurrentError().number, c.number) << "the error stays pending";
  }
}

TEST(DbDataSrc, FieldNamesThatDifferInCaseAloneFailTheLoad) {
  SourceFixture page;
  page.database.results = {{{"Name", "NAME"}, {{"a"s, "b"s}}}};
  EXPECT_EQ(page.source->OpenDS(), 457);
  EXPECT_EQ(page.Text(), Report("Save record set field name.", "1C9",
                                "This key is already associated with an element of this collection"));
}

TEST(DbDataSrc, RowsThatDoNotFitTheirNamesFailTheLoad) {
  SourceFixture page;
  page.database.results = {{{"Id"}, {{"a"s, "b"s}}}};
  EXPECT_EQ(page.source->OpenDS(), 1);
  EXPECT_EQ(page.Text(), Message("Inconsistent GetRows dictionary."));
  EXPECT_EQ(page.source->RecordCount(), 0);
  page.source->MoveFirst();
  EXPECT_EQ(page.source->GetField("Id"), "") << "what does not fit is not read";
}

TEST(DbDataSrc, AnErrorFromBeforeIsNotReportedAsItsOwn) {
  SourceFixture page;
  LeaveError(Overflow());
  EXPECT_EQ(page.source->OpenDS(), 0);
  EXPECT_EQ(page.Text(), "");
}

TEST(DbDataSrc, AfterAFailedOpenItCanOnlyBeClosed) {
  SourceFixture page;
  page.database.steps.Fail("Connect");
  page.source->OpenDS();
  page.Taken();
  EXPECT_EQ(page.source->CloseDS(), 91);
  EXPECT_EQ(page.Text(),
            Report("KalvodbDataSrc.CloseDS: rs.Close", "5B", "Object variable or With block variable not set"));
}

TEST(DbDataSrc, AResultThatCannotTellWhetherItIsEmptyIsRead) {
  SourceFixture page;
  page.database.steps.Fail("IsEmpty");
  const std::string failure = Report("Get record set field name.", "80004005", "Refused.");
  EXPECT_EQ(page.source->OpenDS(), 0x4005);
  EXPECT_EQ(page.Taken(), failure) << "what failed is told at the first step of the reading";
  EXPECT_EQ(page.source->MoveTotals(), 0x4005);
  EXPECT_EQ(page.Taken(), failure);
}

TEST(DbDataSrc, InitialisedAnewItKnowsNoFields) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  page.Use("select 2");
  EXPECT_EQ(page.source->GetField("Id"), "");
  EXPECT_EQ(page.Taken(), Message("GetField: Unknown field \"Id\""));
}

// The page that is told how long the reading took may be a script, and close what was read.
TEST(DbDataSrc, RowsThatAreGoneWhenTheyAreLookedAtFailTheLoad) {
  SourceFixture page("Debug=Time");
  int written = 0;
  page.page->response->steps.When("Write", [&] {
    if (++written == 2) page.source->CloseDS();
  });
  EXPECT_EQ(page.source->OpenDS(), 91);
  EXPECT_NE(page.Text().find(Report("Test GetRows result.", "5B", "Object variable or With block variable not set")),
            std::string::npos);
  page.source->MoveFirst();
  EXPECT_EQ(page.source->RecordCount(), 0);
}

// ---- moving and reading ---------------------------------------------------------------------------------

TEST(DbDataSrc, FieldsAreFoundWhateverTheirCase) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  EXPECT_EQ(page.source->GetField("name"), "Ann");
  EXPECT_EQ(page.source->GetField("NAME"), "Ann");
  EXPECT_EQ(page.source->GetField("Id"), "1");
  page.source->MoveNext();
  EXPECT_EQ(page.source->GetField("Id"), "2");
  EXPECT_EQ(page.source->GetField("Name"), "") << "null";
  EXPECT_EQ(page.source->GetRowIndex(), 2);
}

TEST(DbDataSrc, OutsideOfTheRowsEveryFieldIsEmpty) {
  SourceFixture page;
  page.source->OpenDS();
  EXPECT_EQ(page.source->GetField("Id"), "") << "before the first row";
  page.source->MoveFirst();
  page.source->MoveNext();
  EXPECT_EQ(page.source->MoveNext(), 0);
  EXPECT_EQ(page.source->GetField("Id"), "");
  EXPECT_EQ(page.source->GetRowIndex(), 3);
  EXPECT_EQ(page.Text(), "");
}

TEST(DbDataSrc, OutsideOfTheRowsNothingIdentifiesThem) {
  SourceFixture page;
  page.source->OpenDS();
  EXPECT_EQ(page.source->GetField("Id", true), Value(""s)) << "before the first row";
  page.source->MoveFirst();
  for (int i = 0; i < 2; ++i) page.source->MoveNext();
  EXPECT_EQ(page.source->GetField("Id", true), Value(""s)) << "behind the last row";
  EXPECT_EQ(page.database.steps.Count("Binary"), 0u);
  EXPECT_EQ(page.Text(), "");
}

TEST(DbDataSrc, AFieldThatCannotBeReadIsEmpty) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  page.database.steps.Fail("Text");
  EXPECT_EQ(page.source->GetField("Name"), "");
  EXPECT_EQ(page.Text(), "");
}

TEST(DbDataSrc, AnUnknownFieldIsReportedAndEmpty) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  EXPECT_EQ(page.source->GetField("No <Such>"), "");
  EXPECT_EQ(page.Taken(), Message("GetField: Unknown field \"No <Such>\""));
  EXPECT_EQ(page.source->GetField("", true), Value(""s));
  EXPECT_EQ(page.Taken(), Message("GetField: Unknown field \"\""));
}

TEST(DbDataSrc, TheRowNumberOverflows16Bits) {
  SourceFixture page;
  page.source->MoveFirst();
  for (int i = 0; i < 32766; ++i) page.source->MoveNext();
  EXPECT_EQ(page.source->GetRowIndex(), 32767);
  page.source->MoveNext();
  EXPECT_EQ(ErrorOf([&] { page.source->GetRowIndex(); }).Number(), 6);
  EXPECT_EQ(page.source->MoveNext(), 0);
}

TEST(DbDataSrc, AnIdentifierIsItsBytesInStorageOrder) {
  SourceFixture page;
  page.database.results = {{{"Id", "Null", "Text"}, {{Bytes{0x00, 0x0F, 0xAB, 0xFF}, Null{}, "abc"s}}}};
  page.source->OpenDS();
  page.source->MoveFirst();
  EXPECT_EQ(page.source->GetField("Id", true), Value("000FABFF"s));
  EXPECT_EQ(page.source->GetIdentifier("Id"), "000FABFF");
  EXPECT_EQ(page.source->GetField("Null", true), Value(Null{}));
  EXPECT_EQ(page.source->GetIdentifier("Null"), std::nullopt);
  EXPECT_EQ(page.source->GetField("Null", false), Value(""s));
  EXPECT_EQ(page.Taken(), "") << "null is no failure";
  EXPECT_EQ(page.source->GetField("Text", true), Value(""s));
  EXPECT_EQ(page.Taken(), Report("KalvodbDataSrc.GetGUIField Text", "D", "Type mismatch"));
}

TEST(DbDataSrc, ATextThatCannotBeReadIsEmpty) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  page.database.steps.Fail("Text", 7);
  EXPECT_EQ(page.source->GetField("Name"), "");
  EXPECT_EQ(page.Text(), "");
}

TEST(DbDataSrc, RowsThatCanNoLongerBeFetchedAreToldOfOnceAndReadAsEmpty) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  page.database.results[0].lost = true;
  EXPECT_EQ(page.source->GetField("Name"), "");
  EXPECT_EQ(page.Text(), Report("Get rows from record set.", "80004005", "Lost."));
  EXPECT_EQ(page.source->GetField("Id"), "");
  EXPECT_EQ(page.source->GetIdentifier("Id"), "");
  page.source->MoveNext();
  EXPECT_EQ(page.source->GetField("Id"), "");
  EXPECT_EQ(page.Text(), Report("Get rows from record set.", "80004005", "Lost."));
  EXPECT_EQ(page.source->MoveTotals(), 0);
  EXPECT_EQ(page.source->GetField("Sum"), "3");
}

// ---- totals ---------------------------------------------------------------------------------------------

TEST(DbDataSrc, TotalsAreTheSecondResultUnderItsOwnNames) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  page.source->MoveNext();
  EXPECT_EQ(page.source->MoveTotals(), 0);
  EXPECT_EQ(page.source->GetRowIndex(), 1);
  EXPECT_EQ(page.source->RecordCount(), 2) << "still the rows'";
  EXPECT_EQ(page.source->GetField("sum"), "3");
  EXPECT_EQ(page.source->GetField("Id"), "");
  EXPECT_EQ(page.Text(), Message("GetField: Unknown field \"Id\""));
}

TEST(DbDataSrc, WithoutASecondStatementThereAreNoTotals) {
  SourceFixture page;
  page.database.results.pop_back();
  page.source->OpenDS();
  page.source->MoveFirst();
  EXPECT_EQ(page.source->MoveTotals(), 91);
  EXPECT_EQ(page.Taken(), Report("KalvodbDataSrc.MoveTotals", "5B", "Object variable or With block variable not set"));
  EXPECT_EQ(page.source->GetField("Id"), "1") << "the rows are still there";
  EXPECT_EQ(page.source->CloseDS(), 0) << "and can be closed";
}

TEST(DbDataSrc, AnEmptySecondResultIsNoTotalsRow) {
  SourceFixture page;
  page.database.results[1].rows.clear();
  page.source->OpenDS();
  page.source->MoveFirst();
  page.source->MoveNext();
  EXPECT_EQ(page.source->MoveTotals(), 1);
  EXPECT_EQ(page.Taken(), Message("Totals query not implemented for this table."));
  EXPECT_EQ(page.source->GetRowIndex(), 2) << "nothing was loaded: names and rows are still the first result's";
  EXPECT_EQ(page.source->GetField("Id"), "2");
  EXPECT_EQ(page.source->CloseDS(), 0);
  EXPECT_EQ(page.Text(), "");
}

TEST(DbDataSrc, TotalsThatCannotBeLoadedFail) {
  SourceFixture page;
  page.source->OpenDS();
  page.database.steps.Fail("GetRows", 7, "gone", 2);
  EXPECT_EQ(page.source->MoveTotals(), 7);
  EXPECT_EQ(page.Text(), Report("Get rows from record set.", "7", "gone"));
}

// ---- closing --------------------------------------------------------------------------------------------

TEST(DbDataSrc, ClosesItsRowsFirstAndThenTheConnection) {
  SourceFixture page;
  page.source->OpenDS();
  page.source->MoveFirst();
  page.database.steps.done.clear();
  EXPECT_EQ(page.source->CloseDS(), 0);
  EXPECT_EQ(page.database.steps.done, (std::vector<std::string>{"RecordSet.Close()", "Connection.Close()"}));
  EXPECT_EQ(page.source->GetField("Id"), "");
  EXPECT_EQ(page.Text(), Message("GetField: Unknown field \"Id\"")) << "the names are gone";
}

TEST(DbDataSrc, AFailingCloseAnswersTheWholeNumber) {
  SourceFixture page;
  page.source->OpenDS();
  page.database.steps.Fail("RecordSet.Close", codes::kFailed, "busy");
  EXPECT_EQ(page.source->CloseDS(), codes::kFailed);
  EXPECT_EQ(page.Taken(), Report("KalvodbDataSrc.CloseDS: rs.Close", "80004005", "busy"));
  EXPECT_EQ(page.database.steps.Count("Connection.Close"), 0u) << "the connection is left open";

  SourceFixture other;
  other.source->OpenDS();
  other.database.steps.Fail("Connection.Close", codes::kFailed, "busy");
  EXPECT_EQ(other.source->CloseDS(), codes::kFailed);
  EXPECT_EQ(other.Text(), Report("KalvodbDataSrc.CloseDS: conn.Close", "80004005", "busy"));
}

TEST(DbDataSrc, TheConnectionGoesWithTheSource) {
  SourceFixture page;
  page.source->OpenDS();
  page.source = nullptr;
  const auto& done = page.database.steps.done;
  ASSERT_GE(done.size(), 2u);
  EXPECT_EQ(done[done.size() - 2], "~RecordSet()");
  EXPECT_EQ(done.back(), "~Connection()");
}

// ---- debug lines ----------------------------------------------------------------------------------------

constexpr char kMoment[] = "1/2/1999 3:04:05 PM";

TEST(DbDataSrc, ItsStepsAreTraced) {
  const std::string times = " from "s + kMoment + " to " + kMoment + " (0.25 seconds)</p>\r\n";
  const std::string sql =
      "<p><strong>SQL Command:</strong> &nbsp;\r\n\r\nselect * from T where a &lt; 1 order by Id ASC\r\n\r\n</p>\r\n";
  const std::string names = "<p>Set: Field 0: Id</p>\r\n<p>Set: Field 1: Name</p>\r\n";
  const std::string sort = "<p>Sort Information: Id ASC</p>\r\n";
  const std::string count = "<p>Record Count: 2</p>\r\n";
  const struct {
    const char* query;
    std::string text;
  } kCases[] = {
      {"", ""},
      {"Debug=SQL", sql},
      {"Debug=Time", "<p>SQL Open" + times + "<p>Build dictionary and GetRows" + times},
      {"Debug=Dictionary", names},
      {"Debug=Table", sort + count},
      {"Debug=All", sort + sql + "<p>SQL Open" + times + names + "<p>Build dictionary and GetRows from " + kMoment +
                        " to " + kMoment + " (0.25 seconds)</p>\r\n" + count},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.query);
    SourceFixture page(c.query);
    page.Use("select * from T where a < 1 order by %SORT%");
    EXPECT_EQ(page.source->OpenDS(), 0);
    EXPECT_EQ(page.Text(), c.text);
  }
}

TEST(DbDataSrc, EveryFieldThatIsReadIsTraced) {
  SourceFixture page("Debug=Dictionary");
  page.source->OpenDS();
  page.source->MoveFirst();
  page.Taken();
  page.source->GetField("NAME");
  EXPECT_EQ(page.Taken(), "<p>Get: Field 1: NAME; Value: \"Ann\"</p>\r\n");
  page.source->GetField("Nobody");
  EXPECT_EQ(page.Taken(),
            Message("GetField: Unknown field \"Nobody\"") + "<p>Get: Field 0: Nobody; Value: \"\"</p>\r\n");
  page.source->GetIdentifier("Id");
  EXPECT_EQ(page.Taken(),
            Report("KalvodbDataSrc.GetGUIField Id", "D", "Type mismatch") + "<p>Get: Field 0: Id; Value: \"\"</p>\r\n");
}

TEST(DbDataSrc, FieldNamesAreTracedAsTheDatabaseSpellsThem) {
  SourceFixture page("Debug=Dictionary");
  page.database.results = {{{"ComputerName"}, {{"x"s}}}};
  page.source->OpenDS();
  EXPECT_EQ(page.Text(), "<p>Set: Field 0: ComputerName</p>\r\n");
}

}  // namespace
}  // namespace kalvo::test
