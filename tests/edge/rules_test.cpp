#include "host/edge/rules.h"

#include <gtest/gtest.h>

#include "columns/link_rules.h"
#include "fakes/page_fixture.h"
#include "generator/table_rows.h"
#include "host/edge/request_limits.h"
#include "host/edge/sort_words.h"
#include "host/script/page/page_directive.h"
#include "kalvo/column.h"
#include "kalvo/column_database.h"
#include "kalvo/platform/append.h"
#include "kalvo/table_database.h"
#include "source_folder.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace edge;

constexpr Judgement kFits = Judgement::Fits, kUnfit = Judgement::Unfit, kTooLarge = Judgement::TooLarge;

class RulesTest : public testing::Test {
 protected:
  RulesTest() { page_.sortWords = {"Owner", "d.Size"}; }

  Judgement Of(std::string_view parameter, std::string_view value) const {
    return FindRule(parameter)->judge(value, {words_, page_});
  }

  FakeDatabase database_;
  FakeRanking ranking_;
  FakeClock clock_;
  Platform platform_{database_, ranking_, clock_};
  SortWords words_{platform_};
  host::PageDirective page_;
};

TEST_F(RulesTest, JudgeValues) {
  const std::string server(256, 's'), identifier(4096, 'i');
  const struct {
    const char *why, *parameter;
    std::string value;
    Judgement judgement;
  } kCases[] = {
      {"a sort field", "Sort", "ComputerName", kFits},
      {"in another case, as a list with directions", "sort", "computername DESC, MbName ASC,Name", kFits},
      {"a qualified default order", "Sort", "sb.BackupLength  DESC", kFits},
      {"a field of a live listing", "Sort", "ModifiedDate", kFits},
      {"a Top-N field", "Sort", "8", kFits},
      {"a page's own words", "Sort", "owner, D.SIZE DESC", kFits},
      {"a column that no report sorts by", "Sort", "current_user", kUnfit},
      {"a row's place", "Sort", "rowid", kUnfit},
      {"a function", "Sort", "load_extension('x')", kUnfit},
      {"another direction", "Sort", "Name descending", kUnfit},
      {"a direction in another case", "Sort", "Name desc", kUnfit},
      {"two directions", "Sort", "Name ASC DESC", kUnfit},
      {"an empty item", "Sort", "Name,", kUnfit},
      {"a blank that is none", "Sort", "Name\u00A0DESC", kUnfit},
      {"a letter that looks like one", "Sort", "Na\u217Fe", kUnfit},
      {"markup", "Sort", "<script>alert(1)</script>", kUnfit},

      {"a direction", "SortOrder", "DESC", kFits},
      {"in another case", "SortOrder", "desc", kUnfit},
      {"and more", "SortOrder", "ASC, x", kUnfit},

      {"a number", "First", "51", kFits},
      {"the last page", "First", "-1", kFits},
      {"a plus", "PageSize", "+20", kFits},
      {"the largest", "First", "32767", kFits},
      {"one beyond", "First", "32768", kTooLarge},
      {"the smallest", "First", "-32768", kFits},
      {"one below", "First", "-32769", kTooLarge},
      {"ten digits", "PageSize", "9999999999", kTooLarge},
      {"eleven", "PageSize", "00000000001", kUnfit},
      {"a fraction", "First", "2.5", kUnfit},
      {"a power", "First", "1e2", kUnfit},
      {"a sign alone", "First", "-", kUnfit},
      {"a blank", "First", " 1", kUnfit},
      {"the delete form's store", "Flags", "4", kFits},
      {"two of them", "Flags", "0&4", kUnfit},

      {"a name of 256 bytes", "Server", server, kFits},
      {"one more", "ServerName", server + 's', kUnfit},
      {"a name", "Mailbox", "=K\u00e9n O'Neill & Co %41 \\ {x}", kFits},
      {"a path", "Container", "Top\\Sub folder", kFits},
      {"a tag", "Container", "<b", kUnfit},
      {"its end", "Mailbox", "b>", kUnfit},
      {"an attribute's end", "MailboxName", "a\" onclick", kUnfit},
      {"a line break", "Server", "a\nb", kUnfit},
      {"a delete character", "Server", "a\x7f", kUnfit},
      {"a control character of two bytes", "Mailbox", "a\u0085b", kUnfit},
      {"a blank of two bytes", "Mailbox", "a\u00a0b", kFits},
      {"a page", "Continue", "../Resources/MailboxSummary.asp?Server=S&Mailbox=M", kFits},
      {"a tag in an address", "Continue", "../a.asp?<x", kUnfit},

      {"an identifier", "ContainerId", "AZaz09_-", kFits},
      {"the longest", "MessageId", identifier, kFits},
      {"one more", "MessageId", identifier + 'i', kUnfit},
      {"an attribute's end", "PublicFolderId", "x\"", kUnfit},
      {"a blank", "FolderId", "a b", kUnfit},
      {"an encoding's filling", "FolderId", "YQ==", kUnfit},

      {"a word", "ProcessType", "DeleteMessage", kFits},
      {"markup", "ProcessType", "<x>", kUnfit},
      {"a trace", "Debug", "SQL", kFits},
      {"markup", "Debug", "\"><x", kUnfit},
  };
  for (const auto& c : kCases) EXPECT_EQ(Of(c.parameter, c.value), c.judgement) << c.parameter << ": " << c.why;
}

