#include "adapters/sql/shape.h"

#include <gtest/gtest.h>

#include <string>

#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace sql;

const std::string kPattern = "select Id from T where Name = %NAME% order by %SORT%\r\n\r\nselect count(*) from T";

// The pattern above with these texts in its places.
std::string Completed(const std::string& name, const std::string& sort) {
  return "select Id from T where Name = " + name + " order by " + sort + "\r\n\r\nselect count(*) from T";
}

std::string Refusal(const Batch& batch) {
  const Error error = ErrorOf([&] { CheckedStatements(batch); });
  EXPECT_EQ(error.Number(), error.Description().empty() ? 0 : codes::kSqlSyntax);
  EXPECT_TRUE(error.Description().empty() || error.Description().starts_with("[42000] "));
  return error.Description();
}

TEST(Shape, GivesTheStatementsOfTheCompletedText) {
  const std::string sql = Completed("'O''Neil'", "Name DESC");
  const auto statements = CheckedStatements({sql, kPattern, "Id"});
  ASSERT_EQ(statements.size(), 2u);
  EXPECT_EQ(statements[0], "select Id from T where Name = 'O''Neil' order by Name DESC");
  EXPECT_EQ(statements[1], "select count(*) from T");
}

TEST(Shape, SortTexts) {
  const struct {
    const char* why;
    const char* sort;
    const char* orderBy;
    bool passes;
  } kCases[] = {
      {"a name", "Name", "Id", true},
      {"a name with a direction", "Name ASC", "Id", true},
      {"the direction in any case", "Name dEsC", "Id", true},
      {"a qualified name", "sb.BackupLength DESC", "Id", true},
      {"names of every letter and digit", "AZaz09_$, [AZaz09_ .$], \"\xC2\x80\"", "Id", true},
      {"a quoted name with a sign before the digits", "[a/]", "Id", false},
      {"a quoted name with a sign behind the digits", "[a:]", "Id", false},
      {"a quoted name with a sign before the capitals", "[@]", "Id", false},
      {"a quoted name with a sign behind the capitals", "\"[\"", "Id", false},
      {"a quoted name with a sign before the letters", "\"`\"", "Id", false},
      {"a quoted name with a sign behind the letters", "[{]", "Id", false},
      {"a quoted name with the last sign of ASCII", "[\x7F]", "Id", false},
      {"names of three styles", "\"a\", [b c] DESC, T.`d`", "Id", true},
      {"nothing", "", "Id", true},
      {"blanks", "  ", "Id", true},
      {"a direction alone reads as a name", " ASC", "Id", true},
      {"the table's own text", "lower(Name), 2 DESC", "lower(Name), 2 DESC", true},
      {"the table's own text with a direction", "lower(Name) DESC", "lower(Name)", true},
      {"the table's own text with two", "lower(Name) DESC ASC", "lower(Name)", false},
      {"the table's own text and more", "lower(Name), Id", "lower(Name)", false},
      {"a call", "load_extension('x')", "Id", false},
      {"a number", "1", "Id", false},
      {"a string", "'Name'", "Id", false},
      {"an expression", "Id + 1", "Id", false},
      {"a limit", "Id limit 1", "Id", false},
      {"a query", "(select 1)", "Id", false},
      {"two directions", "Id ASC DESC", "Id", false},
      {"a comma too many", "Id, ", "Id", false},
      {"a point too many", "T.", "Id", false},
      {"a line comment", "Id -- ", "Id", false},
      {"a line comment of two characters", "Id --", "Id", false},
      {"a block comment", "Id /*", "Id", false},
      {"a closed comment", "Id /* x */", "Id", false},
      {"a string that swallows the rest", "Id '", "Id", false},
      {"a quoted name that swallows the rest", "\"Id", "Id", false},
      {"a semicolon", "Id; drop table T", "Id", false},
      {"a union", "Id union select 1", "Id", false},
      {"another statement", "Id\r\nselect 2", "Id", false},
      {"the word that begins one", "select", "Id", false},
      {"a quoted name that could mean something else", "[a'b]", "Id", false},
      {"a quoted name of nothing", "\"\"", "Id", false},
      {"a parenthesis", "Id) or (1=1", "Id", false},
      {"a no-break space, which one database takes for a blank", "Id\u00A0DESC", "Id", false},
      {"an ideographic space", "Id\u3000", "Id", false},
      {"a letter beyond ASCII", "gr\u00F6n", "Id", false},
      {"the same in quotes", "\"gr\u00F6n\", [gr\u00F6n] DESC", "Id", true},
      {"a letter beyond ASCII in the table's own text", "gr\u00F6n", "gr\u00F6n", true},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const std::string sql = Completed("'x'", c.sort);
    EXPECT_EQ(Refusal({sql, kPattern, c.orderBy}).empty(), c.passes);
  }
}

TEST(Shape, NamesBehindAPointThatTheTablesOwnTextDoesNotHave) {
  const std::string pattern = "select s.Name, \"Big\" from T s where s.Id = %NAME% order by %SORT%, %SORT%";
  const auto foreign = [&](const std::string& sort) {
    const std::string sql = "select s.Name, \"Big\" from T s where s.Id = 'x' order by " + sort + ", " + sort;
    return ForeignSortNames({sql, pattern, "s.Other"});
  };
  using Names = std::vector<std::string>;
  EXPECT_EQ(foreign("s.NAME, s.Other DESC, s.\"Big\", Free"), Names());
  EXPECT_EQ(foreign("s.Free, T.s.More DESC, s.\"Free\""), (Names{"free", "more", "Free"}));
  EXPECT_EQ(NamesOf(pattern), (Names{"select", "s", "name", "Big", "from", "t", "where", "id", "order", "by"}));
}

