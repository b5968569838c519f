#include "adapters/sql/statements.h"

#include <gtest/gtest.h>

#include <string>

namespace kalvo::test {
namespace {

using namespace sql;

std::vector<std::string> Split(std::string_view sql) {
  std::vector<std::string> texts;
  const auto tokens = Tokenize(sql, Placeholders::Ignore);
  for (const auto& statement : SplitStatements(tokens)) texts.emplace_back(StatementText(statement));
  return texts;
}

TEST(Statements, AreSplitWhereAQueryBegins) {
  const struct {
    const char* why;
    const char* sql;
    std::vector<std::string> statements;
  } kCases[] = {
      {"none", "  ", {}},
      {"one", " select 1 ", {"select 1"}},
      {"one behind another word", "values (1) select 2", {"values (1)", "select 2"}},
      {"and behind a word that takes one", "delete from T select 1", {"delete from T", "select 1"}},
      {"two without a semicolon",
       "select a from T order by b DESC\r\n\r\nselect 1 where (1 = 0)",
       {"select a from T order by b DESC", "select 1 where (1 = 0)"}},
      {"keywords in any case", "SELECT 1 Select 2", {"SELECT 1", "Select 2"}},
      {"a set operator joins", "select 1 union select 2", {"select 1 union select 2"}},
      {"and with ALL",
       "select 1 union all select 2 except distinct select 3",
       {"select 1 union all select 2 except distinct select 3"}},
      {"and over a comment", "select 1 union /* x */ select 2", {"select 1 union /* x */ select 2"}},
      {"ALL of a comparison does not", "select all select 2", {"select all", "select 2"}},
      {"a query in parentheses", "select (select 1) from (select 2) x", {"select (select 1) from (select 2) x"}},
      {"a WITH and its query", "with x as (select 1) select * from x", {"with x as (select 1) select * from x"}},
      {"a query behind a WITH",
       "with x as (select 1) select * from x select 2",
       {"with x as (select 1) select * from x", "select 2"}},
      {"a WITH behind a query",
       "select 1 with x (a) as (select 1), y as (select 2) select * from x",
       {"select 1", "with x (a) as (select 1), y as (select 2) select * from x"}},
      {"a recursive one",
       "select 1 with recursive x as (select 1) select * from x",
       {"select 1", "with recursive x as (select 1) select * from x"}},
      {"a WITH at the very end", "select 1 with", {"select 1 with"}},
      {"a recursive one at the very end", "select 1 with recursive", {"select 1 with recursive"}},
      {"a WITH and a name at the very end", "select 1 with x", {"select 1 with x"}},
      {"a quoted name behind a WITH",
       "select 1 with \"x\" as (select 1) select 2",
       {"select 1", "with \"x\" as (select 1) select 2"}},
      {"a comment behind a WITH",
       "select 1 with /* c */ x /* d */ as (select 1) select 2",
       {"select 1", "with /* c */ x /* d */ as (select 1) select 2"}},
      {"a comment behind RECURSIVE",
       "select 1 with recursive /* c */ x as (select 1) select 2",
       {"select 1", "with recursive /* c */ x as (select 1) select 2"}},
      {"another word behind a WITH that a semicolon ends",
       "with x as (select 1); delete from T select 2",
       {"with x as (select 1)", "delete from T", "select 2"}},
      {"another word behind a semicolon",
       "select 1; delete from T select 2",
       {"select 1", "delete from T", "select 2"}},
      {"a WITH that a semicolon ends",
       "with x as (select 1); select 2 select 3",
       {"with x as (select 1)", "select 2", "select 3"}},
      {"other uses of WITH",
       "select a from T with (nolock) group by a with rollup",
       {"select a from T with (nolock) group by a with rollup"}},
      {"a type's WITH",
       "select timestamp with time zone '2024-01-01'",
       {"select timestamp with time zone '2024-01-01'"}},
      {"the words inside texts",
       "select 'select 1' as \"select\" -- select\r\nfrom T",
       {"select 'select 1' as \"select\" -- select\r\nfrom T"}},
      {"semicolons", "select 1; select 2;;", {"select 1", "select 2"}},
      {"a semicolon in a text", "select ';'", {"select ';'"}},
      {"a comment before the second", "select 1 /* totals */ select 2", {"select 1 /* totals */", "select 2"}},
      {"parentheses that close too often", "select 1) select 2", {"select 1)", "select 2"}},
      {"and then open", "select 1) (select 2) select 3", {"select 1) (select 2)", "select 3"}},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Split(c.sql), c.statements);
  }
}

}  // namespace
}  // namespace kalvo::test
