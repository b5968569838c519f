#include "kalvo/memory/memory_database.h"

#include "kalvo/platform/error.h"

namespace kalvo {

namespace {

class MemoryRows : public Rows {
 public:
  explicit MemoryRows(const MemoryTable& table) : table_(table) {}

  std::int32_t RowCount() const override { return static_cast<std::int32_t>(table_.rows.size()); }
  std::int32_t FieldCount() const override { return static_cast<std::int32_t>(table_.fields.size()); }

  std::string_view Text(std::int32_t field, std::int32_t row, std::string&) const override {
    if (row < 0 || row >= RowCount()) throw SubscriptOutOfRange();
    const std::vector<std::string>& texts = table_.rows[static_cast<std::size_t>(row)];
    if (field < 0 || static_cast<std::size_t>(field) >= texts.size()) throw SubscriptOutOfRange();
    return texts[static_cast<std::size_t>(field)];
  }

  // There are no bytes among texts.
  std::optional<std::span<const std::uint8_t>> Binary(std::int32_t, std::int32_t) const override {
    return std::nullopt;
  }

 private:
  const MemoryTable& table_;
};

class MemoryRecordSet : public RecordSet {
 public:
  MemoryRecordSet(const MemoryTable& table, const MemoryTable* next) : table_(table), next_(next), rows_(table) {}

  bool IsEmpty() override { return table_.rows.empty(); }
  std::int32_t FieldCount() override { return rows_.FieldCount(); }
  std::string FieldName(std::int32_t i) override {
    if (i < 0 || i >= FieldCount()) throw SubscriptOutOfRange();
    return table_.fields[static_cast<std::size_t>(i)];
  }
  const Rows& GetRows() override { return rows_; }
  std::unique_ptr<RecordSet> NextRecordset() override {
    if (!next_) throw ObjectNotSet();
    return std::make_unique<MemoryRecordSet>(*next_, nullptr);
  }
  void Close() override {}

 private:
  const MemoryTable& table_;
  const MemoryTable* const next_;
  const MemoryRows rows_;
};

class MemoryConnection : public Connection {
 public:
  MemoryConnection(const MemoryTable& rows, const MemoryTable& totals) : rows_(rows), totals_(totals) {}

  std::unique_ptr<RecordSet> Execute(const Batch&) override {
    return std::make_unique<MemoryRecordSet>(rows_, &totals_);
  }
  void Close() override {}

 private:
  const MemoryTable& rows_;
  const MemoryTable& totals_;
};

}  // namespace

std::unique_ptr<Connection> MemoryDatabase::Connect(std::string_view) {
  return std::make_unique<MemoryConnection>(rows_, totals_);
}

std::shared_ptr<RankedResults> NoTopN::NewResults() { throw CannotCreateObject(); }
std::shared_ptr<TopNLoader> NoTopN::NewServerLoader() { throw CannotCreateObject(); }
std::shared_ptr<TopNLoader> NoTopN::NewMailboxGroupLoader() { throw CannotCreateObject(); }

}  // namespace kalvo
