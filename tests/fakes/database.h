#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "fakes/steps.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/database.h"
#include "kalvo/platform/value.h"

namespace kalvo::test {

// What one statement gives.
struct FakeResult {
  std::vector<std::string> fields;
  std::vector<std::vector<Value>> rows;
  bool lost = false;  // its rows can no longer be fetched when they are asked for
  bool kept = false;  // its rows are kept as typed values, and may be read as such
};

// A value as a block of rows keeps it; its bytes stay where they are.
inline StoredValue StoredFrom(const Value& value) {
  using Kind = StoredValue::Kind;
  StoredValue stored{};
  if (const auto* truth = std::get_if<bool>(&value)) {
    stored.kind = Kind::Boolean, stored.integer = *truth;
  } else if (const auto* small = std::get_if<std::int32_t>(&value)) {
    stored.kind = Kind::Integer, stored.integer = *small;
  } else if (const auto* large = std::get_if<std::int64_t>(&value)) {
    stored.kind = Kind::Integer, stored.integer = *large;
  } else if (const auto* number = std::get_if<double>(&value)) {
    stored.kind = Kind::Double, stored.number = *number;
  } else if (const auto* date = std::get_if<Date>(&value)) {
    stored.kind = Kind::Date, stored.number = date->serial;
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    stored.kind = Kind::Text, stored.bytes = text->data(), stored.size = static_cast<std::uint32_t>(text->size());
  } else if (const auto* bytes = std::get_if<Bytes>(&value)) {
    stored.kind = Kind::Binary, stored.bytes = reinterpret_cast<const char*>(bytes->data());
    stored.size = static_cast<std::uint32_t>(bytes->size());
  }
  return stored;
}

class FakeRows : public Rows {
 public:
  FakeRows(const FakeResult& result, Steps& steps) : result_(result), steps_(steps) {}

  std::int32_t RowCount() const override { return static_cast<std::int32_t>(result_.rows.size()); }
  std::int32_t FieldCount() const override { return static_cast<std::int32_t>(result_.rows.at(0).size()); }
  void Fetch(std::int32_t) const override {
    if (result_.lost) throw Error(codes::kFailed, "Lost.");
  }
  std::string_view Text(std::int32_t field, std::int32_t row, std::string& scratch) const override {
    steps_.Do("Text", field, row);
    scratch.clear();
    AppendText(scratch, At(field, row));
    return scratch;
  }
  std::optional<std::span<const std::uint8_t>> Binary(std::int32_t field, std::int32_t row) const override {
    steps_.Do("Binary", field, row);
    const Value& value = At(field, row);
    if (IsNull(value)) return std::nullopt;
    const Bytes* bytes = std::get_if<Bytes>(&value);
    if (!bytes) throw TypeMismatch();
    return *bytes;
  }
  bool HasValues() const override { return result_.kept; }
  const StoredValue* Values(std::int32_t row) const override {
    Fetch(row);
    values_.clear();
    for (const Value& value : result_.rows.at(static_cast<std::size_t>(row))) values_.push_back(StoredFrom(value));
    return values_.data();
  }

 private:
  const Value& At(std::int32_t field, std::int32_t row) const {
    return result_.rows.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(field));
  }

  const FakeResult& result_;
  Steps& steps_;
  mutable std::vector<StoredValue> values_;  // of the row that was asked for last
};

class FakeRecordSet : public RecordSet {
 public:
  FakeRecordSet(const std::deque<FakeResult>& results, std::size_t i, Steps& steps)
      : results_(results), i_(i), steps_(steps), rows_(results.at(i), steps) {}
  ~FakeRecordSet() override { steps_.done.push_back("~RecordSet()"); }

  bool IsEmpty() override { return steps_.Do("IsEmpty"), results_.at(i_).rows.empty(); }
  std::int32_t FieldCount() override {
    steps_.Do("FieldCount");
    return static_cast<std::int32_t>(results_.at(i_).fields.size());
  }
  std::string FieldName(std::int32_t i) override {
    steps_.Do("FieldName", i);
    return results_.at(i_).fields.at(static_cast<std::size_t>(i));
  }
  const Rows& GetRows() override { return steps_.Do("GetRows"), rows_; }
  std::unique_ptr<RecordSet> NextRecordset() override {
    steps_.Do("NextRecordset");
    if (i_ + 1 >= results_.size()) throw ObjectNotSet();
    return std::make_unique<FakeRecordSet>(results_, i_ + 1, steps_);
  }
  void Close() override { steps_.Do("RecordSet.Close"); }

 private:
  const std::deque<FakeResult>& results_;
  std::size_t i_;
  Steps& steps_;
  FakeRows rows_;
};

class FakeDatabase;

class FakeConnection : public Connection {
 public:
  explicit FakeConnection(FakeDatabase& database) : database_(database) {}
  ~FakeConnection() override;

  std::unique_ptr<RecordSet> Execute(const Batch& batch) override;
  void Close() override;

 private:
  FakeDatabase& database_;
};

// A database whose answers are written down: the results of a batch's statements in order, the same for every
// batch. Steps: Connect, Execute, IsEmpty, FieldCount, FieldName, GetRows, Text, Binary, NextRecordset,
// RecordSet.Close, Connection.Close; destroyed objects record "~RecordSet()" and "~Connection()".
class FakeDatabase : public Database {
 public:
  std::deque<FakeResult> results = {{{}, {}}};
  Steps steps;
  std::string sql, pattern, orderBy;  // of the last batch
  std::int32_t firstRow = 0;          // of the last batch

  std::unique_ptr<Connection> Connect(std::string_view dataSource) override {
    steps.Do("Connect", dataSource);
    return std::make_unique<FakeConnection>(*this);
  }
};

inline FakeConnection::~FakeConnection() { database_.steps.done.push_back("~Connection()"); }

inline std::unique_ptr<RecordSet> FakeConnection::Execute(const Batch& batch) {
  database_.sql = batch.sql;
  database_.pattern = batch.pattern;
  database_.orderBy = batch.orderBy;
  database_.firstRow = batch.readInPages ? batch.firstRow : 0;
  database_.steps.Do("Execute");
  return std::make_unique<FakeRecordSet>(database_.results, 0, database_.steps);
}

inline void FakeConnection::Close() { database_.steps.Do("Connection.Close"); }

}  // namespace kalvo::test
