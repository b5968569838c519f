#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kalvo/platform/platform.h"
#include "kalvo/table_row_source.h"

namespace kalvo {

class RankedResults;
class Steps;
class TopNLoader;

// The row source of the Top-N tables: it asks the Top-N loader for the ranked rows of a kind within the page's
// scope and sorts them by a column number. Fields are named by their numbers.
class TopnDataSrc : public TableRowSource {
 public:
  explicit TopnDataSrc(const Platform& platform);
  ~TopnDataSrc() override;

  // The number of rows, and the current one from 1. Published for reading and writing.
  std::int32_t gRecordCount() const { return recordCount_; }
  void SetgRecordCount(std::int32_t count) { recordCount_ = count; }
  std::int32_t gRowIndex() const { return rowIndex_; }
  void SetgRowIndex(std::int32_t index) { rowIndex_ = index; }

  // 0, or -1 after a failure that has been reported.
  std::int16_t OpenDS() override;
  std::int32_t CloseDS() override { return 0; }
  std::int16_t MoveFirst() override;
  std::int16_t MoveNext() override;
  std::int16_t MoveTotals() override;
  std::string_view GetField(std::string_view szFieldName) override;

 private:
  bool Load(Steps& steps);
  std::shared_ptr<TopNLoader> MakeLoader(Steps& steps, std::int16_t object);
  std::int16_t SortResults(Steps& steps);

  const Platform& platform_;
  std::shared_ptr<RankedResults> results_;
};

}  // namespace kalvo
