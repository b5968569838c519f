#include "adapters/sql/diagnostics.h"

#include <gtest/gtest.h>

namespace kalvo::test {
namespace {

using namespace sql;

TEST(Diagnostics, NumbersFollowTheStateAndTheText) {
  const struct {
    const char* why;
    const char* state;
    const char* text;
    std::int32_t number;
  } kCases[] = {
      {"an unknown table of the standard", "42S02", "Table 'x' doesn't exist", codes::kUnknownTable},
      {"PostgreSQL's", "42P01", "relation \"x\" does not exist", codes::kUnknownTable},
      {"SQLite's, by its text", "HY000", "[SQLite]no such table: x (1)", codes::kUnknownTable},
      {"an unknown column", "42S22", "Unknown column 'x'", codes::kSqlSyntax},
      {"PostgreSQL's", "42703", "column \"x\" does not exist", codes::kSqlSyntax},
      {"SQLite's", "HY000", "[SQLite]no such column: x (1)", codes::kSqlSyntax},
      {"SQLite's function", "HY000", "no such function: x", codes::kSqlSyntax},
      {"SQLite's column that is two", "HY000", "ambiguous column name: x", codes::kSqlSyntax},
      {"SQLite's sign that is none", "HY000", "unrecognized token: \"x\"", codes::kSqlSyntax},
      {"a function's text in another state", "HY001", "no such function: x", codes::kFailed},
      {"another violation", "23000", "Duplicate entry 'x' for key 'y'", codes::kFailed},
      {"a syntax error", "42601", "syntax error at or near", codes::kSqlSyntax},
      {"MariaDB's", "42000", "You have an error in your SQL syntax", codes::kSqlSyntax},
      {"SQLite's", "HY000", "near \"x\": syntax error", codes::kSqlSyntax},
      {"SQLite's at the end", "HY000", "incomplete input", codes::kSqlSyntax},
      {"an ambiguous column", "23000", "Column 'Id' in order clause is ambiguous", codes::kSqlSyntax},
      {"no right to read a table", "42501", "permission denied for table x", codes::kFailed},
      {"MariaDB's", "42000", "SELECT command denied to user 'x'", codes::kFailed},
      {"a write", "25006", "cannot execute DELETE in a read-only transaction", codes::kFailed},
      {"a table's text in another state", "HYT00", "no such table", codes::kFailed},
      {"anything else", "HY000", "disk I/O error", codes::kFailed},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(DatabaseError(c.state, c.text).Number(), c.number);
  }
}

TEST(Diagnostics, ADescriptionIsOneLine) {
  EXPECT_EQ(DatabaseError("42601", "ERROR: a;\r\n  b\tc\n").Description(), "[42601] ERROR: a; b c");
}

TEST(Diagnostics, ADescriptionIsNoMarkup) {
  EXPECT_EQ(DatabaseError("22P02", "invalid input: \"<script>x</script>\"").Description(),
            "[22P02] invalid input: \"\u2039script\u203Ax\u2039/script\u203A\"");
}

TEST(Diagnostics, AConnectionFailsWithOneNumberWhateverTheState) {
  EXPECT_EQ(ConnectionError("42000", "Access denied").Number(), codes::kFailed);
  EXPECT_EQ(ConnectionError("42000", "Access denied").Description(), "[42000] Access denied");
}

TEST(Diagnostics, ATimeoutTellsTheLimit) {
  EXPECT_EQ(TimeoutError(0.25).Number(), codes::kFailed);
  EXPECT_EQ(TimeoutError(0.25).Description(), "[HYT00] The query was stopped after 0.25 seconds.");
}

}  // namespace
}  // namespace kalvo::test