TEST(Shape, ScopeValues) {
  const struct {
    const char* why;
    const char* name;
    bool passes;
  } kCases[] = {
      {"an empty text", "''", true},
      {"a doubled quote", "'O''Neil'", true},
      {"a backslash", "'a\\'", true},
      {"the words of SQL", "'x; select 1 -- '", true},
      {"a placeholder that was replaced again", "''other''", false},
      {"no quotes", "x", false},
      {"a number", "1", false},
      {"a text and a condition", "'x' or 1 = 1", false},
      {"a text that does not end", "'x", false},
      {"two texts", "'x' 'y'", false},
      {"nothing", "", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    const std::string sql = Completed(c.name, "Id");
    EXPECT_EQ(Refusal({sql, kPattern, "Id"}).empty(), c.passes);
  }
}

TEST(Shape, Patterns) {
  const struct {
    const char* why;
    const char* pattern;
    const char* sql;
    bool passes;
  } kCases[] = {
      {"a pattern without placeholders is its own text", "select Id from T", "select Id from T", true},
      {"blanks do not count", "select  Id\r\nfrom T ", "select Id from T", true},
      {"another table does", "select Id from T", "select Id from U", false},
      {"a text cut short", "select Id from T order by Id", "select Id from T", false},
      {"a text made longer", "select Id from T", "select Id from T limit 1", false},
      {"every place of a placeholder", "select %NAME%, %NAME% from T", "select 'a', 'a' from T", true},
      {"two sort texts", "select %SORT% from T order by %SORT%, Id", "select a, b from T order by a, b, Id", true},
      {"a sort text with a name around it", "select 1 order by T.%SORT%, Id", "select 1 order by T.a DESC, Id", true},
      {"a placeholder in a string", "select '%SORT%!' as L order by %SORT%", "select 'a DESC!' as L order by a DESC",
       true},
      {"an empty sort text in a string", "select '%SORT%' order by %SORT%", "select '' order by ", true},
      {"a string changed before its placeholder", "select '!%SORT%' order by %SORT%",
       "select '?a DESC' order by a DESC", false},
      {"a string cut to its placeholder's end", "select 'aba%NAME%aba'", "select 'aba'", false},
      {"a string changed elsewhere", "select '%SORT%!' order by %SORT%", "select 'a DESC?' order by a DESC", false},
      {"a value that ends its string", "select '%NAME%' from T", "select ''x'' from T", false},
      {"a placeholder in a comment", "select 1 -- %SORT%\r\nfrom T", "select 1 -- a\r\nfrom T", true},
      {"a value that ends its comment", "select 1 /* %NAME% */ from T", "select 1 /* '*/, 2 /*' */ from T", false},
      {"a value that ends its line comment", "select 1 -- %NAME%", "select 1 -- '\r\n, 2'", false},
      {"a prefix that the database gives strings", "select N%NAME%", "select N'x'", true},
      {"lower case is no placeholder", "select '%name%', %name%", "select '%name%', %name%", true},
      {"no SQL", "", "", false},
      {"a comment alone", "-- x", "-- x", false},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    EXPECT_EQ(Refusal({c.sql, c.pattern, "Id"}).empty(), c.passes);
  }
}

TEST(Shape, AZeroByteIsRefused) {
  const std::string sql = Completed(std::string("'a\0b'", 5), "Id");
  EXPECT_EQ(Refusal({sql, kPattern, "Id"}), "[42000] The SQL holds a zero byte.");
}

TEST(Shape, SaysWhatIsWrongInAllItsForms) {
  EXPECT_EQ(Refusal({"select 1 limit 2", "select 1", ""}),
            "[42000] The completed SQL goes on where its table's own text ends, from: \"limit 2\"");
  EXPECT_EQ(Refusal({"select 1", "select 1 limit 2", ""}),
            "[42000] The completed SQL ends before its table's own text does, at: \"limit\"");
  EXPECT_EQ(Refusal({"", "", ""}), "[42000] The table has no SQL.");
  EXPECT_EQ(Refusal({"select 1 order by select", "select 1 order by %SORT%", ""}),
            "[42000] The completed SQL has another number of statements than its table's own text: "
            "\"select 1 order by select\"");
  const std::string fits(59, 'y'), tooLong(60, 'y');
  EXPECT_EQ(Refusal({"select 2" + fits, "select 1", ""}),
            "[42000] The completed SQL differs from its table's own text, from: \"2" + fits + "\"");
  EXPECT_EQ(Refusal({"select 2" + tooLong, "select 1", ""}),
            "[42000] The completed SQL differs from its table's own text, from: \"2" + fits + "...\"");
}

TEST(Shape, SaysWhatIsWrong) {
  EXPECT_EQ(Refusal({"select 1 order by a()", "select 1 order by %SORT%", ""}),
            "[42000] The sort text is not a list of names, each with ASC or DESC or neither, from: \"a()\"");
  EXPECT_EQ(Refusal({"select x from T", "select %NAME% from T", ""}),
            "[42000] A scope value is not one string literal, from: \"x from T\"");
  EXPECT_EQ(Refusal({"select 2", "select 1", ""}),
            "[42000] The completed SQL differs from its table's own text, from: \"2\"");
}

}  // namespace
}  // namespace kalvo::test
