#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>

#include "adapters/ranking/brute_force.h"
#include "adapters/ranking/make_ranking.h"
#include "adapters/ranking/result_set.h"
#include "adapters/ranking/sample_fixture.h"
#include "adapters/sqlite/sqlite_database.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/error.h"
#include "support/error_of.h"

namespace kalvo::test {
namespace {

using namespace ranking;

class Ranking : public testing::Test {
 protected:
  static void SetUpTestSuite() { sample_ = std::make_unique<SmallSample>(); }
  static void TearDownTestSuite() { sample_.reset(); }

  std::shared_ptr<RankedResults> Loaded(std::int16_t kind, Scope scope, std::string_view name,
                                        const Settings& settings = {}) {
    const auto factory = MakeRanking(database_, settings);
    auto results = factory->NewResults();
    Load(*factory, kind, scope, name, *results);
    return results;
  }

  static std::unique_ptr<SmallSample> sample_;
  sqlite::SqliteDatabase database_{sample_->File()};
};

std::unique_ptr<SmallSample> Ranking::sample_;

std::vector<ExpectedRow> AllRows(RankedResults& results) {
  std::vector<ExpectedRow> rows;
  results.MoveFirst();
  for (std::int32_t i = 0; i < results.Count(); ++i, results.MoveNext()) {
    ExpectedRow& row = rows.emplace_back();
    for (std::int16_t field = kFirstField; field <= kLastField; ++field) {
      const std::string text = ToText(results.Value(field));
      if (!text.empty()) row[field] = text;
    }
  }
  return rows;
}

std::vector<ExpectedRow> WithoutEmptyFields(std::vector<ExpectedRow> rows) {
  for (ExpectedRow& row : rows) std::erase_if(row, [](const auto& field) { return field.second.empty(); });
  return rows;
}

TEST_F(Ranking, EqualsWhatALookAtEveryMailboxFolderAndMessageGives) {
  const BruteForce everything(sample_->File());
  std::size_t rankings = 0, full = 0;
  for (const Kind& kind : AllKinds()) {
    for (const Scope scope : kScopes) {
      for (const std::string& name : everything.Names(scope)) {
        SCOPED_TRACE(testing::Message() << "kind " << kind.number << " in " << name);
        const auto expected = everything.Rank(kind.number, scope, name, kRankedRows, kOldDays);
        ASSERT_EQ(AllRows(*Loaded(kind.number, scope, name)), WithoutEmptyFields(expected));
        ++rankings;
        full += expected.size() == kRankedRows;
      }
    }
  }
  EXPECT_GT(rankings, 18u * 40);
  EXPECT_GT(full, 100u) << "the sample is too small to show where a ranking ends";
}

TEST_F(Ranking, OfTheSampleHasEqualOnes) {
  const auto results = Loaded(18, Scope::Organization, "Meridian");
  std::multiset<std::string> sizes;
  for (const ExpectedRow& row : AllRows(*results)) sizes.insert(row.at(kMessageSize));
  std::size_t equal = 0;
  for (const std::string& size : sizes) equal = std::max(equal, sizes.count(size));
  EXPECT_GT(equal, 1u);
}

TEST_F(Ranking, HasAsManyRowsAsTheHostSays) {
  const BruteForce everything(sample_->File());
  for (const std::int32_t rows : {1, 7, 99}) {
    const auto expected =
        everything.Rank(17, Scope::Organization, "Meridian", static_cast<std::size_t>(rows), kOldDays);
    EXPECT_EQ(AllRows(*Loaded(17, Scope::Organization, "Meridian", {.rows = rows})), WithoutEmptyFields(expected));
  }
}

TEST_F(Ranking, KnowsNoAgeThatWasNotRanked) {
  EXPECT_GT(Loaded(18, Scope::Organization, "Meridian")->Count(), 0);
  EXPECT_EQ(Loaded(18, Scope::Organization, "Meridian", {.oldDays = 30})->Count(), 0);
  EXPECT_GT(Loaded(17, Scope::Organization, "Meridian", {.oldDays = 30})->Count(), 0) << "asks for no age";
}

TEST_F(Ranking, RefusesSettingsThatCannotBeMeant) {
  EXPECT_EQ(ErrorOf([&] { MakeRanking(database_, {.rows = 0}); }).Number(), codes::kFailed);
  EXPECT_EQ(ErrorOf([&] { MakeRanking(database_, {.oldDays = -1}); }).Number(), codes::kFailed);
}

TEST_F(Ranking, OfAnUnknownScopeIsEmpty) {
  for (const Kind& kind : AllKinds()) {
    for (const Scope scope : kScopes) {
      for (const char* name : {"", "NoSuchName", "' or '1'='1", "%", "Meridian' --", "\\'"}) {
        EXPECT_EQ(Loaded(kind.number, scope, name)->Count(), 0) << kind.number << " " << name;
      }
    }
  }
}

TEST_F(Ranking, FindsNamesWithoutRegardToCaseAndWithQuotes) {
  const auto named = Loaded(2, Scope::Site, "O'Fallon");
  EXPECT_GT(named->Count(), 0);
  EXPECT_EQ(AllRows(*named), AllRows(*Loaded(2, Scope::Site, "O'FALLON")));
}

TEST_F(Ranking, OfPublicFoldersIsEmptyInAMailboxGroup) {
  for (const Kind& kind : AllKinds()) {
    const std::int32_t count = Loaded(kind.number, Scope::MailboxGroup, "Everybody")->Count();
    EXPECT_EQ(count > 0, IsOfMailboxes(kind.subject)) << kind.number;
  }
}

TEST_F(Ranking, FailsForAKindThatTheLoaderDoesNotHave) {
  for (const std::int16_t kind : {-32768, -1, 0, 3, 10, 15, 16, 23, 32767}) {
    for (const Scope scope : kScopes) {
      EXPECT_EQ(ErrorOf([&] { Loaded(kind, scope, "Meridian"); }).Number(), codes::kFailed) << kind;
    }
  }
}

TEST_F(Ranking, OfAMailboxGroupHasNoOtherScope) {
  const auto factory = MakeRanking(database_);
  const auto results = factory->NewResults();
  const auto loader = factory->NewMailboxGroupLoader();
  EXPECT_EQ(ErrorOf([&] { loader->LoadGroup(1, "Everybody", *results); }).Number(), 438);
  EXPECT_EQ(ErrorOf([&] { loader->LoadSite(1, "Seattle", *results); }).Number(), 438);
  EXPECT_EQ(ErrorOf([&] { loader->LoadOrg(1, "Meridian", *results); }).Number(), 438);
}

TEST_F(Ranking, ReplacesTheRowsOfAnEarlierLoad) {
  const auto factory = MakeRanking(database_);
  const auto results = factory->NewResults();
  const auto loader = factory->NewServerLoader();
  loader->LoadOrg(1, "Meridian", *results);
  ASSERT_GT(results->Count(), 0);
  loader->LoadOrg(1, "NoSuchName", *results);
  EXPECT_EQ(results->Count(), 0);
}

TEST_F(Ranking, SortsWhatItLoadedByEveryField) {
  for (const std::int16_t kind : {1, 5, 13, 17, 20}) {
    const auto results = Loaded(kind, Scope::Organization, "Meridian");
    const auto ranked = AllRows(*results);
    for (std::int16_t field = kFirstField; field <= kLastField; ++field) {
      results->Sort(field, 1);
      auto rows = AllRows(*results);
      EXPECT_TRUE(std::is_permutation(rows.begin(), rows.end(), ranked.begin(), ranked.end())) << "never ranks anew";
      const bool isNumber = field == kMessages || field == kSpace || field == kMessageSize || field == kAverageSize ||
                            field == kModified || field == kMessageModified;
      if (!isNumber) continue;
      const auto number = [field](const ExpectedRow& row) {
        return row.count(field) ? std::stod(row.at(field)) : -1.0;
      };
      const auto less = [&](const ExpectedRow& a, const ExpectedRow& b) { return number(a) < number(b); };
      EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end(), less)) << "kind " << kind << " field " << field;
      results->Sort(field, 0);
      rows = AllRows(*results);
      EXPECT_TRUE(std::is_sorted(rows.rbegin(), rows.rend(), less)) << "kind " << kind << " field " << field;
    }
  }
}

