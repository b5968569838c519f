#include "adapters/sql/windowed_statement.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace sql;

WindowedStatement Windowed(std::string_view statement, NullOrder nulls = NullOrder::First, std::int32_t columns = 2) {
  auto windowed = WindowedStatement::Of(statement, nulls).value();
  windowed.BreakTies(columns);
  return windowed;
}

TEST(WindowedStatement, OrdersByEveryColumnBehindItsOwnOrder) {
  const struct {
    const char* why;
    const char *statement, *whole;
  } kCases[] = {
      {"no direction is ascending", "select a, b from T order by a", "select a, b from T order by a asc, 1 asc, 2 asc"},
      {"descending", "select a, b from T order by b DESC", "select a, b from T order by b desc, 1 asc, 2 asc"},
      {"several", "select a, b from T order by b desc, a Asc",
       "select a, b from T order by b desc, a asc, 1 asc, 2 asc"},
      {"an expression of several words and commas",
       "select a, b from T order by case when f(a, 1) is null then 1 end, b",
       "select a, b from T order by case when f(a, 1) is null then 1 end asc, b asc, 1 asc, 2 asc"},
      {"the last order outside of parentheses", "select a, (select x from U order by x limit 1) b from T order by a",
       "select a, (select x from U order by x limit 1) b from T order by a asc, 1 asc, 2 asc"},
      {"a union", "select a, b from T union all select a, b from U order by a",
       "select a, b from T union all select a, b from U order by a asc, 1 asc, 2 asc"},
      {"a common table", "with x as (select 1 a) select a, a b from x order by a",
       "with x as (select 1 a) select a, a b from x order by a asc, 1 asc, 2 asc"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Windowed(c.statement).Whole(), c.whole);
  }
}

TEST(WindowedStatement, SaysWhereNullsGoToWhomItHasToBeSaid) {
  EXPECT_EQ(Windowed("select a from T order by a, b desc", NullOrder::Said, 1).Whole(),
            "select a from T order by a asc nulls first, b desc nulls last, 1 asc nulls first");
}

TEST(WindowedStatement, CountsItsWindowsFromEitherEnd) {
  const auto windowed = Windowed("select a, b from T order by b DESC");
  EXPECT_EQ(windowed.Forward(20, 10), "select a, b from T order by b desc, 1 asc, 2 asc limit 10 offset 20");
  EXPECT_EQ(windowed.Backward(20, 10), "select a, b from T order by b asc, 1 desc, 2 desc limit 10 offset 20");
  EXPECT_EQ(Windowed("select a from T order by a", NullOrder::Said, 1).Backward(0, 5),
            "select a from T order by a desc nulls last, 1 desc nulls last limit 5 offset 0");
}

TEST(WindowedStatement, LeavesAloneWhatHasNoOneOrderAtItsEnd) {
  const struct {
    const char* why;
    const char* statement;
  } kCases[] = {
      {"nothing", ""},
      {"no order", "select a from T"},
      {"an order of a part alone", "select a from (select a from T order by a) x"},
      {"an order of nothing", "select a from T order by  "},
      {"an order that ends in a comma", "select a from T order by a,"},
      {"a direction alone", "select a from T order by desc"},
      {"limited", "select a from T order by a limit 5"},
      {"limited in other words", "select a from T order by a offset 5 rows fetch next 5 rows only"},
      {"locking", "select a from T order by a for update"},
      {"nulls are spoken of", "select a from T order by a nulls first"},
      {"a comment", "select a from T order by a -- x"},
      {"a comment that some engines run", "select a /*! sleep(1) */ from T order by a"},
      {"no query", "delete from T order by a"},
      {"two statements", "select a from T select b from T order by b"},
      {"a set operator behind", "select a from T order by a union select 1"},
      {"in parentheses", "(select a from T order by a)"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_FALSE(WindowedStatement::Of(c.statement, NullOrder::First));
  }
}

TEST(WindowedStatement, CountsItsRows) {
  EXPECT_EQ(Windowed("select a, b from T where a > 1 order by b").Count(),
            "select count(*) as Counted from (select a, b from T where a > 1) Counted");
}

TEST(WindowedStatement, CountsWithTheTotalsOfTheSameRowsAlone) {
  const struct {
    const char* why;
    const char *statement, *totals, *both;
  } kCases[] = {
      {"the same rows", "select a from T, U where T.x = U.x order by a",
       "select sum(a) as a, max((select 1 from V)) from T,  U where T.x = U.x\r\n",
       "select count(*) as Counted, sum(a) as a, max((select 1 from V)) from T,  U where T.x = U.x"},
      {"no totals", "select a from T order by a", "select 1 where (1 = 0)", nullptr},
      {"nothing", "select a from T order by a", "", nullptr},
      {"other rows", "select a from T order by a", "select sum(a) from T where a > 0", nullptr},
      {"groups", "select a from T group by a order by a", "select sum(a) from T group by a", nullptr},
      {"each once", "select distinct a from T order by a", "select sum(a) from T", nullptr},
      {"a union", "select a from T union all select a from T order by a", "select a from T union all select a from T",
       nullptr},
      {"a common table", "with x as (select 1) select a from T order by a", "select sum(a) from T", nullptr},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const auto both = Windowed(c.statement).CountWithTotals(c.totals);
    EXPECT_EQ(both.value_or("none"), c.both ? c.both : "none");
  }
}

}  // namespace
}  // namespace kalvo::test