TEST_F(RulesTest, TakeIdentifiersOfAnotherFormWhereThePageHasItsOwn) {
  page_.ownIdentifiers = true;
  EXPECT_EQ(Of("MessageId", "{a=1, b}"), kFits);
  EXPECT_EQ(Of("MessageId", "a\"b"), kUnfit);
}

TEST_F(RulesTest, TakeEverySortOfTheLibrarysOwnLinks) {
  const KalvoTableDatabase tables(platform_);
  const KalvoColumnDatabase columns;
  int sorting = 0;
  for (const tables::TableRow& row : tables::kTables) {
    EXPECT_TRUE(row.orderBy.empty() || Of("Sort", row.orderBy) == kFits) << row.title;
    for (const std::int16_t id : row.columns) {
      const auto* column = dynamic_cast<const KalvoColumn*>(columns.GetColumn(id).get());
      if (column == nullptr || !column->Definition().sortColumn) continue;
      EXPECT_EQ(Of("Sort", column->Definition().databaseField), kFits) << row.title;
      ++sorting;
    }
  }
  EXPECT_GT(sorting, 200);
}

TEST(RuleTest, KnowsEveryParameterThatTheLibraryLinksWith) {
  // Names of the reporting database, which pages encode wherever they show them.
  const std::string_view kFree[] = {"GroupName", "Name"};
  for (const links::LinkRule& link : links::kLinks) {
    for (const links::LinkParameter& parameter : link.parameters) {
      if (parameter.name.empty()) continue;
      const bool isFree = std::find(std::begin(kFree), std::end(kFree), parameter.name) != std::end(kFree);
      EXPECT_EQ(FindRule(parameter.name) == nullptr, isFree) << parameter.name;
    }
  }
}

TEST(ParameterNameTest, IsShortAndPlain) {
  for (const std::string& name : {std::string("Sort"), std::string("a.b_9"), std::string(40, 'k')}) {
    EXPECT_TRUE(IsParameterName(name)) << name;
  }
  for (const std::string& name : {std::string(), std::string(41, 'k'), std::string("a b"), std::string("a-b"),
                                  std::string("\u00e9"), std::string("a<"), std::string("a[]"), std::string(1, '\0')}) {
    EXPECT_FALSE(IsParameterName(name)) << name;
  }
}

TEST(PlaceholderTest, IsFoundAnywhereInAValue) {
  for (const char* value : {"%SORT%", "a%NAME%b", "%ORG%", "x%SITE%", "%MAILBOX%", "%%NAME%", "x%SITE"}) {
    EXPECT_TRUE(HoldsPlaceholder(value)) << value;
  }
  for (const char* value : {"", "%", "SITE", "%name%", "% NAME %", "100%", "%SITES%"}) {
    EXPECT_FALSE(HoldsPlaceholder(value)) << value;
  }
}

// The documents say what the code does.
TEST(EdgeDocumentTest, HoldsEveryRuleAndLimit) {
  const std::string document = ReadFile(std::filesystem::path(KALVO_SOURCE_DIR) / "docs/edge.md");
  std::string table = "| Parameter | Takes |\n|---|---|\n";
  for (const Rule& rule : Rules()) Append(table, "| `", rule.parameter, "` | ", rule.takes, " |\n");
  EXPECT_NE(document.find(table), std::string::npos) << "the rules read:\n" << table;
  const std::string limits = Built([](std::string& out) {
    Append(out, "| the query of an address | ", kLongestQuery, " bytes |\n| parameters of a query | ", kMostParameters,
           " |\n| values of one parameter of a query | ", kMostValues, " |\n| fields of a form | ", kMostFields,
           ", in 1 MiB |\n");
  });
  EXPECT_NE(document.find(limits), std::string::npos) << "the limits read:\n" << limits;
  EXPECT_NE(document.find(kParameterNames), std::string::npos);
}

}  // namespace
}  // namespace kalvo::test