TEST_F(Ranking, TotalsAddUpTheListedRows) {
  const std::pair<std::int16_t, std::vector<std::int16_t>> kCases[] = {{2, {kMessages, kSpace}}, {17, {kMessageSize}}};
  for (const auto& [kind, fields] : kCases) {
    const auto results = Loaded(kind, Scope::Organization, "Meridian");
    for (const std::int16_t field : fields) {
      std::int64_t sum = 0;
      for (const ExpectedRow& row : AllRows(*results)) sum += std::stoll(row.at(field));
      results->MoveTotals();
      EXPECT_EQ(ToText(results->Value(field)), std::to_string(sum));
    }
  }
}

// Results of other makers offer the same operations and cannot be filled.
TEST_F(Ranking, FillsItsOwnResultSetsOnly) {
  class Foreign : public RankedResults {
   public:
    std::int32_t Count() override { return 0; }
    void MoveFirst() override {}
    void MoveNext() override {}
    void MoveTotals() override {}
    kalvo::Value Value(std::int16_t) override { return Empty{}; }
    void Sort(std::int16_t, std::int32_t) override {}
  };
  Foreign results;
  const auto factory = MakeRanking(database_);
  EXPECT_EQ(ErrorOf([&] { factory->NewServerLoader()->LoadOrg(1, "Meridian", results); }).Number(), 13);
}

TEST_F(Ranking, FailsWithTheErrorOfADatabaseThatIsNotThere) {
  sqlite::SqliteDatabase missing("/nonexistent/kalvo.db");
  const auto factory = MakeRanking(missing);
  const auto results = factory->NewResults();
  EXPECT_EQ(ErrorOf([&] { factory->NewServerLoader()->LoadOrg(1, "Meridian", *results); }).Number(), codes::kFailed);
}

}  // namespace
}  // namespace kalvo::test
