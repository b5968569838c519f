#include "host/parts/parts.h"

#include <gtest/gtest.h>

#include "database/sample/sample.h"
#include "kalvo/platform/ranking.h"
#include "support/temporary_folder.h"

namespace kalvo::test {
namespace {

using namespace host;

constexpr std::int16_t kMessages = 1, kOldMessages = 8;  // kinds of rankings

class RankedParts : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new TemporaryFolder;
    sample::SilentProgress quiet;
    sample::MakeSample({folder_->Path()}, quiet);
  }
  static void TearDownTestSuite() { delete folder_; }

  // How many rows a ranking of the sample's organization has.
  static std::int32_t Rows(std::int16_t kind, PartsSettings settings) {
    settings.database = "sqlite:" + (folder_->Path() / "kalvo.db").string();
    const Parts parts(settings);
    TopNFactory& topN = parts.GetPlatform().topN;
    const auto results = topN.NewResults();
    topN.NewServerLoader()->LoadOrg(kind, "Meridian", *results);
    return results->Count();
  }

  static inline TemporaryFolder* folder_ = nullptr;
};

TEST_F(RankedParts, RankAsManyRowsAsTheSettingsSay) {
  EXPECT_EQ(Rows(kMessages, {}), 100);
  EXPECT_EQ(Rows(kMessages, {.topNRows = 7}), 7);
}

TEST_F(RankedParts, CallAMessageOldAfterTheDaysOfTheSettings) {
  EXPECT_EQ(Rows(kOldMessages, {}), 100);
  EXPECT_EQ(Rows(kOldMessages, {.topNOldDays = 90}), 100);
  EXPECT_EQ(Rows(kOldMessages, {.topNOldDays = 91}), 0);  // the sample's manager ranks by 90 days only
}

}  // namespace
}  // namespace kalvo::test
