#include "adapters/sql/report_record_set.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "adapters/sql/diagnostics.h"

namespace kalvo::sql {

namespace {

// The number of rows is the first field of the row that counts them.
std::int32_t CountIn(RecordSet& counted) {
  std::string scratch;
  const std::string_view text = counted.GetRows().Text(0, 0, scratch);
  std::int64_t count = -1;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), count);
  if (read.ec != std::errc() || count < 0 || count > std::numeric_limits<std::int32_t>::max()) {
    throw DatabaseError("HY000", "The rows of the result cannot be counted.");
  }
  return static_cast<std::int32_t>(count);
}

// The row of a result without its first field, which counts rows.
class TotalsBehindCount final : public RecordSet {
 public:
  TotalsBehindCount(std::unique_ptr<RecordSet> counted, std::shared_ptr<ReportRunner> runner, StatementQueue following)
      : counted_(std::move(counted)),
        rows_(counted_->GetRows()),
        runner_(std::move(runner)),
        following_(std::move(following)) {}

  bool IsEmpty() override { return Open().IsEmpty(); }
  std::int32_t FieldCount() override { return Open().FieldCount() - 1; }
  std::string FieldName(std::int32_t i) override {
    if (i < 0) throw SubscriptOutOfRange();
    return Open().FieldName(i + 1);
  }
  const Rows& GetRows() override { return Open(), rows_; }
  std::unique_ptr<RecordSet> NextRecordset() override {
    Open();
    return std::make_unique<ReportRecordSet>(runner_, following_);
  }
  void Close() override { Open().Close(), counted_ = nullptr; }

 private:
  class Shifted final : public Rows {
   public:
    explicit Shifted(const Rows& rows) : rows_(rows) {}
    std::int32_t RowCount() const override { return rows_.RowCount(); }
    std::int32_t FieldCount() const override { return rows_.FieldCount() - 1; }
    std::string_view Text(std::int32_t field, std::int32_t row, std::string& scratch) const override {
      return rows_.Text(Behind(field), row, scratch);
    }
    std::optional<std::span<const std::uint8_t>> Binary(std::int32_t field, std::int32_t row) const override {
      return rows_.Binary(Behind(field), row);
    }
    bool HasValues() const override { return rows_.HasValues(); }
    const StoredValue* Values(std::int32_t row) const override {
      const StoredValue* values = rows_.Values(row);
      return values ? values + 1 : nullptr;
    }

   private:
    static std::int32_t Behind(std::int32_t field) { return field < 0 ? throw SubscriptOutOfRange() : field + 1; }

    const Rows& rows_;
  };

  RecordSet& Open() const {
    if (!counted_) throw ObjectNotSet();
    return *counted_;
  }

  std::unique_ptr<RecordSet> counted_;
  Shifted rows_;
  std::shared_ptr<ReportRunner> runner_;
  StatementQueue following_;
};

}  // namespace

ReportRecordSet::ReportRecordSet(std::shared_ptr<ReportRunner> runner, const StatementQueue& statements,
                                 std::int32_t firstRow)
    : runner_(std::move(runner)),
      statement_(statements.Front()),
      following_(statements.Rest()),
      windowed_(WindowedStatement::Of(statement_, runner_->Nulls())) {
  if (!RunWindowed(firstRow)) records_ = runner_->Result(statement_);
}

RecordSet& ReportRecordSet::Records() const {
  if (!records_) throw ObjectNotSet();
  return *records_;
}

bool ReportRecordSet::RunWindowed(std::int32_t firstRow) {
  if (!windowed_) return false;
  try {
    windowed_->BreakTies(runner_->Columns(statement_));
    const std::int32_t windowRows = runner_->WindowRows();
    if (windowRows > 0) {
      ReadStart(firstRow, windowRows);
    } else {
      records_ = runner_->Result(windowed_->Whole());
    }
    return true;
  } catch (const Error& error) {
    if (IsTimeout(error)) throw;
    windowed_.reset();
    return false;
  }
}

// One row more than a window tells whether there are more. Rows that begin behind the last begin at the first.
void ReportRecordSet::ReadStart(std::int32_t firstRow, std::int32_t windowRows) {
  if (firstRow < 0) {
    start_.backward = true;
    records_ = runner_->Result(windowed_->Backward(0, windowRows + 1));
    return;
  }
  if (firstRow > windowRows) {
    start_.first = firstRow - 1;
    records_ = runner_->Result(windowed_->Forward(start_.first, windowRows + 1));
    if (!records_->IsEmpty()) return;
    start_.first = 0;
  }
  records_ = runner_->Result(windowed_->Forward(0, windowRows + 1));
}

const Rows& ReportRecordSet::GetRows() {
  if (rows_) return *rows_;
  const Rows& start = Records().GetRows();
  const std::int32_t windowRows = runner_->WindowRows();
  const bool areAll = start.RowCount() <= windowRows && start_.first == 0 && !start_.backward;
  if (!windowed_ || windowRows == 0 || areAll) return start;
  try {
    return ReadTheRest(start, windowRows);
  } catch (const Error& error) {
    if (IsTimeout(error)) throw;
    windowed_.reset();
    records_ = runner_->Result(statement_);
    return records_->GetRows();
  }
}

// Rows that end within their window need not be counted.
const Rows& ReportRecordSet::ReadTheRest(const Rows& start, std::int32_t windowRows) {
  const std::int32_t rowCount = start.RowCount() <= windowRows ? start_.first + start.RowCount() : CountRows();
  start_.count = std::min(start.RowCount(), rowCount);
  if (start_.backward) start_.first = rowCount - start_.count;
  rows_ = std::make_unique<WindowedRows>(start, start_, rowCount, windowRows,
                                         [this, rowCount](const auto& window) { return ReadWindow(window, rowCount); });
  return *rows_;
}

std::int32_t ReportRecordSet::CountRows() {
  const std::string totals = following_.IsEmpty() ? "" : following_.Front();
  const auto both = windowed_->CountWithTotals(totals);
  auto counted = runner_->Result(both ? *both : windowed_->Count());
  const std::int32_t count = CountIn(*counted);
  if (both) countedTotals_ = std::move(counted);
  return count;
}

std::unique_ptr<RecordSet> ReportRecordSet::ReadWindow(const WindowedRows::Window& window,
                                                       std::int32_t rowCount) const {
  return runner_->Result(window.backward ? windowed_->Backward(rowCount - window.first - window.count, window.count)
                                         : windowed_->Forward(window.first, window.count));
}

std::unique_ptr<RecordSet> ReportRecordSet::NextRecordset() {
  Records();
  if (countedTotals_) {
    return std::make_unique<TotalsBehindCount>(std::move(countedTotals_), runner_, following_.Rest());
  }
  return std::make_unique<ReportRecordSet>(runner_, following_);
}

void ReportRecordSet::Close() {
  Records();
  rows_.reset();
  countedTotals_.reset();
  records_->Close();
  records_.reset();
}

}  // namespace kalvo::sql
