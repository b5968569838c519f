#include "kalvo/data_src.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/table.h"

namespace kalvo::test {
namespace {

TEST(DataSrc, OpensMovesAndClosesWithoutRows) {
  PageFixture page;
  const auto table = std::make_shared<Table>(page.platform);
  DataSrc source;
  EXPECT_EQ(source.GetRowIndex(), 0);
  source.Initialize(TABLETYPE_TOPN, *table, "EXCH01", *page.context);
  EXPECT_EQ(source.OpenDS(), 0);
  EXPECT_EQ(source.MoveFirst(), 0);
  EXPECT_EQ(source.MoveNext(), 0);
  EXPECT_EQ(source.GetField("Name"), "");
  EXPECT_EQ(source.RecordCount(), 0);
  EXPECT_EQ(source.GetRowIndex(), 0);
  EXPECT_EQ(source.CloseDS(), 0);
  EXPECT_EQ(page.Text(), "");
}

TEST(DataSrc, KeepsItsTableAndContext) {
  PageFixture page;
  std::weak_ptr<Table> kept;
  DataSrc source;
  {
    const auto table = std::make_shared<Table>(page.platform);
    kept = table;
    source.Initialize(TABLETYPE_KALVODB, *table, "", *page.context);
  }
  EXPECT_FALSE(kept.expired());
}

}  // namespace
}  // namespace kalvo::test
