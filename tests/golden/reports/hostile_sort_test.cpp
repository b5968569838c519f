#include <gtest/gtest.h>

#include <algorithm>

#include "database/sample_databases.h"
#include "golden/reports/report_cases.h"
#include "platform/append.h"

namespace kalvo::test {
namespace {

// What a query string may bring as "Sort" that is no list of names. Nothing of it reaches a database.
constexpr std::string_view kRefused[] = {
    "load_extension('x')",
    "fts3_tokenizer('simple')",
    "randomblob(1000000000)",
    "writefile('/tmp/x','y')",
    "sleep(5)",
    "pg_sleep(5)",
    "benchmark(1000000000,md5(1))",
    "pg_read_file('/etc/passwd')",
    "load_file('/etc/passwd')",
    "abs(-9223372036854775808)",
    "(select 1)",
    "(select name from sqlite_master)",
    "(select Body from EXDB_MAILBOX)",
    "case when (1=1) then ComputerName else ServerId end",
    "case when exists(select 1 from EXDB_MAILBOX) then 1 end",
    "1",
    "1 select",
    "1,2",
    "-1",
    "0x41",
    "1e309",
    "?",
    "?1",
    ":a",
    "@a",
    "@@version",
    "$1",
    "$$x$$",
    "'ComputerName'",
    "E'x'",
    "U&\"x\"",
    "U&'x'",
    "N'x'",
    "x'41'",
    "_utf8'x'",
    "ComputerName;",
    "ComputerName; drop table EXDB_SERVER",
    "ComputerName; delete from EXDB_SERVER --",
    "ComputerName union select 1",
    "ComputerName union all select Password from Users",
    "ComputerName except select 1",
    "ComputerName intersect select 1",
    "with x as (delete from EXDB_SERVER returning 1) select 1",
    "ComputerName -- x",
    "ComputerName --",
    "ComputerName # x",
    "ComputerName /* x */",
    "ComputerName /*! x */",
    "/*!50000 ComputerName */",
    "ComputerName/**/DESC",
    "ComputerName limit 1",
    "ComputerName limit 0,1",
    "ComputerName offset 1",
    "ComputerName fetch first 1 rows only",
    "ComputerName for update",
    "ComputerName into outfile '/tmp/x'",
    "ComputerName procedure analyse()",
    "ComputerName collate nocase",
    "ComputerName collate \"C\"",
    "ComputerName nulls first",
    "ComputerName nulls last",
    "ComputerName using >",
    "ComputerName asc desc",
    "ComputerName desc desc",
    "ComputerName + 1",
    "ComputerName || 'x'",
    "ComputerName = 'x'",
    "ComputerName is null",
    "ComputerName like 'S%'",
    "ComputerName and 1",
    "not ComputerName",
    "ComputerName::text",
    "cast(ComputerName as integer)",
    "{fn now()}",
    "{d '2020-01-01'}",
    "{call x}",
    ",ComputerName",
    "ComputerName,,ServerId",
    ".ComputerName",
    "s.*",
    "*",
    "(s).ComputerName",
    "(ComputerName)",
    "ComputerName)",
    "ComputerName) or (1=1",
    "[ComputerName",
    "[x;y]",
    "[a'b]",
    "\"ComputerName",
    "\"a\"\"b\"",
    "`ComputerName",
    "\"\"",
    "[]",
    "\\",
    "%",
    "%SORT%",
    "%NAME%",
    "<script>alert(1)</script>",
    "ComputerName\r\n\r\nselect 2",
    "ComputerName\u00A0desc",
    "ComputerName\u3000desc",
    "\uFF07",
    "\u2019",
    "select",
};

// What a query string may bring as "SortOrder" behind a sort field.
constexpr std::string_view kRefusedOrders[] = {
    "DESC, (select 1)",
    "DESC; drop table EXDB_SERVER",
    "DESC --",
    "DESC limit 1",
    "ASC DESC",
    "nulls first",
    "collate nocase",
    "union select 1",
    "/**/",
    ", load_extension('x')",
};

// Names that a database has for itself, and such as a direction behind a point or a comma. Some are columns of one
// engine and errors of another; no row comes or goes for any.
constexpr std::string_view kNames[] = {
    "rowid",
    "oid",
    "ctid",
    "xmin",
    "current_user",
    "session_user",
    "user",
    "current_date",
    "null",
    "true",
    "sqlite_version",
    "LastQuickScan",
    "s.ctid",
    "s.to_jsonb",
    "s.row_to_json",
    "s.hash_record",
    "information_schema.tables.table_name",
    "pg_catalog.pg_user.usename",
    "mysql.user.password",
    "sqlite_master.sql",
    "ComputerName,",
    "ComputerName.",
    "no.such.thing",
    "\"select\"",
    "[rowid]",
    "`user`",
    "\"ComputerName\"",
};

std::size_t RowsOf(const std::string& html) {
  std::size_t rows = 0;
  for (auto at = html.find("<tr"); at != html.npos; at = html.find("<tr", at + 1)) ++rows;
  return rows;
}

bool IsRefused(const std::string& html) {
  const auto failures = host::FailuresOf(html);
  return !failures.empty() && failures.front().find("[42000] ") != std::string::npos;
}

class HostileSorts : public testing::TestWithParam<Engine> {
 protected:
  std::string Sorted(const std::string& sort, const std::string& order) const {
    host::ReportPage page(SampleDatabases::Shared().PlatformOf(GetParam()));
    page.AddParameter("Sort", sort);
    page.AddParameter("SortOrder", order);
    return page.Build(TABLE_RES_ORGANIZATION_ALLSERVERS, {});
  }
};

TEST_P(HostileSorts, AreRefusedBeforeTheDatabaseSeesThem) {
  for (const std::string_view sort : kRefused) {
    for (const char* order : {"", "DESC"}) {
      SCOPED_TRACE(sort);
      EXPECT_TRUE(IsRefused(Sorted(std::string(sort), order)));
    }
  }
}

TEST_P(HostileSorts, OfNamesAloneShowTheSameRowsOrAFailure) {
  const std::string plain = Sorted("", "");
  ASSERT_GT(RowsOf(plain), 3u);
  for (const std::string_view sort : kNames) {
    SCOPED_TRACE(sort);
    const std::string html = Sorted(std::string(sort), "DESC");
    if (host::FailuresOf(html).empty()) {
      EXPECT_EQ(RowsOf(html), RowsOf(plain));
    } else {
      EXPECT_LT(RowsOf(html), RowsOf(plain));
    }
  }
}

TEST_P(HostileSorts, AreRefusedInTheOrderToo) {
  for (const std::string_view order : kRefusedOrders) {
    SCOPED_TRACE(order);
    EXPECT_TRUE(IsRefused(Sorted("ComputerName", std::string(order))));
  }
}

INSTANTIATE_TEST_SUITE_P(Engines, HostileSorts, testing::ValuesIn(kEngines),
                         [](const auto& engine) { return NameOf(engine.param); });

}  // namespace
}  // namespace kalvo::test
