#include <gtest/gtest.h>

#include "adapters/database/test_engine.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

// "" when the sort text runs, else the error's description.
std::string Sorted(TestEngine& engine, const std::string& sort) {
  const std::string pattern = "select n.Id, x.Twice from Numbers n, (select 2 as Twice) x order by %SORT%";
  std::string sql = pattern;
  sql.replace(sql.find("%SORT%"), 6, sort);
  return ErrorOf([&] { Connect(engine)->Execute({sql, pattern, "n.Id"}); }).Description();
}

TEST(AttributeCalls, AreNoSortTextsOfPostgreSql) {
  TestEngine& engine = OdbcPostgresEngine();
  engine.Execute(
      "create function spy(Numbers) returns integer language plpgsql as "
      "$$ begin raise exception 'called'; end $$;");
  const struct {
    const char *why, *sort, *refused;
  } kCases[] = {
      {"a column", "n.Id", ""},
      {"in any case", "N.iD DESC", ""},
      {"quoted", "n.\"id\"", ""},
      {"a column of a query of the table's own text", "x.Twice, n.Id", ""},
      {"a function of the system", "n.to_jsonb", "to_jsonb"},
      {"quoted", "n.\"to_jsonb\"", "to_jsonb"},
      {"behind a column", "n.Id, n.row_to_json DESC", "row_to_json"},
      {"a function of the site", "n.spy", "spy"},
      {"in capitals", "n.SPY", "spy"},
      {"on the other table", "x.hash_record", "hash_record"},
      {"a column of a table that the text does not name", "n.Attrib1", "attrib1"},
  };
  for (const auto& c : kCases) {
    const std::string refused(c.refused);
    EXPECT_EQ(Sorted(engine, c.sort),
              refused.empty() ? "" : "[42000] The sort text names what is no column: \"" + refused + "\"")
        << c.why;
  }
  engine.Execute("drop function spy(Numbers);");
}

TEST(AttributeCalls, AreUnknownColumnsElsewhere) {
  for (TestEngine* engine : {&SqliteEngine(), &OdbcSqliteEngine(), &OdbcMariaDbEngine()}) {
    EXPECT_EQ(Sorted(*engine, "n.Id"), "");
    EXPECT_NE(Sorted(*engine, "n.to_jsonb"), "");
  }
}

}  // namespace
}  // namespace kalvo::test
