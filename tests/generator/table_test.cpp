#include "kalvo/table.h"

#include <gtest/gtest.h>

#include "fakes/page_fixture.h"
#include "kalvo/db_data_src.h"
#include "kalvo/mapi_data_src.h"
#include "kalvo/topn_data_src.h"

namespace kalvo::test {
namespace {

class TableDefinition : public testing::Test {
 protected:
  void Initialize(KalvoTableType type, std::span<const std::int16_t> columns = {}) {
    table_->Initialize(type, TABLE_TOPN_MBCNT, "Name", table_NoTotals, true, true, true, true, columns, "select 1",
                       "OrderBy", "DESC");
  }

  PageFixture page_;
  std::shared_ptr<Table> table_ = std::make_shared<Table>(page_.platform);
};

TEST_F(TableDefinition, AnswersWhatItWasGiven) {
  const std::int16_t columns[] = {7, -1, 32767};
  Initialize(TABLETYPE_KALVODB, columns);
  EXPECT_EQ(table_->GetId(), TABLE_TOPN_MBCNT);
  EXPECT_EQ(table_->GetColumns(), (std::vector<std::int16_t>{7, -1, 32767}));
  EXPECT_EQ(table_->GetSQL(), "select 1");
  EXPECT_EQ(table_->GetOrderBy(), "OrderBy");
  EXPECT_EQ(table_->GetDefaultSortOrder(), "DESC");
  EXPECT_EQ(table_->GetTopNObject(), 0);
  EXPECT_EQ(table_->GetTopNLoadType(), 0);
}

TEST_F(TableDefinition, OneColumnIsOneColumn) {
  const std::int16_t columns[] = {63};
  Initialize(TABLETYPE_KALVODB, columns);
  EXPECT_EQ(table_->GetColumns(), std::vector<std::int16_t>{63});
}

TEST_F(TableDefinition, TheFirstTotalsStateShowsTotals) {
  EXPECT_EQ(table_ShowTotals, 0);
  EXPECT_EQ(table_NoTotals, 1);
}

TEST_F(TableDefinition, EachScopeHasItsObjectAndLoadType) {
  const struct {
    const char* why;
    int scope, object, loadType;
  } kCases[] = {
      {"organization", TOPN_ORGANIZATION, 0, 5},
      {"site", TOPN_SITE, 0, 4},
      {"single server", TOPN_SINGLESERVER, 0, 2},
      {"server group", TOPN_SERVERGROUP, 0, 3},
      {"mailbox group", TOPN_MAILBOXGROUP, 1, 2},
      {"undefined", TOPN_UNDEFINED, 0, 0},
      {"beyond all", 6, 0, 0},
      {"below all", -1, 0, 0},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.why);
    page_.context->SetTopN(static_cast<KalvoTableTopN>(c.scope));
    table_->SetTopNParameters(*page_.context);
    EXPECT_EQ(table_->GetTopNObject(), c.object);
    EXPECT_EQ(table_->GetTopNLoadType(), c.loadType);
  }
}

TEST_F(TableDefinition, MakesTheRowSourceOfItsType) {
  Initialize(TABLETYPE_KALVODB);
  EXPECT_NE(std::dynamic_pointer_cast<KalvodbDataSrc>(table_->GetDataSrc(*page_.context)), nullptr);
  Initialize(TABLETYPE_MAPI);
  EXPECT_NE(std::dynamic_pointer_cast<MapiDataSrc>(table_->GetDataSrc(*page_.context)), nullptr);
  Initialize(TABLETYPE_TOPN);
  EXPECT_NE(std::dynamic_pointer_cast<TopnDataSrc>(table_->GetDataSrc(*page_.context)), nullptr);
  for (const int type : {3, -1}) {
    Initialize(static_cast<KalvoTableType>(type));
    EXPECT_EQ(table_->GetDataSrc(*page_.context), nullptr);
  }
}

TEST_F(TableDefinition, ARankedSourceFindsItsScopeSet) {
  page_.context->SetTopN(TOPN_SITE);
  Initialize(TABLETYPE_KALVODB);
  table_->GetDataSrc(*page_.context);
  EXPECT_EQ(table_->GetTopNLoadType(), 0) << "no other source asks for it";
  Initialize(TABLETYPE_TOPN);
  table_->GetDataSrc(*page_.context);
  EXPECT_EQ(table_->GetTopNObject(), 0);
  EXPECT_EQ(table_->GetTopNLoadType(), 4);
}

TEST_F(TableDefinition, ASourceKeepsItsTable) {
  Initialize(TABLETYPE_MAPI);
  const auto source = table_->GetDataSrc(*page_.context);
  const std::weak_ptr<Table> kept = table_;
  table_.reset();
  EXPECT_FALSE(kept.expired());
}

TEST_F(TableDefinition, EachRenderingHasASourceOfItsOwn) {
  Initialize(TABLETYPE_KALVODB);
  EXPECT_NE(table_->GetDataSrc(*page_.context), table_->GetDataSrc(*page_.context));
}

}  // namespace
}  // namespace kalvo::test
