#include <gtest/gtest.h>

#include "adapters/database/test_engine.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

// The text that a page makes of a table's own: values become literals with their quotes doubled, the sort text goes
// in as it came.
std::string Completed(std::string text, std::string_view placeholder, const std::string& value) {
  for (auto at = text.find(placeholder); at != text.npos; at = text.find(placeholder, at + value.size())) {
    text.replace(at, placeholder.size(), value);
  }
  return text;
}

std::string Quoted(const std::string& value) { return "'" + Completed(value, "'", "''") + "'"; }

class HostileText : public testing::TestWithParam<EngineCase> {
 protected:
  void SetUp() override { connection_ = Connect(GetParam().engine()); }
  std::unique_ptr<Connection> connection_;
};

TEST_P(HostileText, ScopeValuesComeBackUnchanged) {
  const std::string pattern = "select %NAME% as Named, count(*) as Many from Numbers where %NAME% = 'nobody'";
  for (const std::string value : {"",
                                  "O'Neil",
                                  "\\",
                                  "x\\",
                                  "\\'",
                                  "x\\' or 1=1 -- ",
                                  "' or '1'='1",
                                  "''",
                                  "%",
                                  "?",
                                  "a{b}c",
                                  "{fn now()}",
                                  "$1",
                                  ":a",
                                  "@a",
                                  ";",
                                  "/* x */",
                                  "-- x",
                                  "\"x\"",
                                  "[x]",
                                  "`x`",
                                  "\n\r\t",
                                  "\xF0\x9D\x84\x9E\xC3\xBC"}) {
    SCOPED_TRACE(value);
    const std::string sql = Completed(pattern, "%NAME%", Quoted(value));
    const auto records = connection_->Execute({sql, pattern, ""});
    EXPECT_EQ(TextOf(*records, 0, 0), value);
    EXPECT_EQ(TextOf(*records, 1, 0), "0");
  }
}

TEST_P(HostileText, AValueOfTenThousandCharactersIsAValue) {
  const std::string value(10'000, '\'');
  const std::string pattern = "select count(*) as Many from Numbers where %NAME% <> ''";
  const std::string sql = Completed(pattern, "%NAME%", Quoted(value));
  EXPECT_EQ(TextOf(*connection_->Execute({sql, pattern, ""}), 0, 0), "1000");
}

TEST_P(HostileText, SortTextsThatAreNoListOfNamesAreRefused) {
  const std::string pattern = "select Id from Numbers order by %SORT%\r\n\r\nselect count(*) as Id from Numbers";
  for (const std::string sort :
       {"load_extension('x')", "Id; delete from Numbers", "Id -- ", "Id /* x */", "(select 1)", "1", "Id limit 1",
        "Id union select 1", "Id\r\n\r\nselect 2", "'Id'", "case when 1=1 then Id end", "Id, ", "Id +", "sleep(5)"}) {
    SCOPED_TRACE(sort);
    const std::string sql = Completed(pattern, "%SORT%", sort);
    const Error error = ErrorOf([&] { connection_->Execute({sql, pattern, "Id"}); });
    EXPECT_EQ(error.Number(), codes::kSqlSyntax);
    EXPECT_EQ(error.Description().substr(0, 8), "[42000] ") << error.Description();
  }
}

TEST_P(HostileText, SortTextsThatAreListsOfNamesSort) {
  const std::string pattern = "select Id from Numbers n order by %SORT%";
  const struct {
    const char* sort;
    const char* first;
  } kCases[] = {{"Id ASC", "1"},
                {"Id DESC", "1000"},
                {"n.Id desc", "1000"},
                {"n.Id", "1"},
                {"\"id\" DESC", "1000"},
                {"n.\"id\" DESC, Id ASC", "1000"},
                {"abs(0 - Id) DESC", "1000"}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.sort);
    const std::string sql = Completed(pattern, "%SORT%", c.sort);
    EXPECT_EQ(TextOf(*connection_->Execute({sql, pattern, "abs(0 - Id)"}), 0, 0), c.first);
  }
}

std::string NameOf(const testing::TestParamInfo<EngineCase>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Engines, HostileText, testing::ValuesIn(kEngines), NameOf);

}  // namespace
}  // namespace kalvo::test
