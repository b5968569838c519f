#include <gtest/gtest.h>

#include "adapters/database/test_engine.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

struct TypeCase {
  const char* why;
  const char* expression;
  const char* text;
};

void ExpectTexts(TestEngine& engine, std::initializer_list<TypeCase> cases) {
  const auto connection = Connect(engine);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(FirstText(*connection, std::string("select ") + c.expression + " as V"), c.text);
  }
}

TEST(OdbcTypes, OfPostgres) {
  ExpectTexts(OdbcPostgresEngine(),
              {
                  {"a truth", "true", "True"},
                  {"an untruth", "1 = 2", "False"},
                  {"a small integer", "cast(-7 as smallint)", "-7"},
                  {"a fraction", "1.50", "1.5"},
                  {"an average with its zeros", "(select avg(Id) from Numbers)", "500.5"},
                  {"a whole average", "(select avg(Id) from Numbers where Id < 4)", "2"},
                  {"a sum of large integers", "(select sum(cast(Id as bigint)) from Numbers)", "500500"},
                  {"single precision", "cast(0.25 as real)", "0.25"},
                  {"a day", "date '2024-02-03'", "2/3/2024"},
                  {"a moment", "timestamp '2024-02-03 22:00:01'", "2/3/2024 10:00:01 PM"},
                  {"a text of fixed length", "cast('ab' as char(4))", "ab  "},
                  {"a unique identifier", "cast('00010203-0405-0607-0809-0a0b0c0d0e0f' as uuid)",
                   "00010203-0405-0607-0809-0A0B0C0D0E0F"},
              });
}

TEST(OdbcTypes, OfMariaDb) {
  ExpectTexts(OdbcMariaDbEngine(), {
                                       {"a small flag", "cast(1 as signed)", "1"},
                                       {"a bit", "b'1' + 0", "1"},
                                       {"a fraction", "1.50", "1.5"},
                                       {"an average with its zeros", "(select avg(Id) from Numbers)", "500.5"},
                                       {"a whole average", "(select avg(Id) from Numbers where Id < 4)", "2"},
                                       {"a sum", "(select sum(Id) from Numbers)", "500500"},
                                       {"an unsigned integer", "cast(3000000000 as unsigned)", "3000000000"},
                                       {"a day", "cast('2024-02-03' as date)", "2/3/2024"},
                                       {"a moment", "cast('2024-02-03 22:00:01' as datetime)", "2/3/2024 10:00:01 PM"},
                                       {"double quotes are a name's", "(select \"Id\" from Numbers where Id = 3)", "3"},
                                   });
}

// A number of 301 digits is longer than any column of its type says, so the rows are read anew in pieces.
TEST(OdbcTypes, AValueLongerThanItsColumnIsReadWhole) {
  const auto connection = Connect(OdbcPostgresEngine());
  const auto records = Query(
      *connection,
      "select Id, case when Id < 900 then 1 else power(cast(10 as numeric), 300) end as V from Numbers order by Id");
  ASSERT_EQ(records->GetRows().RowCount(), 1000);
  EXPECT_EQ(TextOf(*records, 0, 0), "1");
  EXPECT_EQ(TextOf(*records, 1, 0), "1");
  EXPECT_EQ(TextOf(*records, 0, 999), "1000");
  EXPECT_EQ(TextOf(*records, 1, 999), "1E+300");
}

TEST(OdbcTypes, AValueInAnErrorIsNoMarkup) {
  const auto connection = Connect(OdbcPostgresEngine());
  const Error error = ErrorOf([&] { Query(*connection, "select Id from Numbers where Id = '<script>'"); });
  EXPECT_EQ(error.Description().find('<'), std::string::npos) << error.Description();
  EXPECT_NE(error.Description().find("script"), std::string::npos) << error.Description();
}

}  // namespace
}  // namespace kalvo::test
