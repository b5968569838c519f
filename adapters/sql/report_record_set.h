#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "adapters/sql/statement_queue.h"
#include "adapters/sql/windowed_rows.h"
#include "adapters/sql/windowed_statement.h"
#include "kalvo/platform/database.h"

namespace kalvo::sql {

// What an adapter does for the statements of a report on its one connection.
class ReportRunner {
 public:
  virtual ~ReportRunner() = default;

  virtual NullOrder Nulls() const = 0;

  // How many rows to fetch at a time; 0 where only all of them can be read.
  virtual std::int32_t WindowRows() const = 0;

  // How many columns a statement has, without running it.
  std::int32_t Columns(const std::string& statement) {
    return InSnapshot([&] { return CountColumns(statement); });
  }

  // The result of one statement; it stands on its own.
  std::unique_ptr<RecordSet> Result(const std::string& statement) {
    return InSnapshot([&] { return Run(statement); });
  }

 private:
  // From now on every statement sees the database as it is now; what a failed one left behind is gone.
  virtual void BeginSnapshot() = 0;
  virtual std::int32_t CountColumns(const std::string& statement) = 0;
  virtual std::unique_ptr<RecordSet> Run(const std::string& statement) = 0;

  // A failed statement takes nothing with it: what runs next, if anything does, has a snapshot of its own.
  template <typename Step>
  std::invoke_result_t<Step> InSnapshot(Step&& step) {
    if (!inSnapshot_) BeginSnapshot();
    inSnapshot_ = false;
    auto result = step();
    inSnapshot_ = true;
    return result;
  }

  bool inSnapshot_ = false;
};

// The result of the first statement of a report, of which pages are read: it has one order that leaves no tie, counts
// all rows, and fetches those that somebody asks for, all in one snapshot. A statement that cannot be read so, or that
// fails when it is, runs as it stands, and its error is then the one that is told.
class ReportRecordSet final : public RecordSet {
 public:
  // `firstRow` is the row that is asked for first, as a batch says it.
  ReportRecordSet(std::shared_ptr<ReportRunner> runner, const StatementQueue& statements, std::int32_t firstRow = 1);

  bool IsEmpty() override { return Records().IsEmpty(); }
  std::int32_t FieldCount() override { return Records().FieldCount(); }
  std::string FieldName(std::int32_t i) override { return Records().FieldName(i); }
  const Rows& GetRows() override;
  std::unique_ptr<RecordSet> NextRecordset() override;
  void Close() override;

 private:
  RecordSet& Records() const;
  bool RunWindowed(std::int32_t firstRow);
  void ReadStart(std::int32_t firstRow, std::int32_t windowRows);
  const Rows& ReadTheRest(const Rows& start, std::int32_t windowRows);
  std::int32_t CountRows();
  std::unique_ptr<RecordSet> ReadWindow(const WindowedRows::Window& window, std::int32_t rowCount) const;

  std::shared_ptr<ReportRunner> runner_;
  const std::string statement_;
  StatementQueue following_;
  std::optional<WindowedStatement> windowed_;
  std::unique_ptr<RecordSet> records_;        // a first window of rows, or all of them
  WindowedRows::Window start_{0, 0, false};   // that window
  std::unique_ptr<WindowedRows> rows_;        // where there are more than the first
  std::unique_ptr<RecordSet> countedTotals_;  // the totals, where they were counted with the rows
};

}  // namespace kalvo::sql
