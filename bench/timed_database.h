#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "kalvo/platform/database.h"

// A database in front of another one that takes the time of what is asked of it.
namespace kalvo::bench {

// What a database was kept busy with, in milliseconds, and how many rows it gave.
struct Spent {
  double sql = 0;    // connecting, and running statements to their first rows
  double fetch = 0;  // getting all rows
  std::int64_t rows = 0;
};

// Adds the time from here to the end of the scope.
class Stopwatch {
 public:
  explicit Stopwatch(double& sum) : sum_(sum) {}
  ~Stopwatch() { sum_ += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count(); }
  Stopwatch(const Stopwatch&) = delete;
  Stopwatch& operator=(const Stopwatch&) = delete;

 private:
  double& sum_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

class TimedRecordSet : public RecordSet {
 public:
  TimedRecordSet(std::unique_ptr<RecordSet> records, Spent& spent) : records_(std::move(records)), spent_(spent) {}

  bool IsEmpty() override { return records_->IsEmpty(); }
  std::int32_t FieldCount() override { return records_->FieldCount(); }
  std::string FieldName(std::int32_t i) override { return records_->FieldName(i); }
  const Rows& GetRows() override {
    const Stopwatch watch(spent_.fetch);
    const Rows& rows = records_->GetRows();
    spent_.rows += rows.RowCount();
    return rows;
  }
  std::unique_ptr<RecordSet> NextRecordset() override {
    const Stopwatch watch(spent_.sql);
    return std::make_unique<TimedRecordSet>(records_->NextRecordset(), spent_);
  }
  void Close() override { records_->Close(); }

 private:
  std::unique_ptr<RecordSet> records_;
  Spent& spent_;
};

class TimedConnection : public Connection {
 public:
  TimedConnection(std::unique_ptr<Connection> connection, Spent& spent)
      : connection_(std::move(connection)), spent_(spent) {}

  std::unique_ptr<RecordSet> Execute(const Batch& batch) override {
    const Stopwatch watch(spent_.sql);
    return std::make_unique<TimedRecordSet>(connection_->Execute(batch), spent_);
  }
  void Close() override { connection_->Close(); }

 private:
  std::unique_ptr<Connection> connection_;
  Spent& spent_;
};

class TimedDatabase : public Database {
 public:
  // Both outlive the database.
  TimedDatabase(Database& database, Spent& spent) : database_(database), spent_(spent) {}

  std::unique_ptr<Connection> Connect(std::string_view dataSource) override {
    const Stopwatch watch(spent_.sql);
    return std::make_unique<TimedConnection>(database_.Connect(dataSource), spent_);
  }

 private:
  Database& database_;
  Spent& spent_;
};

}  // namespace kalvo::bench
